// A block of memory as the allocator hands it out: a header, then the caller's bytes.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ddm {

struct alignas(alignof(std::max_align_t)) BlockHeader {
  uint64_t size;  // the caller's bytes
  uint32_t owner;
  uint32_t ownerAccount;
  uint32_t callerAccount;
  uint32_t unused;
  // Tells a block in use from one given back and from anything else. It stands last: freed memory
  // is written to at its start first, and the mark may outlive that.
  std::atomic<uint64_t> mark;
};

static_assert(sizeof(BlockHeader) == 32 && offsetof(BlockHeader, mark) == 24);

enum class BlockState {
  InUse,
  GivenBack,
  Foreign,
};

inline void* bytesOf(BlockHeader* header) {
  return header + 1;
}

inline BlockHeader* headerOf(void* bytes) {
  return static_cast<BlockHeader*>(bytes) - 1;
}

void markInUse(BlockHeader* header);

// What the pointer was, seen from the bytes before it. A block in use is marked as given back: of
// two threads that give it back only one is told that it was in use.
[[nodiscard]] BlockState takeBack(void* bytes);

}  // namespace ddm
