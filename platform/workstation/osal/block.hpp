// A block of the allocator: a header, then the caller's bytes.
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
  // Distinguishes a block in use, a freed block and anything else. It comes last because malloc
  // overwrites the start of freed memory first.
  std::atomic<uint64_t> mark;
};

static_assert(sizeof(BlockHeader) == 32 && offsetof(BlockHeader, mark) == 24);

enum class BlockState {
  InUse,
  Freed,
  Foreign,
};

inline void* bytesOf(BlockHeader* header) {
  return header + 1;
}

inline BlockHeader* headerOf(void* bytes) {
  return static_cast<BlockHeader*>(bytes) - 1;
}

void markInUse(BlockHeader* header);

// The block's state, read from the header before `bytes`. Marks a block in use as freed: if two
// threads free it, only one gets InUse.
[[nodiscard]] BlockState takeBack(void* bytes);

}  // namespace ddm
