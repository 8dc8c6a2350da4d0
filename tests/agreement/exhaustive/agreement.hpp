// What the exhaustive tests of the reader share: a call on each side, compared.
#pragma once

#include <gtest/gtest.h>

#include "agreement/exhaustive/frame.hpp"
#include "agreement/exhaustive/samples.hpp"
#include "support/comparison.hpp"

namespace exhaustive {

// Fails the test with the bytes and the difference. Returns whether to go on.
inline bool agrees(const Sample& sample, std::span<const uint8_t> bytes,
                   std::optional<harness::GuardedBuffer::Edge> guard = std::nullopt) {
  const std::string difference = harness::compareUnpack(
      *sample.operations, bytes, {.reversed = sample.reversed, .guard = guard});
  EXPECT_EQ(difference, "") << "from " << sample.name();
  return difference.empty();
}

using EveryMessage = testing::TestWithParam<harness::Operations>;

#define EXHAUSTIVE_OVER_MESSAGES(suite)                                             \
  INSTANTIATE_TEST_SUITE_P(All, suite, testing::ValuesIn(harness::allOperations()), \
                           [](const auto& test) { return std::string(test.param.name); })

}  // namespace exhaustive
