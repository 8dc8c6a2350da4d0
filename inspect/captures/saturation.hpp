// Sums of counts that come from files and may be any number.
#pragma once

#include <cstdint>

namespace inspect {

inline uint64_t addSaturating(uint64_t one, uint64_t other) {
  return one > UINT64_MAX - other ? UINT64_MAX : one + other;
}

}  // namespace inspect
