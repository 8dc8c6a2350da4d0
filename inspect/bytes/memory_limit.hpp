// How much memory one call may take. Each thread has its own limit, so no call needs a parameter
// that nearly all of them would leave alone.
#pragma once

#include <cstdint>
#include <string>

#include "inspect/bytes/failure.hpp"

namespace inspect {

inline constexpr uint64_t usualMemoryLimit = uint64_t{64} << 20;

inline thread_local uint64_t memoryLimit = usualMemoryLimit;

[[noreturn]] inline void failForMemory(const std::string& what, uint64_t needed) {
  throw Failure(Cause::Memory, what + " needs " + std::to_string(needed) +
                                   " bytes of memory; the limit is " + std::to_string(memoryLimit));
}

}  // namespace inspect
