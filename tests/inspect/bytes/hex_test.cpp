// Hexadecimal digits, two per byte.

#include <gtest/gtest.h>

#include <cstdio>

#include "inspect/bytes/hex.hpp"
#include "tests/inspect/bytes/failure_of.hpp"

namespace inspect {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(Hex, WritesTwoDigitsPerByte) {
  EXPECT_EQ(toHex(Bytes{0x10, 0x00, 0xAB, 0xff}), "1000abff");
}

TEST(Hex, ReadsBothCases) {
  EXPECT_EQ(fromHex("1000ABff"), (Bytes{0x10, 0x00, 0xAB, 0xff}));
}

TEST(Hex, ReadsEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const Bytes bytes{static_cast<uint8_t>(byte)};
    char upper[8];
    std::snprintf(upper, sizeof upper, "%02X", byte);
    EXPECT_EQ(fromHex(upper), bytes);
    EXPECT_EQ(fromHex(toHex(bytes)), bytes);
  }
}

TEST(Hex, KnowsItsDigits) {
  const std::string_view digits = "0123456789abcdefABCDEF";
  for (int code = 0; code < 256; ++code) {
    const auto letter = static_cast<char>(code);
    EXPECT_EQ(isHexDigit(letter), digits.find(letter) != std::string_view::npos) << code;
  }
}

std::string digitsFailureOf(std::string_view digits) {
  return failureOf([&] { fromHex(digits); });
}

TEST(Hex, RejectsInvalidText) {
  EXPECT_EQ(digitsFailureOf("100"), "an odd number of hexadecimal digits");
  EXPECT_EQ(digitsFailureOf("1g"), "not a hexadecimal digit at character 1");
  EXPECT_EQ(digitsFailureOf("10 0"), "not a hexadecimal digit at character 2");
  EXPECT_EQ(digitsFailureOf("100x"), "not a hexadecimal digit at character 3");
}

}  // namespace
}  // namespace inspect
