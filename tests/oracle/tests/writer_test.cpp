// The oracle's writers against buffers written out byte by byte.
#include <gtest/gtest.h>

#include "oracle/messages/description.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "oracle/values/value.hpp"

namespace oracle {
namespace {

Value keyExample() {
  Value value = zeroValue(descriptionOf("dbginfo_key_l2vpn"));
  value[0].scalar = 0x1122;
  value[1].scalar = 0x3344;
  value[2].scalar = 0x55667788;
  setBytes(value[3], {'a', 'b', 'c'});
  return value;
}

Value vplsAcExample() {
  Value value = withScalars(descriptionOf("l2vpn_sync_vpls_ac"), 0x0A0B0C0D);
  value[8].bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  value[9].bytes.assign(12, 0xF9);
  return value;
}

TestBuffer vplsAcImage() {
  TestBuffer image;
  image.u32({4, static_cast<uint32_t>(-68)});
  image.u32({0x0A0B0C0D, 0x0A0B0C0D, 0x0A0B0C0D, 0x0A0B0C0D}).u8(0x0D).u8(0x0D).u16(0x0C0D);
  image.u8(0x0D);
  image.u32({4, 12}).bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  image.u32({4, 12}).bytes(std::vector<uint8_t>(12, 0xF9));
  image.zeros(3);
  image.u16({24, 65, 4, 8, 12, 16, 20, 21, 22, 24, 25, 45});
  return image;
}

TEST(Oracle, PacksADebugKeyTo39Bytes) {
  TestBuffer expected;
  expected.u32(16).u16({12, 23, 4, 6, 8, 12}).u32(12);
  expected.u16({0x1122, 0x3344}).u32(0x55667788).u32({4, 3}).bytes({'a', 'b', 'c'});
  EXPECT_EQ(packed(descriptionOf("dbginfo_key_l2vpn"), keyExample()), expected.content);
  EXPECT_EQ(expected.content.size(), 39U);
}

TEST(Oracle, MovesLaterFieldsDownWhenAScalarIsZero) {
  Value value = keyExample();
  value[0].scalar = 0;
  TestBuffer expected;
  expected.u32(16).u16({12, 21, 0, 4, 6, 10}).u32(12);
  expected.u16(0x3344).u32(0x55667788).u32({4, 3}).bytes({'a', 'b', 'c'});
  EXPECT_EQ(packed(descriptionOf("dbginfo_key_l2vpn"), value), expected.content);
  EXPECT_EQ(expected.content.size(), 37U);
}

TEST(Oracle, ReversesNumbersButNotContents) {
  const std::vector<uint8_t> expected = {
      0,    0,    0,    16,   0,    12,   0,    23,   0, 4, 0, 6, 0, 8, 0, 12, 0,   0,   0,  12,
      0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0, 0, 0, 4, 0, 0, 0, 3,  'a', 'b', 'c'};
  EXPECT_EQ(packed(descriptionOf("dbginfo_key_l2vpn"), keyExample(), true), expected);
}

TEST(Oracle, PacksAnAllZeroDebugKeyTo20Bytes) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  EXPECT_EQ(packed(key, zeroValue(key)),
            TestBuffer().u32(16).u16({12, 4, 0, 0, 0, 0}).u32(12).content);
}

TEST(Oracle, CountsAPointerWithoutLengthButDoesNotWriteIt) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  Value value = zeroValue(key);
  value[0].scalar = 5;
  setBytes(value[3], {});
  TestBuffer expected;
  expected.u32(16).u16({12, 6, 4, 0, 0, 0}).u32(12).u16(5).bytes(std::vector<uint8_t>(8, 0xEE));
  EXPECT_EQ(packed(key, value), expected.content);
}

TEST(Oracle, IgnoresALengthWithoutAPointer) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  Value value = zeroValue(key);
  value[3].length = 100;
  EXPECT_EQ(compactSize(key, value), 20U);
  EXPECT_EQ(packed(key, value), packed(key, zeroValue(key)));
}

TEST(Oracle, LeavesTheLast8BytesOfANestedEmptyString) {
  const Description& type = descriptionOf("dbginfo_cmd_key_l2vpn");
  Value value = zeroValue(type);
  setBytes(nested(value[3])[7], {});
  TestBuffer expected;
  expected.u32(18).u16({14, 12, 0, 0, 0, 4, 8}).u32(14).u32({28, 40});
  expected.u16({20, 4}).zeros(16).u32(20);
  expected.u16({12, 4}).zeros(8).u32(12);
  expected.bytes(std::vector<uint8_t>(8, 0xEE));
  EXPECT_EQ(packed(type, value), expected.content);
  EXPECT_EQ(expected.content.size(), 78U);
}

TEST(Oracle, InterleavesScalarsAndOffsetWordsInConfigurationMessages) {
  const Description& type = descriptionOf("l2vpn_cfg_query_comm_rec");
  Value value = zeroValue(type);
  value[0].scalar = 1;
  setBytes(value[3], {7, 8});
  value[4].scalar = 9;
  TestBuffer expected;
  expected.u32(18).u16({14, 22, 4, 0, 0, 8, 12}).u32(14).u32({1, 8, 9, 2}).bytes({7, 8});
  EXPECT_EQ(packed(type, value), expected.content);
}

TEST(Oracle, PutsScalarsBeforeOffsetWordsInStatistics) {
  const Description& type = descriptionOf("l2vpn_stat_pw_stat");
  Value value = zeroValue(type);
  value[0].scalar = 1;
  value[3].bytes = {7, 8, 9};
  value[12].scalar = 2;
  TestBuffer expected;
  expected.u32(34).u16({30, 27, 4, 0, 0, 16, 0, 0, 0, 0, 0, 0, 0, 0, 8}).u32(30);
  expected.u32(1).u64(2).u32({4, 3}).bytes({7, 8, 9});
  EXPECT_EQ(packed(type, value), expected.content);
}

TEST(Oracle, PutsTheScalarOfAnItemBeforeItsOffsetWords) {
  const Description& item = descriptionOf("l2vpn_cfg_query_dfx_item");
  Value value = zeroValue(item);
  std::vector<uint8_t> buffer = packed(item, value);
  EXPECT_EQ(std::vector<uint8_t>(buffer.begin() + 8, buffer.begin() + 18),
            TestBuffer().u16({4, 0, 8, 12, 16}).content);
  value[1].scalar = 6;
  buffer = packed(item, value);
  EXPECT_EQ(std::vector<uint8_t>(buffer.begin() + 8, buffer.begin() + 18),
            TestBuffer().u16({8, 4, 12, 16, 20}).content);
  EXPECT_EQ(buffer.size(), 16626U);
}

TEST(Oracle, PacksAnAllZeroVplsAcTo72Bytes) {
  const Description& type = descriptionOf("l2vpn_sync_vpls_ac");
  TestBuffer expected;
  expected.u32(28).u16({24, 44, 0, 0, 0, 0, 0, 0, 0, 0, 4, 8}).u32(24).u32({8, 20});
  expected.u32(12).zeros(12).u32(12).zeros(12);
  EXPECT_EQ(packed(type, zeroValue(type)), expected.content);
  EXPECT_EQ(expected.content.size(), 72U);
}

TEST(Oracle, PacksAFullVplsAcTo93Bytes) {
  const std::vector<uint8_t> buffer = packed(descriptionOf("l2vpn_sync_vpls_ac"), vplsAcExample());
  EXPECT_EQ(buffer.size(), 93U);
  EXPECT_EQ(std::vector<uint8_t>(buffer.begin() + 4, buffer.begin() + 28),
            TestBuffer().u16({24, 65, 4, 8, 12, 16, 20, 21, 22, 24, 25, 29}).content);
}

TEST(Oracle, ImagesAVplsAcIn96Bytes) {
  EXPECT_EQ(fixedImage(descriptionOf("l2vpn_sync_vpls_ac"), vplsAcExample(), false),
            vplsAcImage().content);
  EXPECT_EQ(vplsAcImage().content.size(), 96U);
}

TEST(Oracle, ImagesAVplsAcUpdateIn120Bytes) {
  const Description& type = descriptionOf("l2vpn_sync_vpls_ac_update");
  Value value = zeroValue(type);
  value[0].scalar = 0x0102;
  nested(value[1]) = vplsAcExample();
  TestBuffer expected;
  expected.u32({4, static_cast<uint32_t>(-104)}).u16(0x0102).bytes(vplsAcImage().content).zeros(2);
  expected.u16({8, 102, 4, 6}).zeros(4);
  EXPECT_EQ(fixedImage(type, value, false), expected.content);
  EXPECT_EQ(expected.content.size(), 120U);
}

TEST(Oracle, ImagesAVllAcUpdateWithItsVtableAt124) {
  const Description& type = descriptionOf("l2vpn_sync_vll_ac_update");
  const std::vector<uint8_t> image = fixedImage(type, zeroValue(type), false);
  EXPECT_EQ(image.size(), 136U);
  EXPECT_EQ(numberIn(image, 4, 4), static_cast<uint32_t>(-120));
  EXPECT_EQ(std::vector<uint8_t>(image.begin() + 124, image.begin() + 132),
            TestBuffer().u16({8, 118, 4, 6}).content);
}

TEST(Oracle, ImagesConfigurationMessagesByteForByte) {
  const Description& condition = descriptionOf("l2vpn_cfg_query_dfx_cond");
  TestBuffer expected;
  expected.u32({4, static_cast<uint32_t>(-148), 7, 7, 4, 128}).zeros(128);
  expected.u16({10, 148, 4, 8, 12}).zeros(6);
  EXPECT_EQ(fixedImage(condition, withScalars(condition, 7), false), expected.content);

  const Description& command = descriptionOf("dbginfo_cmd_ipc_l2vpn");
  TestBuffer ipc;
  ipc.u32({4, static_cast<uint32_t>(-48), 7, 7}).u16({7, 7}).u32({7, 7, 7, 7}).u16(7).u32(7);
  ipc.u16({7, 7}).u32(7).zeros(2);
  ipc.u16({30, 46, 4, 8, 12, 14, 16, 20, 24, 28, 32, 34, 38, 40, 42}).zeros(6);
  EXPECT_EQ(fixedImage(command, withScalars(command, 7), false), ipc.content);
}

TEST(Oracle, PacksAnAllZeroWrapperTo42Bytes) {
  const Description& type = descriptionOf("l2vpn_sync_vllexp_update");
  TestBuffer expected;
  expected.u32(12).u16({8, 8, 0, 4}).u32({8, 22}).u16({18, 4}).zeros(14).u32(18);
  EXPECT_EQ(packed(type, zeroValue(type)), expected.content);
  EXPECT_EQ(expected.content.size(), 42U);
}

TEST(Oracle, PacksUpdatesAndDeletesAlike) {
  Value update = withScalars(descriptionOf("l2vpn_sync_vll_ac_update"), 3);
  Value remove = withScalars(descriptionOf("l2vpn_sync_vll_ac_delete"), 3);
  EXPECT_EQ(packed(*update.message, update), packed(*remove.message, remove));
  EXPECT_EQ(fixedImage(*update.message, update, false), fixedImage(*remove.message, remove, false));
}

TEST(Oracle, PacksSingleScalarsIntoTheirSlots) {
  Value extension = zeroValue(descriptionOf("l2vpn_sync_extnhp"));
  extension[4].scalar = 1;
  EXPECT_EQ(packed(*extension.message, extension),
            TestBuffer().u32(20).u16({16, 5, 0, 0, 0, 0, 4, 0}).u32(16).u8(1).content);
  Value tree = zeroValue(descriptionOf("l2vpn_sync_stp"));
  tree[3].scalar = 7;
  EXPECT_EQ(packed(*tree.message, tree),
            TestBuffer().u32(16).u16({12, 8, 0, 0, 0, 4}).u32({12, 7}).content);
  Value withdrawal = zeroValue(descriptionOf("l2vpn_sync_vpls_pw_macdraw"));
  withdrawal[7].scalar = 9;
  EXPECT_EQ(packed(*withdrawal.message, withdrawal),
            TestBuffer().u32(26).u16({22, 8, 0, 0, 0, 0, 0, 0, 0, 4, 0}).u32({22, 9}).content);
  Value ping = zeroValue(descriptionOf("l2vpn_sync_vpls_macping"));
  EXPECT_EQ(packed(*ping.message, ping), TestBuffer()
                                             .u32(34)
                                             .u16({30, 18, 0, 0, 0, 0, 0, 4})
                                             .zeros(14)
                                             .u32({30, 4, 6})
                                             .zeros(6)
                                             .content);
  ping[0].scalar = 1;
  EXPECT_EQ(packed(*ping.message, ping).size(), 60U);
  EXPECT_EQ(numberIn(packed(*ping.message, ping), 38, 8), 1U);
}

TEST(Oracle, LeadsFromAVectorToItsItems) {
  const Description& type = descriptionOf("l2vpn_cfg_query_dfx_rec");
  const Description& item = descriptionOf("l2vpn_cfg_query_dfx_item");
  Value value = zeroValue(type);
  setItems(value[1], {zeroValue(item), withScalars(item, 5)});
  EXPECT_EQ(compactSize(type, value), 18U + 28 + 8 + 16618 + 16622);
  const std::vector<uint8_t> buffer = packed(type, value);
  TestBuffer head;
  head.u32(12).u16({8, 12, 4, 8}).u32(8).u32({22, 22});
  head.u16({14, 4}).zeros(10).u32(14);                 // the nested result, its table at 38
  head.u32({2, 22, 4 + 16618 + 14}).u16({14, 16604});  // items: words at 46 and 50, vtable at 54
  ASSERT_EQ(std::vector<uint8_t>(buffer.begin(), buffer.begin() + 58), head.content);
  EXPECT_EQ(numberIn(buffer, 54 + 16618, 2), 14U);
  EXPECT_EQ(numberIn(buffer, 54 + 16618 + 2, 2), 16608U);
}

}  // namespace
}  // namespace oracle
