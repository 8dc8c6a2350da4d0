// The bounded copies and fills for a process that has none.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "host/memory.hpp"

namespace {

using mesh::host::fallbackCopy;
using mesh::host::fallbackFill;

// Eight letters to write into, between two that must stay.
struct Target {
  char all[10] = {'<', 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', '>'};
  char* data() { return all + 1; }
  std::string text() const {
    std::string shown;
    for (const char letter : all) {
      shown += letter == '\0' ? '0' : letter;
    }
    return shown;
  }
};

const char source[] = "ABCDEFGH";
constexpr size_t tooLarge = SIZE_MAX / 2 + 1;

TEST(FallbackCopy, CopiesWhatFits) {
  Target target;
  EXPECT_EQ(fallbackCopy(target.data(), 8, source, 3), 0);
  EXPECT_EQ(target.text(), "<ABCdefgh>");
  EXPECT_EQ(fallbackCopy(target.data(), 8, source, 8), 0);
  EXPECT_EQ(target.text(), "<ABCDEFGH>");
}

TEST(FallbackCopy, CopiesZeroBytes) {
  Target target;
  EXPECT_EQ(fallbackCopy(target.data(), 8, source, 0), 0);
  EXPECT_EQ(fallbackCopy(target.data(), 0, source, 0), 0);
  EXPECT_EQ(fallbackCopy(target.data(), 8, target.data(), 0), 0) << "nothing overlaps nothing";
  EXPECT_EQ(target.text(), "<abcdefgh>");
}

TEST(FallbackCopy, ClearsTheRoomWhenTheCountPassesIt) {
  for (const size_t count : {size_t{5}, size_t{8}, tooLarge, SIZE_MAX}) {
    Target target;
    EXPECT_NE(fallbackCopy(target.data(), 4, source, count), 0);
    EXPECT_EQ(target.text(), "<0000efgh>") << count;
  }
  Target target;
  EXPECT_NE(fallbackCopy(target.data(), 0, source, 1), 0);
  EXPECT_EQ(target.text(), "<abcdefgh>");
}

TEST(FallbackCopy, ClearsTheRoomWhenThereIsNoSource) {
  Target target;
  EXPECT_NE(fallbackCopy(target.data(), 4, nullptr, 2), 0);
  EXPECT_EQ(target.text(), "<0000efgh>");
  Target other;
  EXPECT_NE(fallbackCopy(other.data(), 4, nullptr, 0), 0);
  EXPECT_EQ(other.text(), "<0000efgh>");
}

TEST(FallbackCopy, ClearsTheRoomWhenTheAreasOverlap) {
  Target forward;
  EXPECT_NE(fallbackCopy(forward.data(), 4, forward.data() + 3, 4), 0);
  EXPECT_EQ(forward.text(), "<0000efgh>");
  Target backward;
  EXPECT_NE(fallbackCopy(backward.data() + 3, 4, backward.data(), 4), 0);
  EXPECT_EQ(backward.text(), "<abc0000h>");
  Target same;
  EXPECT_NE(fallbackCopy(same.data(), 4, same.data(), 4), 0);
  EXPECT_EQ(same.text(), "<0000efgh>");
}

TEST(FallbackCopy, CopiesBetweenNeighbours) {
  Target forward;
  EXPECT_EQ(fallbackCopy(forward.data(), 4, forward.data() + 4, 4), 0);
  EXPECT_EQ(forward.text(), "<efghefgh>");
  Target backward;
  EXPECT_EQ(fallbackCopy(backward.data() + 4, 4, backward.data(), 4), 0);
  EXPECT_EQ(backward.text(), "<abcdabcd>");
}

TEST(FallbackCopy, TouchesNothingWithoutAValidRoom) {
  EXPECT_NE(fallbackCopy(nullptr, 8, source, 3), 0);
  EXPECT_NE(fallbackCopy(nullptr, 0, source, 0), 0);
  for (const size_t room : {tooLarge, SIZE_MAX}) {
    Target target;
    EXPECT_NE(fallbackCopy(target.data(), room, source, 3), 0);
    EXPECT_NE(fallbackCopy(target.data(), room, nullptr, 3), 0);
    EXPECT_EQ(target.text(), "<abcdefgh>") << room;
  }
}

TEST(FallbackFill, FillsWhatFits) {
  Target target;
  EXPECT_EQ(fallbackFill(target.data(), 8, 'x', 3), 0);
  EXPECT_EQ(target.text(), "<xxxdefgh>");
  EXPECT_EQ(fallbackFill(target.data(), 8, 'y', 0), 0);
  EXPECT_EQ(target.text(), "<xxxdefgh>");
  EXPECT_EQ(fallbackFill(target.data(), 8, 0x100 + 'z', 8), 0);
  EXPECT_EQ(target.text(), "<zzzzzzzz>") << "the value is one byte";
}

TEST(FallbackFill, FillsTheRoomWhenTheCountPassesIt) {
  for (const size_t count : {size_t{5}, size_t{8}, tooLarge, SIZE_MAX}) {
    Target target;
    EXPECT_NE(fallbackFill(target.data(), 4, 'x', count), 0);
    EXPECT_EQ(target.text(), "<xxxxefgh>") << count;
  }
}

TEST(FallbackFill, TouchesNothingWithoutAValidRoom) {
  EXPECT_NE(fallbackFill(nullptr, 8, 'x', 3), 0);
  for (const size_t room : {tooLarge, SIZE_MAX}) {
    Target target;
    EXPECT_NE(fallbackFill(target.data(), room, 'x', 3), 0);
    EXPECT_EQ(target.text(), "<abcdefgh>") << room;
  }
}

// This executable has none of the three functions: everything it copies goes this way.
TEST(Fallback, ServesAProcessWithoutBoundedMemory) {
  EXPECT_EQ(&::memcpy_s, nullptr);
  EXPECT_EQ(&::memset_s, nullptr);
  EXPECT_EQ(&::memcpy_sOptAsm, nullptr);
  Target target;
  mesh::host::copyBytes(target.data(), source, 5);
  mesh::host::clearBytes(target.data() + 5, 2);
  EXPECT_EQ(target.text(), "<ABCDE00h>");
}

}  // namespace
