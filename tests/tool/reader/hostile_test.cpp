// Messages that ask much of a reader take no more than their bytes and items are worth.

#include "tool/reader/hostile.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "bytes/failure.hpp"
#include "texts/explanation.hpp"
#include "tool/reader/library_reader.hpp"

namespace tool {
namespace {

const KnownMessage& list() {
  return messageNamed("l2vpn_cfg_query_dfx_rec");
}

TEST(HostileMessage, AVtableThatItemsShareIsNotExplainedForEachOfThem) {
  constexpr uint32_t items = 200;
  const Bytes bytes = itemsOfOneVtable(items, 65'534);
  const Reading reading = readTable(list(), bytes);
  EXPECT_TRUE(reading.faults.empty());
  EXPECT_EQ(unsoundness(reading, bytes), "");
  // Of each item its word, its table and two lengths, and five entries.
  EXPECT_LT(reading.ranges.size(), 10 * items);
  const auto isUnknown = [](const Range& range) { return range.part == Part::Unknown; };
  ASSERT_EQ(std::ranges::count_if(reading.ranges, isUnknown), 1);
  const Range& unknown = *std::ranges::find_if(reading.ranges, isUnknown);
  EXPECT_EQ(unknown.meaning, "entries of slots 5 to 32764");
  EXPECT_EQ(unknown.size, 65'534u - 4 - 2 * 5);
  EXPECT_TRUE(libraryAccepts(list(), bytes));
}

TEST(HostileMessage, MoreRangesThanAnybodyReadsAreNotKept) {
  const Bytes bytes = itemsOfOneVtable(40'000, 14);
  const Reading reading = readTable(list(), bytes);
  EXPECT_TRUE(reading.isCut);
  // Those of the bytes between them come on top.
  EXPECT_LE(reading.ranges.size(), 2 * mostRanges);
  EXPECT_EQ(unsoundness(reading, bytes), "");
  EXPECT_NE(std::ranges::find(reading.notes, "more than 250000 ranges are not explained"),
            reading.notes.end());
  EXPECT_TRUE(reading.isAccepted());
  EXPECT_EQ(reading.memory, judge(list(), bytes).memory);
}

TEST(HostileMessage, ContentsThatItemsShareAreShownWholeOnce) {
  constexpr uint32_t items = 500;
  const Bytes bytes = itemsOfOneText(items, 100'000, 'a');
  const Reading reading = readTable(list(), bytes);
  EXPECT_EQ(reading.faults.size(), items);
  std::ostringstream out;
  explain(reading, bytes, true, Colors(), out);
  const std::string text = out.str();
  EXPECT_NE(text.find("bytes that stand above"), std::string::npos);
  EXPECT_EQ(text.find("bytes more"), std::string::npos);
  // A line of 8 bytes is shorter than 200 characters.
  EXPECT_LT(text.size(), 200 * (bytes.size() / 8 + reading.ranges.size() * 6));
  size_t marks = 0;
  for (size_t at = 0; (at = text.find("^^ ", at)) != std::string::npos; ++at) {
    ++marks;
  }
  EXPECT_EQ(marks, items);
}

TEST(HostileMessage, FaultsAreCountedAsFarAsTheyAreKept) {
  const Bytes thousand = itemsOfOneText(1000, 8, 'a');
  EXPECT_EQ(faultCountText(judge(list(), thousand)), "1000 faults");
  const Bytes more = itemsOfOneText(1001, 8, 'a');
  EXPECT_EQ(faultCountText(judge(list(), more)), "at least 1000 faults");
  EXPECT_FALSE(judge(list(), more).isAccepted());
}

TEST(HostileMessage, SmallOnesThatAskForMuchMemoryAreRefused) {
  EXPECT_NO_THROW(refuseTooMuchMemory(judge(list(), itemsOfOneVtable(4049, 4))));
  EXPECT_THROW(refuseTooMuchMemory(judge(list(), itemsOfOneVtable(4050, 4))), Failure);
}

}  // namespace
}  // namespace tool
