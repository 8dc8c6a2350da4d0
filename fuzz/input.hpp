// An input of a fuzzer: a head that says what to call, and a body.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>

#include "oracle/messages/description.hpp"
#include "support/operations.hpp"

namespace fuzz {

inline constexpr size_t headSize = 2;

// The first byte picks the message; the second, bit by bit: the byte order (1), the allocation that
// fails (2; 0: none does), the alignment of the body (3).
struct Head {
  uint8_t message;
  uint8_t choices;

  [[nodiscard]] const harness::Operations& operations() const {
    const auto& all = harness::allOperations();
    return all[message % all.size()];
  }
  [[nodiscard]] bool reversed() const { return (choices & 1) != 0; }
  [[nodiscard]] int failingAllocation() const { return (choices >> 1) & 3; }
  [[nodiscard]] size_t alignment() const { return (choices >> 3) & 7; }
};

// Prints what differs and ends the process: libFuzzer keeps the input.
inline void expectNone(const std::string& difference) {
  if (!difference.empty()) {
    std::fprintf(stderr, "%s\n", difference.c_str());
    std::abort();
  }
}

}  // namespace fuzz
