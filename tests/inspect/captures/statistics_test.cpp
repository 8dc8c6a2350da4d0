// Statistics of a capture, in bounded memory.

#include "inspect/captures/statistics.hpp"

#include <gtest/gtest.h>

namespace inspect {
namespace {

Statistics ofUnknown(uint32_t identifiers) {
  Statistics statistics;
  for (uint32_t id = 1; id <= identifiers; ++id) {
    statistics.add({id, 7, 8, id, 0, {}});
    statistics.add({id, 7, 8, id, 0, {}});
  }
  return statistics;
}

TEST(Statistics, ListsFewUnknownIdentifiers) {
  const auto rows = ofUnknown(20).ranking();
  ASSERT_EQ(rows.size(), 20u);
  EXPECT_EQ(rows.front().first, "unknown 0x00000001");
  EXPECT_EQ(rows.front().second.tables, 2u);
}

TEST(Statistics, JoinsManyUnknownIdentifiers) {
  const auto rows = ofUnknown(21).ranking();
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows.front().first, "unknown, 21 identifiers");
  EXPECT_EQ(rows.front().second.tables, 42u);
}

TEST(Statistics, LimitsUnknownIdentifiers) {
  const auto rows = ofUnknown(5000).ranking();
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows.front().first, "unknown, more than 1000 identifiers");
  EXPECT_EQ(rows.front().second.tables, 10'000u);
  EXPECT_EQ(rows.front().second.rejected, 10'000u);
}

TEST(Statistics, LimitsSourcesOfGaps) {
  Statistics statistics;
  for (uint32_t source = 0; source < 1010; ++source) {
    statistics.add({1, source, 8, 1, 0, {}, UINT64_MAX / 2});
  }
  EXPECT_EQ(statistics.gapsBySource.size(), 1000u);
  EXPECT_EQ(statistics.gapsOfOthers.places, 10u);
  EXPECT_EQ(statistics.gaps.calls, UINT64_MAX) << "the sum does not wrap";
}

}  // namespace
}  // namespace inspect
