// Finds the range of each byte, however ranges overlap; differences of fields and bytes.

#include "inspect/texts/difference.hpp"

#include <gtest/gtest.h>

#include <random>

#include "inspect/reader/range_walk.hpp"

namespace inspect {
namespace {

TEST(RangeWalk, FindsLastRangeOfByte) {
  std::mt19937 random(1);
  const auto below = [&](uint32_t end) { return static_cast<uint32_t>(random() % end); };
  for (int round = 0; round < 500; ++round) {
    std::vector<Range> ranges;
    for (uint32_t at = 0; at < 60; at += below(4)) {
      ranges.push_back({at, below(20), Part::Scalar, "", "", ""});
    }
    RangeWalk walk(ranges);
    for (uint32_t at = 0; at < 90; at += 1 + below(3)) {
      const Range* expected = nullptr;
      for (const Range& range : ranges) {
        expected = range.at <= at && at < range.at + range.size ? &range : expected;
      }
      ASSERT_EQ(walk.at(at), expected) << at;
    }
  }
}

TEST(ByteDifferences, SplitAtRanges) {
  Reading reading;
  reading.ranges = {{0, 4, Part::Root, "", "root", ""}, {4, 4, Part::Scalar, "f0", "value", ""}};
  const std::vector<uint8_t> one = {0, 0, 1, 1, 1, 0, 0, 1};
  const std::vector<uint8_t> other = {0, 0, 2, 2, 2, 0, 0, 2, 9};
  const auto found = byteDifferences(one, other, reading);
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0].at, 2u);
  EXPECT_EQ(found[0].meaning, "root");
  EXPECT_EQ(found[0].other, "0202");
  EXPECT_EQ(found[1].at, 4u);
  EXPECT_EQ(found[1].meaning, "f0 value");
  EXPECT_EQ(found[2].at, 7u);
}

// Two captures may describe the same message differently.
TEST(FieldDifferences, OfOtherMembers) {
  std::vector<std::string> lines;
  for (const FieldDifference& each :
       fieldDifferences(parseJson(R"({"f0": 1, "f1": {"f0": 2}, "f2": [{"f0": 3}], "f3": 4})"),
                        parseJson(R"({"f0": 1, "f1": 5, "f2": [{"f1": 6}], "f4": 7})"))) {
    lines.push_back(each.path + ": " + each.one + " / " + each.other);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{R"(f1: {"f0":2} / 5)", "f2[0].f0: 3 / ",
                                             "f2[0].f1:  / 6", "f3: 4 / ", "f4:  / 7"}));
}

}  // namespace
}  // namespace inspect
