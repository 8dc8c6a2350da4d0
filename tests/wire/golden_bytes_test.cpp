// Messages written out byte by byte, as the engine writes them and as it reads them back.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Layout;
using harness::operationsOf;
using harness::recorder;
using harness::Unpacked;

template <typename Record>
Buffer packed(const Record& record) {
  const auto& operations = operationsOf(mesh::wire::schemaOf<Record>.name);
  Buffer buffer(1024, harness::mark);
  auto length = static_cast<uint32_t>(buffer.size());
  EXPECT_EQ(operations.pack(&record, buffer.data(), &length), 0U);
  buffer.resize(length);
  return buffer;
}

template <typename Record>
Buffer sent(const Record& record) {
  const auto& operations = operationsOf(mesh::wire::schemaOf<Record>.name);
  harness::resetRecorder();
  EXPECT_EQ(operations.sendSingle(1, &record, harness::unused, 0), 0U);
  return recorder().sent.at(0).bytes;
}

// A whole record without padding and pointers, compared as bytes.
template <typename Record>
void expectReadBack(const Buffer& bytes, const Record& record) {
  const Unpacked<Record> unpacked(bytes);
  EXPECT_EQ(unpacked.trace, harness::Trace());
  EXPECT_EQ(hex(harness::bytesOf(unpacked.record)), hex(harness::bytesOf(record)));
}

void expectKey(const Buffer& bytes, uint16_t f0) {
  Unpacked<dbginfo_key_l2vpn> key(bytes);
  EXPECT_EQ(key.record.f0, f0);
  EXPECT_EQ(key.record.f1, 0x0304);
  EXPECT_EQ(key.record.f2, 0x05060708U);
  ASSERT_EQ(key.record.f3_len, 3U);
  EXPECT_EQ(std::string(key.record.f3, key.record.f3 + 3), "abc");
  key.release();
}

uint8_t keyText[] = {'a', 'b', 'c'};

// Field by field, so that nothing is said about padding.
l2vpn_sync_vpls_ac attachmentCircuit() {
  l2vpn_sync_vpls_ac record;
  std::memset(&record, 0, sizeof record);
  record.f0 = 0x11121314;
  record.f1 = 0x21222324;
  record.f2 = 0x31323334;
  record.f3 = 0x41424344;
  record.f4 = 0x51;
  record.f5 = 0x52;
  record.f6 = 0x6162;
  record.f7 = 0x71;
  std::memset(record.f8, 0x88, sizeof record.f8);
  std::memset(record.f9, 0x99, sizeof record.f9);
  return record;
}

l2vpn_stat_pw_stat statistics() {
  return {0x11121314, 0x21222324, 0x31, {0xA1, 0xA2, 0xA3}, 0x51525354, 5, 6, 7, 8, 9, 10, 11, 12};
}

const Buffer circuitImage = Layout()
                                .u32(4)    // root
                                .u32(-68)  // vtable at 72
                                .u32(0x11121314, 0x21222324, 0x31323334, 0x41424344)
                                .u8(0x51, 0x52)
                                .u16(0x6162)
                                .u8(0x71)
                                .u32(4, 12)
                                .fill(12, 0x88)
                                .u32(4, 12)
                                .fill(12, 0x99)
                                .zeros(3)
                                .u16(24, 65)
                                .u16(4, 8, 12, 16, 20, 21, 22, 24, 25, 45);

TEST(GoldenBytes, OfAKeyWithAllFieldsPresent) {
  const dbginfo_key_l2vpn key{0x0102, 0x0304, 0x05060708, 3, keyText};
  const Buffer bytes = {16, 0, 0,  0,                   // root
                        12, 0, 23, 0,                   // vtable: its length, the table's
                        4,  0, 6,  0, 8,   0,   12, 0,  // slots
                        12, 0, 0,  0,                   // the table: back to its vtable
                        2,  1,                          // f0
                        4,  3,                          // f1
                        8,  7, 6,  5,                   // f2
                        4,  0, 0,  0,                   // f3: from here to its length
                        3,  0, 0,  0, 'a', 'b', 'c'};
  ASSERT_EQ(bytes.size(), 39U);
  EXPECT_EQ(hex(packed(key)), hex(bytes));
  EXPECT_EQ(hex(sent(key)), hex(bytes));
  expectKey(bytes, 0x0102);
}

TEST(GoldenBytes, OfAKeyWithoutItsFirstField) {
  const dbginfo_key_l2vpn key{0, 0x0304, 0x05060708, 3, keyText};
  const Buffer bytes = {16, 0, 0, 0, 12, 0, 21, 0, 0, 0, 4, 0, 6, 0, 10, 0,   12,  0,  0,
                        0,  4, 3, 8, 7,  6, 5,  4, 0, 0, 0, 3, 0, 0, 0,  'a', 'b', 'c'};
  ASSERT_EQ(bytes.size(), 37U);
  EXPECT_EQ(hex(packed(key)), hex(bytes));
  EXPECT_EQ(hex(sent(key)), hex(bytes));
  expectKey(bytes, 0);
}

TEST(GoldenBytes, OfAKeyOfZeros) {
  const dbginfo_key_l2vpn key{};
  const Buffer bytes = {16, 0, 0, 0, 12, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 12, 0, 0, 0};
  EXPECT_EQ(hex(packed(key)), hex(bytes));
  EXPECT_EQ(hex(sent(key)), hex(bytes));
  expectReadBack(bytes, key);
}

TEST(GoldenBytes, OfAByteReversedKey) {
  const dbginfo_key_l2vpn key{0x0102, 0x0304, 0x05060708, 3, keyText};
  const Buffer bytes = {0, 0, 0, 16, 0, 12, 0, 23, 0, 4, 0, 6, 0, 8, 0, 12, 0,   0,   0,  12,
                        1, 2, 3, 4,  5, 6,  7, 8,  0, 0, 0, 4, 0, 0, 0, 3,  'a', 'b', 'c'};
  const auto& operations = operationsOf("dbginfo_key_l2vpn");
  harness::useByteOrder(operations, true);
  EXPECT_EQ(hex(packed(key)), hex(bytes));
  EXPECT_EQ(hex(sent(key)), hex(bytes));
  expectKey(bytes, 0x0102);
  harness::useByteOrder(operations, false);
}

TEST(GoldenBytes, OfAByteReversedFixedImage) {
  const l2vpn_sync_stp record{0x01020304, 0, 5, 0x80000001};
  const Buffer bytes = {0, 0,  0, 4,  0xFF, 0xFF, 0xFF, 0xEC,  // root; vtable at 24
                        1, 2,  3, 4,  0,    0,    0,    0,     // f0, f1
                        0, 0,  0, 5,  0x80, 0,    0,    1,     // f2, f3
                        0, 12, 0, 20, 0,    4,    0,    8,     // vtable
                        0, 12, 0, 16, 0,    0,    0,    0};    // and padding
  const auto& operations = operationsOf("l2vpn_sync_stp");
  harness::useByteOrder(operations, true);
  EXPECT_EQ(hex(sent(record)), hex(bytes));
  expectReadBack(bytes, record);
  harness::useByteOrder(operations, false);
}

TEST(GoldenBytes, OfAnAttachmentCircuitsImage) {
  ASSERT_EQ(circuitImage.size(), 96U);
  EXPECT_EQ(hex(sent(attachmentCircuit())), hex(circuitImage));
  expectReadBack(circuitImage, attachmentCircuit());
}

TEST(GoldenBytes, OfAnAttachmentCircuitUpdatesImage) {
  l2vpn_sync_vpls_ac_update update;
  std::memset(&update, 0, sizeof update);
  update.f0 = 0x0708;
  update.f1 = attachmentCircuit();
  const Buffer bytes = Layout()
                           .u32(4, -104)  // root; vtable at 108
                           .u16(0x0708)
                           .append(circuitImage)
                           .zeros(2)
                           .u16(8, 102, 4, 6)
                           .zeros(4);
  ASSERT_EQ(bytes.size(), 120U);
  EXPECT_EQ(hex(sent(update)), hex(bytes));
  expectReadBack(bytes, update);
}

TEST(GoldenBytes, OfAPackedAttachmentCircuitOfZeros) {
  l2vpn_sync_vpls_ac record;
  std::memset(&record, 0, sizeof record);
  const Buffer bytes = Layout()
                           .u32(28)
                           .u16(24, 44)
                           .u16(0, 0, 0, 0, 0, 0, 0, 0, 4, 8)
                           .u32(24)
                           .u32(8, 20)
                           .u32(12)
                           .zeros(12)
                           .u32(12)
                           .zeros(12);
  ASSERT_EQ(bytes.size(), 72U);
  EXPECT_EQ(hex(packed(record)), hex(bytes));
  expectReadBack(bytes, record);
}

TEST(GoldenBytes, OfAPackedAttachmentCircuitWithoutZeros) {
  const Buffer bytes = Layout()
                           .u32(28)
                           .u16(24, 65)
                           .u16(4, 8, 12, 16, 20, 21, 22, 24, 25, 29)
                           .u32(24)
                           .u32(0x11121314, 0x21222324, 0x31323334, 0x41424344)
                           .u8(0x51, 0x52)
                           .u16(0x6162)
                           .u8(0x71)
                           .u32(8, 20)
                           .u32(12)
                           .fill(12, 0x88)
                           .u32(12)
                           .fill(12, 0x99);
  ASSERT_EQ(bytes.size(), 93U);
  EXPECT_EQ(hex(packed(attachmentCircuit())), hex(bytes));
  expectReadBack(bytes, attachmentCircuit());
}

TEST(GoldenBytes, OfPackedStatisticsOfZeros) {
  const l2vpn_stat_pw_stat record{};
  const Buffer bytes = Layout()
                           .u32(34)
                           .u16(30, 15)
                           .u16(0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0)
                           .u32(30)
                           .u32(4, 3)
                           .zeros(3);
  ASSERT_EQ(bytes.size(), 49U);
  EXPECT_EQ(hex(packed(record)), hex(bytes));
  expectReadBack(bytes, record);
}

// Two keys absent: 49 and the widths of everything else.
TEST(GoldenBytes, OfPackedStatisticsWithTheirCountersAndOneWord) {
  l2vpn_stat_pw_stat record = statistics();
  record.f0 = 0;
  record.f1 = 0;
  record.f2 = 0;
  const Buffer bytes = Layout()
                           .u32(34)
                           .u16(30, 83)
                           .u16(0, 0, 0, 72, 4, 8, 16, 24, 32, 40, 48, 56, 64)
                           .u32(30)
                           .u32(0x51525354)
                           .u64(5, 6, 7, 8, 9, 10, 11, 12)
                           .u32(4, 3)
                           .u8(0xA1, 0xA2, 0xA3);
  ASSERT_EQ(bytes.size(), 117U);
  EXPECT_EQ(hex(packed(record)), hex(bytes));
  expectReadBack(bytes, record);
}

// The scalars come first, then the word of the byte array in slot 3.
TEST(GoldenBytes, OfPackedStatisticsWithoutZeros) {
  const Buffer bytes = Layout()
                           .u32(34)
                           .u16(30, 92)
                           .u16(4, 8, 12, 81, 13, 17, 25, 33, 41, 49, 57, 65, 73)
                           .u32(30)
                           .u32(0x11121314, 0x21222324)
                           .u8(0x31)
                           .u32(0x51525354)
                           .u64(5, 6, 7, 8, 9, 10, 11, 12)
                           .u32(4, 3)
                           .u8(0xA1, 0xA2, 0xA3);
  ASSERT_EQ(bytes.size(), 126U);
  EXPECT_EQ(hex(packed(statistics())), hex(bytes));
  expectReadBack(bytes, statistics());
}

TEST(GoldenBytes, OfStatisticsImage) {
  const Buffer bytes = Layout()
                           .u32(4, -92)
                           .u32(0x11121314, 0x21222324)
                           .u8(0x31)
                           .u32(4, 3)
                           .u8(0xA1, 0xA2, 0xA3)
                           .u32(0x51525354)
                           .u64(5, 6, 7, 8, 9, 10, 11, 12)
                           .u16(30, 92)
                           .u16(4, 8, 12, 13, 24, 28, 36, 44, 52, 60, 68, 76, 84)
                           .zeros(2);
  ASSERT_EQ(bytes.size(), 128U);
  EXPECT_EQ(hex(sent(statistics())), hex(bytes));
  expectReadBack(bytes, statistics());
}

}  // namespace
