// What the compact writer leaves out, what it counts, and what it leaves as it was.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Layout;
using harness::mark;
using harness::Trace;
using harness::Unpacked;

uint8_t text[] = {'a', 'b', 'c', 'd', 'e'};

// Packed into a buffer of marks, of the exact size when `size` is it.
template <typename Record>
Buffer packed(const Record& record, uint32_t size) {
  Buffer buffer = harness::marks(size);
  uint32_t length = size;
  EXPECT_EQ(harness::operationsOf(mesh::wire::schemaOf<Record>.name)
                .pack(&record, buffer.data(), &length),
            0U);
  EXPECT_EQ(length, size);
  return buffer;
}

TEST(Writer, LeavesOutZerosAndMovesWhatFollows) {
  const dbginfo_key_l2vpn key{0, 0x2222, 0, 2, text};
  EXPECT_EQ(hex(packed(key, 32)),
            hex(Layout().u32(16).u16(12, 16, 0, 4, 0, 6).u32(12).u16(0x2222).u32(4, 2).text("ab")));
}

TEST(Writer, LeavesOutAByteStringWithoutAPointer) {
  const dbginfo_key_l2vpn key{0x1111, 0, 0, 5, nullptr};
  EXPECT_EQ(hex(packed(key, 22)), hex(Layout().u32(16).u16(12, 6, 4, 0, 0, 0).u32(12).u16(0x1111)));
}

// Eight bytes are counted and not written: the buffer keeps what it held there.
TEST(Writer, CountsAByteStringOfLengthZeroAndDoesNotWriteIt) {
  const dbginfo_key_l2vpn key{0x1111, 0, 0, 0, text};
  const Buffer bytes = packed(key, 30);
  EXPECT_EQ(hex(bytes),
            hex(Layout().u32(16).u16(12, 6, 4, 0, 0, 0).u32(12).u16(0x1111).fill(8, mark)));
  const Unpacked<dbginfo_key_l2vpn> read(bytes);
  EXPECT_EQ(read.record.f0, 0x1111);
  EXPECT_EQ(read.record.f3, nullptr);
  EXPECT_EQ(read.record.f3_len, 0U);
  EXPECT_EQ(read.trace, Trace());

  uint32_t length = 29;
  Buffer less = harness::marks(30);
  EXPECT_EQ(dbginfo_key_l2vpn__pack(&key, less.data(), &length), 0xFFFFFFFF);
  EXPECT_EQ(length, 29U);
}

TEST(Writer, CountsEveryByteStringOfLengthZero) {
  const auto unwritten = [](const Buffer& bytes) {
    size_t count = 0;
    while (count < bytes.size() && bytes[bytes.size() - 1 - count] == mark) {
      ++count;
    }
    return count;
  };
  dbginfo_para_l2vpn para{};
  para.f7 = text;
  EXPECT_EQ(unwritten(packed(para, 36)), 8U);
  l2vpn_cfg_query_comm_param param{};
  param.f2 = text;
  EXPECT_EQ(unwritten(packed(param, 26)), 8U);
  l2vpn_cfg_query_comm_rec result{};
  result.f3 = text;
  EXPECT_EQ(unwritten(packed(result, 30)), 8U);
  dbginfo_endata_l2vpn data{};
  data.f12 = text;
  EXPECT_EQ(unwritten(packed(data, 50)), 8U);
  data.f14 = text;
  EXPECT_EQ(unwritten(packed(data, 58)), 16U);
  dbginfo_cmd_key_l2vpn command{};
  command.f3.f7 = text;
  command.f4.f3 = text;
  EXPECT_EQ(unwritten(packed(command, 86)), 16U);
  l2vpn_cfg_query_dfx_key query{};
  query.f0.f2 = text;
  EXPECT_EQ(unwritten(packed(query, 196)), 8U);
  l2vpn_cfg_query_dfx_rec record{};
  record.f0.f3 = text;
  EXPECT_EQ(unwritten(packed(record, 46)), 8U);
}

TEST(Writer, WritesTwoByteStringsOneAfterTheOther) {
  dbginfo_endata_l2vpn data{};
  data.f12 = text;
  data.f12_len = 5;
  data.f13 = 0x13131313;
  data.f14 = text;
  data.f14_len = 2;
  // The inline part in slot order: word, scalar, word.
  EXPECT_EQ(hex(packed(data, 69)), hex(Layout()
                                           .u32(38)
                                           .u16(34, 31)
                                           .zeros(24)
                                           .u16(4, 8, 12)
                                           .u32(34)
                                           .u32(12, 0x13131313, 13)
                                           .u32(5)
                                           .text("abcde")
                                           .u32(2)
                                           .text("ab")));
}

TEST(Writer, WritesEmptyNestedTables) {
  EXPECT_EQ(hex(packed(dbginfo_cmd_key_l2vpn{}, 70)), hex(Layout()
                                                              .u32(18)
                                                              .u16(14, 12, 0, 0, 0, 4, 8)
                                                              .u32(14)
                                                              .u32(28, 40)
                                                              .u16(20, 4)
                                                              .zeros(16)
                                                              .u32(20)
                                                              .u16(12, 4)
                                                              .zeros(8)
                                                              .u32(12)));
}

TEST(Writer, WritesAWrapperOfZeros) {
  EXPECT_EQ(hex(packed(l2vpn_sync_vllexp_update{}, 42)),
            hex(Layout().u32(12).u16(8, 8, 0, 4).u32(8, 22).u16(18, 4).zeros(14).u32(18)));
}

TEST(Writer, WritesAnItemsWordsAfterItsScalar) {
  static l2vpn_cfg_query_dfx_item item;
  item.f1 = 0x11111111;
  const Buffer bytes = packed(item, 16626);
  EXPECT_EQ(hex(harness::firstBytes(bytes, 46)), hex(Layout()
                                                         .u32(18)
                                                         .u16(14, 16608, 8, 4, 12, 16, 20)
                                                         .u32(14)
                                                         .u32(0x11111111)
                                                         .u32(16, 48, 72, 200)
                                                         .u32(32)));
}

TEST(Writer, WritesAVectorBehindTheCommonPart) {
  static l2vpn_cfg_query_dfx_item items[2];
  l2vpn_cfg_query_dfx_rec record{};
  record.f1_count = 2;
  record.f1 = items;
  // 42 bytes up to the vector, its count and two words, two items of 16618.
  const Buffer bytes = packed(record, 33290);
  EXPECT_EQ(hex(harness::firstBytes(bytes, 72)), hex(Layout()
                                                         .u32(12)
                                                         .u16(8, 12, 4, 8)
                                                         .u32(8)
                                                         .u32(22, 22)
                                                         .u16(14, 4, 0, 0, 0, 0, 0)
                                                         .u32(14)
                                                         .u32(2, 22, 16636)
                                                         .u16(14, 16604, 4, 0, 8, 12, 16)
                                                         .u32(14)));
}

TEST(Writer, LetsTheTableLengthOfALongByteStringWrap) {
  for (const uint32_t length : {0xFFF3U, 0xFFF4U, 0x10000U, 70000U}) {
    Buffer contents(length, 'x');
    const dbginfo_key_l2vpn key{0, 0, 0, length, contents.data()};
    const Buffer bytes = packed(key, 28 + length);
    // Twelve bytes beside the contents, of which sixteen bits are kept.
    EXPECT_EQ(hex(harness::firstBytes(bytes, 28)),
              hex(Layout().u32(16).u16(12, 12 + length, 0, 0, 0, 4).u32(12).u32(4, length)));
    Unpacked<dbginfo_key_l2vpn> read(bytes);
    ASSERT_EQ(read.record.f3_len, length);
    EXPECT_EQ(Buffer(read.record.f3, read.record.f3 + length), contents);
    read.release();
  }
}

// Two wrappers of one record differ in their names alone.
TEST(Writer, WritesUpdateAndDeleteAlike) {
  l2vpn_sync_vll_ac_update update{};
  l2vpn_sync_vll_ac_delete removal{};
  update.f0 = removal.f0 = 0x1111;
  update.f1.f0 = removal.f1.f0 = 0x22222222;
  update.f1.f13[11] = removal.f1.f13[11] = 0x33;
  EXPECT_EQ(hex(packed(update, 102)), hex(packed(removal, 102)));
  harness::resetRecorder();
  EXPECT_EQ(l2vpn_sync_vll_ac_update__sendsingle(1, &update, 0, 0), 0U);
  EXPECT_EQ(l2vpn_sync_vll_ac_delete__sendsingle(1, &removal, 0, 0), 0U);
  const auto& sent = harness::recorder().sent;
  ASSERT_EQ(sent.size(), 2U);
  EXPECT_EQ(sent[0].bytes.size(), 136U);
  EXPECT_EQ(hex(sent[0].bytes), hex(sent[1].bytes));
  EXPECT_NE(sent[0].id, sent[1].id);
}

}  // namespace
