// Hexadecimal text as people and programs write it. A position is never read as bytes.

#include "inspect/bytes/hex_text.hpp"

#include <gtest/gtest.h>

#include <random>

#include "tests/inspect/bytes/dumps.hpp"
#include "tests/inspect/bytes/failure_of.hpp"

namespace inspect {
namespace {

using Bytes = std::vector<uint8_t>;

const Bytes four{0x10, 0x00, 0xAB, 0xff};

// The error of a text; empty if it is accepted.
std::string hexTextFailureOf(std::string_view text) {
  return failureOf([&] { fromHexText(text); });
}

#define EXPECT_REJECTED(text, reason) \
  EXPECT_NE(hexTextFailureOf(text).find(reason), std::string::npos) << hexTextFailureOf(text)

TEST(HexText, AcceptsSeparatorsAndComments) {
  EXPECT_EQ(fromHexText("10 00 ab ff"), four);
  EXPECT_EQ(fromHexText("0x10, 0x00,\n0xab:ff # the end"), four);
  EXPECT_EQ(fromHexText("# the beginning\n\n 1000\tABff\r\n"), four);
  EXPECT_TRUE(fromHexText("").empty());
}

TEST(HexText, ReadsEightDigitsAsBytes) {
  EXPECT_EQ(fromHexText("1000abff\n"), four);
  EXPECT_EQ(fromHexText("1000abff\n1000abff\n").size(), 8u);
}

TEST(HexText, ReadsDumps) {
  for (const char* const dump :
       {"00000000: 1000 abff                                ....\n", "    00000000: 1000 abff\n",
        "00000000: 10 00 ab ff  ....\n",
        "00000000  10 00 ab ff                       |....|\n00000004\n", "0000   10 00 ab ff\n",
        "0000   10 00 ab ff   ....\n", "000000 10 00 ab ff\n000004\n",
        "000000 10 00 ab ff  >....<\n000004\n", "\t0x0000:  1000 abff\n"}) {
    EXPECT_EQ(fromHexText(dump), four) << dump;
  }
}

TEST(HexText, ReadsHexdumpStars) {
  const Bytes bytes = fromHexText(
      "00000000  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n"
      "*\n"
      "00000040  10 00 ab ff                                       |....|\n"
      "00000044\n");
  EXPECT_EQ(bytes.size(), 68u);
  EXPECT_EQ(Bytes(bytes.end() - 4, bytes.end()), four);
}

TEST(HexText, ReadsXxdStars) {
  const Bytes bytes = fromHexText(
      "00000000: 0000 0000 0000 0000 0000 0000 0000 0000  ................\n"
      "*\n"
      "00000060: 0000 0000 6162                           ....ab\n");
  Bytes expected(102);
  expected[100] = 'a';
  expected[101] = 'b';
  EXPECT_EQ(bytes, expected);
}

TEST(HexText, ReadsRandomDumps) {
  std::mt19937_64 random(7);
  for (size_t size = 0; size < 200; ++size) {
    for (const unsigned mask : {0x00U, 0x01U, 0xFFU}) {
      Bytes bytes(size);
      for (size_t at = 0; at < size; ++at) {
        // Repeated lines, some with text.
        bytes[at] = static_cast<uint8_t>(at / 16 % 3 == 0 ? random() & mask : mask & ' ');
      }
      for (const std::string& dump : dumpsOf(bytes)) {
        EXPECT_EQ(fromHexText(dump), bytes) << dump;
      }
    }
  }
}

TEST(HexText, ReadsCommentCharactersInDumps) {
  EXPECT_EQ(fromHexText("00000000: 2320 7c3e  # |>\n"), (Bytes{'#', ' ', '|', '>'}));
  EXPECT_EQ(fromHexText("00000000: 2020 6162    ab\n"), (Bytes{' ', ' ', 'a', 'b'}));
}

TEST(HexText, RejectsUnknownPositions) {
  EXPECT_REJECTED("0000000 0010 ffab\n0000004\n",
                  "line 1 is not hexadecimal text: '0000000' looks");
  EXPECT_REJECTED("000000 0010 ffab\n", "looks like a position");
  EXPECT_REJECTED("0000000 10 00 ab ff\n0000004\n", "looks like a position");
  EXPECT_REJECTED("00000010: 1000 abff\n", "looks like a position");
  EXPECT_REJECTED("10 00\n0002 ab ff\n", "line 2 is not hexadecimal text: '0002' looks");
  EXPECT_REJECTED("10 00\n02: ab ff\n", "looks like a position");
  EXPECT_REJECTED("0000:0000 10 00\n", "before a colon");
  EXPECT_REJECTED("0000 1000 abff\n0004 1000 abff\n",
                  "line 2 is not hexadecimal text: '0004' looks");
  EXPECT_REJECTED("00000000  10 00\n00000003  ab ff\n", "looks like a position");
}

TEST(HexText, RejectsSwappedWords) {
  EXPECT_REJECTED("00000000: 44434241   474645                    ABCDEFG\n", "swapped words");
  EXPECT_REJECTED("00000000: 4241 4443  ABCD\n", "do not match the bytes");
}

// Blanks may be missing before the characters, and each number of them is tried: of a megabyte of
// blanks too, that took minutes.
TEST(HexText, ReadsLongLinesInLinearTime) {
  constexpr size_t size = size_t{1} << 20;
  std::string line = "00000000: ";
  for (size_t at = 0; at < size; at += 2) {
    line += "2020 ";
  }
  line += ' ' + std::string(size / 2, '.');
  EXPECT_REJECTED(line + 'x', "do not match the bytes");
  EXPECT_EQ(fromHexText(line + std::string(size / 2, '.')).size(), size);
}

TEST(HexText, ReadsLinesOfXxdAtItsLongest) {
  std::string line = "00000000: ";
  for (size_t at = 0; at < 254; at += 2) {
    line += "2020 ";
  }
  EXPECT_EQ(fromHexText(line + "2061  a").size(), 256u);
  EXPECT_EQ(fromHexText(line + "6120  a").size(), 256u);
}

TEST(HexText, RejectsInvalidStars) {
  const std::string line = "00000000  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00\n";
  EXPECT_REJECTED("*\n", "not hexadecimal");
  EXPECT_REJECTED("00000000: 00\n*\n", "no position follows");
  EXPECT_REJECTED(line + "*\n00000024  00\n", "wrong position");
  EXPECT_REJECTED(line + "*\n00000010  00\n", "wrong position");
  EXPECT_REJECTED(line + "*\nfffffff0\n", "more than 67108864 bytes");
  EXPECT_EQ(fromHexText(line + "*\n03fffff0\n").size(), 0x3fffff0u);
}

TEST(HexText, RejectsOtherText) {
  EXPECT_REJECTED(std::string(40, 'x'), ": '" + std::string(40, 'x') + "' is not");
  EXPECT_REJECTED(std::string(41, 'x'), ": '" + std::string(40, 'x') + "...' is not");
  EXPECT_REJECTED("hello", "line 1 is not hexadecimal text: 'hello'");
  EXPECT_REJECTED("10 0", "whole bytes");
  EXPECT_REJECTED("10 00 # zero\nunsigned char x[] = {", "line 2");
  EXPECT_REJECTED(std::string_view("\x10\0\0\0", 4), "line 1");
}

}  // namespace
}  // namespace inspect
