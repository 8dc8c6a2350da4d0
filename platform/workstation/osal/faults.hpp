// Counts errors of the allocator's callers.
#pragma once

#include <atomic>
#include <cstdint>

namespace ddm {

struct Faults {
  std::atomic<uint64_t> wrongOwner = 0;
  std::atomic<uint64_t> doubleFree = 0;
  std::atomic<uint64_t> foreignFree = 0;
};

extern Faults faults;

}  // namespace ddm
