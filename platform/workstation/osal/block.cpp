#include "osal/block.hpp"

namespace ddm {
namespace {

// Marks include the block's address. So a copy of the block elsewhere has no valid mark.
constexpr uint64_t inUse = 0x6B636F6C42657375;
constexpr uint64_t freed = 0x656E6F676B636F6C;

}  // namespace

void markInUse(BlockHeader* header) {
  header->mark.store(inUse ^ reinterpret_cast<uintptr_t>(header), std::memory_order_relaxed);
}

// Not instrumented: this function must read memory that may be freed or not a block. clang's
// no_sanitize still instruments atomics, so disable_sanitizer_instrumentation is needed too.
#if __has_attribute(disable_sanitizer_instrumentation)
__attribute__((disable_sanitizer_instrumentation))
#endif
__attribute__((noinline, no_sanitize("address", "thread", "undefined"))) BlockState
takeBack(void* bytes) {
  if (reinterpret_cast<uintptr_t>(bytes) % alignof(BlockHeader) != 0) {
    return BlockState::Foreign;
  }
  uint64_t* const mark =
      reinterpret_cast<uint64_t*>(static_cast<unsigned char*>(bytes) - sizeof(uint64_t));
  const auto* header = reinterpret_cast<const BlockHeader*>(
      static_cast<const unsigned char*>(bytes) - sizeof(BlockHeader));
  const uint64_t address = reinterpret_cast<uintptr_t>(header);
  uint64_t found = inUse ^ address;
  if (__atomic_compare_exchange_n(mark, &found, freed ^ address, false, __ATOMIC_ACQ_REL,
                                  __ATOMIC_RELAXED)) {
    return BlockState::InUse;
  }
  return found == (freed ^ address) ? BlockState::Freed : BlockState::Foreign;
}

}  // namespace ddm
