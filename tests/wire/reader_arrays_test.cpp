// Byte arrays inside the record: one length, and no other.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Layout;
using harness::Trace;
using harness::Unpacked;

// An attachment circuit with f0 and its two arrays: vtable at 4, table at 28, the lengths at 44 and
// 60; twenty bytes more, so that a length above 12 still lies inside.
Buffer circuit() {
  return Layout()
      .u32(28)
      .u16(24, 0, 4, 0, 0, 0, 0, 0, 0, 0, 8, 12)
      .u32(24)
      .u32(0x11111111)
      .u32(8, 20)
      .u32(12)
      .fill(12, 0x88)
      .u32(12)
      .fill(12, 0x99)
      .fill(20, 0xEE);
}

// The whole record afterwards; f8 and f9 as given.
void expectCircuit(const Buffer& bytes, const Buffer& f8, const Buffer& f9,
                   const std::string& why) {
  const harness::GuardedBuffer guarded(bytes);
  const Unpacked<l2vpn_sync_vpls_ac> read(guarded.data(), static_cast<uint32_t>(bytes.size()));
  const Buffer expected = Layout().u32(0x11111111).zeros(17).append(f8).append(f9).zeros(3);
  EXPECT_EQ(hex(harness::bytesOf(read.record)), hex(expected)) << why;
  EXPECT_EQ(read.trace, Trace()) << why;
}

const Buffer eights(12, 0x88);
const Buffer nines(12, 0x99);
const Buffer none(12, 0);

TEST(Reader, CopiesAnArrayOfItsDeclaredLength) {
  expectCircuit(circuit(), eights, nines, "as it is");
}

TEST(Reader, FailsOnAnArrayOfAnotherLength) {
  for (const uint32_t length : {0U, 1U, 11U, 13U, 24U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U,
                                0x8000000CU, 0xFFFFFFFFU}) {
    const std::string why = "length " + std::to_string(length);
    expectCircuit(harness::withU32(circuit(), 44, length), none, none, why + " first");
    expectCircuit(harness::withU32(circuit(), 60, length), eights, none, why + " second");
  }
}

TEST(Reader, FailsOnAnArrayThatPassesTheEnd) {
  for (const size_t size : {75U, 64U, 63U, 61U, 60U}) {
    expectCircuit(harness::firstBytes(circuit(), size), eights, none,
                  "of " + std::to_string(size) + " bytes");
  }
  expectCircuit(harness::firstBytes(circuit(), 76), eights, nines, "of just enough");
}

TEST(Reader, FailsOnAnArrayWhoseWordOrTargetPassesTheEnd) {
  // 96 bytes, the second word at 40.
  for (const uint32_t word : {53U, 56U, 57U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U,
                              0xFFFFFFFFU, 0U - 40U, 4U - 40U}) {
    expectCircuit(harness::withU32(circuit(), 40, word), eights, none,
                  "word " + std::to_string(word));
  }
  for (const uint32_t entry : {65U, 68U, 0x7FFFU, 0x8000U, 0xFFFFU}) {
    expectCircuit(harness::withU16(circuit(), 26, entry), eights, none,
                  "entry " + std::to_string(entry));
  }
}

TEST(Reader, AcceptsTwoArraysInOnePlace) {
  expectCircuit(harness::withU32(circuit(), 40, 4), eights, eights, "second word to the first");
}

// A condition with f0 and its array, the length at 26.
Buffer condition(uint32_t length) {
  return Layout()
      .u32(14)
      .u16(10, 0, 4, 0, 8)
      .u32(10)
      .u32(0x11111111)
      .u32(4, length)
      .fill(129, 0x77);
}

TEST(Reader, FailsOnAConditionWhoseArrayIsNotOf128Bytes) {
  for (const uint32_t length : {0U, 127U, 129U, 0x80000080U}) {
    const Unpacked<l2vpn_cfg_query_dfx_cond> read(condition(length));
    EXPECT_EQ(hex(harness::bytesOf(read.record)), hex(Layout().u32(0x11111111).zeros(132)))
        << "length " << length;
    EXPECT_EQ(read.trace, Trace());
  }
  const Unpacked<l2vpn_cfg_query_dfx_cond> read(condition(128));
  EXPECT_EQ(hex(harness::bytesOf(read.record)), hex(Layout().u32(0x11111111, 0).fill(128, 0x77)));
}

TEST(Reader, FailsOnStatisticsWhoseArrayIsNotOfThreeBytes) {
  // f4 comes after the array and is not read once that has failed.
  const auto statistics = [](uint32_t length) -> Buffer {
    return Layout()
        .u32(18)
        .u16(14, 0, 4, 0, 0, 12, 8)
        .u32(14)
        .u32(0x11111111, 0x44444444)
        .u32(4, length)
        .u8(1, 2, 3, 4);
  };
  for (const uint32_t length : {0U, 2U, 4U}) {
    const Unpacked<l2vpn_stat_pw_stat> read(statistics(length));
    EXPECT_EQ(hex(harness::bytesOf(read.record)), hex(Layout().u32(0x11111111).zeros(76)))
        << "length " << length;
    EXPECT_EQ(read.trace, Trace());
  }
  EXPECT_EQ(Unpacked<l2vpn_stat_pw_stat>(statistics(3)).record.f4, 0x44444444U);
}

}  // namespace
