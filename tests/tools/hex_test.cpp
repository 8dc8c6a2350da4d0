// Hexadecimal text as people and programs write it.

#include <gtest/gtest.h>

#include "failure.hpp"
#include "hex.hpp"

namespace tool {
namespace {

using Bytes = std::vector<uint8_t>;

const Bytes four{0x10, 0x00, 0xAB, 0xff};

TEST(Hex, WritesTwoDigitsAByte) {
  EXPECT_EQ(toHex(four), "1000abff");
}

TEST(Hex, ReadsWhatItWrites) {
  EXPECT_EQ(fromHex("1000ABff"), four);
}

TEST(Hex, RefusesHalfAByteAndOtherLetters) {
  EXPECT_THROW(fromHex("100"), Failure);
  EXPECT_THROW(fromHex("1g"), Failure);
  EXPECT_THROW(fromHex("10 0"), Failure);
}

TEST(HexText, MayBeSeparatedAndCommented) {
  EXPECT_EQ(fromHexText("10 00 ab ff"), four);
  EXPECT_EQ(fromHexText("0x10, 0x00,\n0xab:ff # the end"), four);
}

TEST(HexText, EightDigitsAloneAreBytes) {
  EXPECT_EQ(fromHexText("1000abff\n"), four);
  EXPECT_EQ(fromHexText("1000abff\n1000abff\n")->size(), 8u);
}

TEST(HexText, IsReadFromXxd) {
  EXPECT_EQ(fromHexText("00000000: 1000 abff                                ....\n"), four);
}

TEST(HexText, IsReadFromHexdumpWithItsStars) {
  const auto bytes = fromHexText(
      "00000000  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n"
      "*\n"
      "00000040  10 00 ab ff                                       |....|\n"
      "00000044\n");
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->size(), 68u);
  EXPECT_EQ(Bytes(bytes->end() - 4, bytes->end()), four);
}

TEST(HexText, IsNothingElse) {
  EXPECT_FALSE(fromHexText("hello"));
  EXPECT_FALSE(fromHexText(std::string_view("\x10\0\0\0", 4)));
}

}  // namespace
}  // namespace tool
