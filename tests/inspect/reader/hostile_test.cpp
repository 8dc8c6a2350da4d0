// Time and memory grow only with the bytes and items of a message, whatever it asks for.

#include "tests/inspect/reader/hostile.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "inspect/bytes/failure.hpp"
#include "inspect/texts/explanation.hpp"
#include "tests/inspect/reader/library_reader.hpp"

namespace inspect {
namespace {

TEST(HostileMessage, ExplainsSharedVtableOnce) {
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

TEST(HostileMessage, LimitsRanges) {
  const Bytes bytes = itemsOfOneVtable(40'000, 14);
  const Reading reading = readTable(list(), bytes);
  EXPECT_TRUE(reading.isCut);
  // Ranges for unread bytes come in addition.
  EXPECT_LE(reading.ranges.size(), 2 * mostRanges());
  EXPECT_EQ(unsoundness(reading, bytes), "");
  EXPECT_NE(std::ranges::find(reading.notes, "only 131072 ranges are explained"),
            reading.notes.end());
  EXPECT_TRUE(reading.isAccepted());
  EXPECT_EQ(reading.memory, judge(list(), bytes).memory);
}

TEST(HostileMessage, ShowsSharedContentsOnce) {
  constexpr uint32_t items = 500;
  const Bytes bytes = itemsOfOneText(items, 100'000, 'a');
  const Reading reading = readTable(list(), bytes);
  EXPECT_EQ(reading.faults.size(), items);
  Text out;
  explain(list(), reading, bytes, true, Colors(), out);
  const std::string_view text = out.view();
  EXPECT_NE(text.find("bytes shown above"), std::string::npos);
  EXPECT_EQ(text.find("more bytes"), std::string::npos);
  // A line of 8 bytes is shorter than 200 characters.
  EXPECT_LT(text.size(), 200 * (bytes.size() / 8 + reading.ranges.size() * 6));
  size_t marks = 0;
  for (size_t at = 0; (at = text.find("^^ ", at)) != std::string::npos; ++at) {
    ++marks;
  }
  EXPECT_EQ(marks, items);
}

TEST(HostileMessage, LimitsFaults) {
  const Bytes thousand = itemsOfOneText(1000, 8, 'a');
  EXPECT_EQ(faultCountText(judge(list(), thousand)), "1000 faults");
  const Bytes more = itemsOfOneText(1001, 8, 'a');
  EXPECT_EQ(faultCountText(judge(list(), more)), "at least 1000 faults");
  EXPECT_FALSE(judge(list(), more).isAccepted());
}

TEST(HostileMessage, LimitsMemory) {
  EXPECT_NO_THROW(decode(list(), itemsOfOneVtable(4049, 4)));
  EXPECT_THROW(decode(list(), itemsOfOneVtable(4050, 4)), Failure);
}

}  // namespace
}  // namespace inspect
