// A message of 2^32 - 1 bytes, the maximum of a 32-bit length. Its memory is repeated: four
// gigabytes of addresses share two megabytes.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "support/bytes.hpp"
#include "support/repeated_memory.hpp"

namespace {

using harness::Buffer;
using harness::RepeatedMemory;

constexpr uint32_t largest = 0xFFFFFFFF;
constexpr uint32_t head = 28;  // of a message with only a byte string

// Within the repeated stretch every byte is 'x', and so is every byte of the text.
void expectMessage(const uint8_t* message) {
  EXPECT_EQ(harness::hex(std::span(message, head + 4)),
            harness::hex(harness::Layout()
                             .u32(16)
                             .u16(12, (largest - 16) % 0x10000, 0, 0, 0, 4)
                             .u32(12, 4, largest - head)
                             .text("xxxx")));
  for (const uint64_t at : {uint64_t{1} << 31, uint64_t{largest} - 16}) {
    EXPECT_EQ(std::string(message + at, message + at + 16), std::string(16, 'x')) << at;
  }
}

TEST(LargestMessage, IsPacked) {
  if (!harness::canRepeatMemory) {
    GTEST_SKIP() << "the thread sanitizer";
  }
  const RepeatedMemory text(largest - head, 'x');
  const RepeatedMemory buffer(largest, 0);
  const dbginfo_key_l2vpn key{0, 0, 0, largest - head, text.data()};
  uint32_t length = largest;
  harness::resetRecorder();
  ASSERT_EQ(dbginfo_key_l2vpn__pack(&key, buffer.data(), &length), 0U);
  EXPECT_EQ(length, largest);
  expectMessage(buffer.data());
  EXPECT_EQ(buffer.data()[largest], 0) << "the byte behind it";
  EXPECT_EQ(harness::takeTrace(), harness::Trace());
}

TEST(LargestMessage, IsFollowedByNone) {
  const RepeatedMemory text(largest, 'x');
  for (const uint32_t more : {1U, 2U, head}) {
    const dbginfo_key_l2vpn key{0, 0, 0, largest - head + more, text.data()};
    std::array<uint8_t, 64> buffer;
    buffer.fill(harness::mark);
    uint32_t length = largest;
    EXPECT_EQ(dbginfo_key_l2vpn__pack(&key, buffer.data(), &length), 0xFFFFFFFFU);
    EXPECT_EQ(length, largest);
    EXPECT_EQ(Buffer(buffer.begin(), buffer.end()), harness::marks(64));
  }
}

// Receivers treat lengths as signed, so no receiver accepts this message.
TEST(LargestMessage, IsNotRead) {
  const RepeatedMemory buffer(largest, 0);
  harness::Unpacked<dbginfo_key_l2vpn> read(buffer.data(), largest);
  EXPECT_EQ(harness::bytesOf(read.record), harness::marks(sizeof read.record));
}

}  // namespace
