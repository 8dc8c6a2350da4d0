// Hexadecimal digits, two per byte.

#include <gtest/gtest.h>

#include "inspect/bytes/failure.hpp"
#include "inspect/bytes/hex.hpp"

namespace inspect {
namespace {

using Bytes = std::vector<uint8_t>;

const Bytes four{0x10, 0x00, 0xAB, 0xff};

TEST(Hex, WritesTwoDigitsPerByte) {
  EXPECT_EQ(toHex(four), "1000abff");
}

TEST(Hex, ReadsBothCases) {
  EXPECT_EQ(fromHex("1000ABff"), four);
}

TEST(Hex, RejectsInvalidText) {
  EXPECT_THROW(fromHex("100"), Failure);
  EXPECT_THROW(fromHex("1g"), Failure);
  EXPECT_THROW(fromHex("10 0"), Failure);
}

}  // namespace
}  // namespace inspect
