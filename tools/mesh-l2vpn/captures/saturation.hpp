// Sums of counts that a file may claim to be anything.
#pragma once

#include <cstdint>

namespace tool {

inline uint64_t addSaturating(uint64_t one, uint64_t other) {
  return one > UINT64_MAX - other ? UINT64_MAX : one + other;
}

}  // namespace tool
