// Configuration queries: comm_param, comm_rec, dfx_cond, dfx_key.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Param = l2vpn_cfg_query_comm_param;
using Rec = l2vpn_cfg_query_comm_rec;
using Cond = l2vpn_cfg_query_dfx_cond;
using DfxKey = l2vpn_cfg_query_dfx_key;

Param param() {
  Param record{};
  record.f0 = 0x10;
  record.f1 = 0x11;
  record.f2_len = 3;
  record.f2 = abc;
  return record;
}

Rec rec() {
  Rec record{};
  record.f0 = 0x10;
  record.f1 = 0x11;
  record.f2 = 0x12;
  record.f3_len = 3;
  record.f3 = abc;
  record.f4 = 0x14;
  return record;
}

TEST(ConfigurationQueries, ParametersOfZerosPackTo18Bytes) {
  const Buffer expected = Layout().u32(14).u16(10, 4, 0, 0, 0).u32(10);
  EXPECT_EQ(hex(compact(Param{})), hex(expected));
  EXPECT_EQ(expected.size(), 18U);
  EXPECT_EQ(hex(compact(param())), hex(Layout()
                                           .u32(14)
                                           .u16(10, 23, 4, 8, 12)
                                           .u32(10)
                                           .u32(0x10, 0x11)
                                           .u32(4)
                                           .u32(3)
                                           .text("abc")));
}

TEST(ConfigurationQueries, ResultKeepsItsStringsWordInSlotOrder) {
  EXPECT_EQ(hex(compact(Rec{})), hex(Layout().u32(18).u16(14, 4).zeros(10).u32(14)));
  EXPECT_EQ(hex(compact(rec())), hex(Layout()
                                         .u32(18)
                                         .u16(14, 31, 4, 8, 12, 16, 20)
                                         .u32(14)
                                         .u32(0x10, 0x11, 0x12)
                                         .u32(8)  // over f4
                                         .u32(0x14)
                                         .u32(3)
                                         .text("abc")));
}

TEST(ConfigurationQueries, StringsAreAllocatedAndReleasedUnderTheirMessages) {
  Unpacked<Param> ofParam(compact(param()));
  expectSame(ofParam.record, param());
  EXPECT_EQ(
      ofParam.trace,
      Trace{"unpackAlloc size=3 owner=12 caller=\"l2vpn_cfg_query_comm_param_unpack\" -> #1"});
  EXPECT_EQ(ofParam.release(),
            Trace{"unpackFree #1 owner=12 caller=\"l2vpn_cfg_query_comm_param_free_unpacked\""});
  Unpacked<Rec> ofRec(compact(rec()));
  expectSame(ofRec.record, rec());
  EXPECT_EQ(ofRec.trace,
            Trace{"unpackAlloc size=3 owner=12 caller=\"l2vpn_cfg_query_comm_rec_unpack\" -> #1"});
  EXPECT_EQ(ofRec.release(),
            Trace{"unpackFree #1 owner=12 caller=\"l2vpn_cfg_query_comm_rec_free_unpacked\""});
}

TEST(ConfigurationQueries, RefusedAllocationIsLoggedWithoutBlanks) {
  const Unpacked<Param> refusedParam(compact(param()), 1);
  EXPECT_EQ(
      refusedParam.trace,
      (Trace{"unpackAlloc size=3 owner=12 caller=\"l2vpn_cfg_query_comm_param_unpack\" -> null",
             reportedRefusal("l2vpn_cfg_query_comm_param_unpack",
                             "Malloc unpack data unsuccess, size(3)"),
             "unpackFree null owner=12 caller=\"l2vpn_cfg_query_comm_param_free_unpacked\""}));
  const Unpacked<Rec> refusedRec(compact(rec()), 1);
  EXPECT_EQ(refusedRec.trace.at(1), reportedRefusal("l2vpn_cfg_query_comm_rec_unpack",
                                                    "Malloc unpack data unsuccess, size(3)"));
  Rec left = rec();
  left.f3 = nullptr;
  left.f4 = 0;
  expectSame(refusedRec.record, left);
}

TEST(ConfigurationQueries, ResultWithAVtableOfFourSlotsLeavesF4Zero) {
  Rec expected = rec();
  expected.f4 = 0;
  Unpacked<Rec> unpacked(withU16(compact(rec()), 4, 12));
  expectSame(unpacked.record, expected);
  EXPECT_EQ(unpacked.trace.size(), 1U);
  unpacked.release();
}

TEST(ConfigurationQueries, FieldBehindTheStringThatFailsReleasesTheString) {
  const Buffer good = compact(rec());
  const Unpacked<Rec> unpacked(withU16(good, 16, static_cast<uint32_t>(good.size()) - 18 - 3));
  Rec left = rec();
  left.f3 = nullptr;
  left.f4 = 0;
  expectSame(unpacked.record, left);
  EXPECT_EQ(unpacked.trace.back(),
            "unpackFree #1 owner=12 caller=\"l2vpn_cfg_query_comm_rec_free_unpacked\"");
  EXPECT_TRUE(recorder().blocks.empty());
}

TEST(ConfigurationQueries, CondPacksTo154To162Bytes) {
  EXPECT_EQ(hex(compact(Cond{})),
            hex(Layout().u32(14).u16(10, 140, 0, 0, 4).u32(10).u32(4).u32(128).zeros(128)));
  EXPECT_EQ(compact(Cond{}).size(), 154U);
  EXPECT_EQ(compact(full<Cond>()).size(), 162U);
}

TEST(ConfigurationQueries, CondIsSentAs168Bytes) {
  expectSentFixed<Cond>();
  Cond record{};
  record.f0 = 0x10111213;
  record.f1 = 0x20212223;
  std::memset(record.f2, 0x30, 128);
  EXPECT_EQ(hex(sent(record)), hex(Layout()
                                       .u32(4, 0xFFFFFF6C)
                                       .u32(0x10111213, 0x20212223)
                                       .u32(4)
                                       .u32(128)
                                       .fill(128, 0x30)
                                       .u16(10, 148, 4, 8, 12)
                                       .zeros(6)));
  expectRoundTrip(record);
  expectNothingToRelease<Cond>();
}

TEST(ConfigurationQueries, CondOf127Or129BytesKeepsF0AndF1) {
  expectArrayLengthChecked<Cond>(30, 128, offsetof(Cond, f2));
  const Buffer roomier = Layout().append(compact(full<Cond>())).zeros(1);
  expectRead(withU32(roomier, 30, 129), upTo(offsetof(Cond, f2), full<Cond>()));
}

TEST(ConfigurationQueries, KeyOfZerosPacksTo188Bytes) {
  const Buffer expected = Layout()
                              .u32(12)
                              .u16(8, 12, 4, 8)
                              .u32(8)
                              .u32(18)  // to the parameters at 34
                              .u32(28)  // to the condition at 48
                              .u16(10, 4, 0, 0, 0)
                              .u32(10)
                              .u16(10, 140, 0, 0, 4)
                              .u32(10)
                              .u32(4)
                              .u32(128)
                              .zeros(128);
  EXPECT_EQ(hex(compact(DfxKey{})), hex(expected));
  EXPECT_EQ(expected.size(), 188U);
  expectPackLimits(DfxKey{});
}

TEST(ConfigurationQueries, KeyIsReadBackWithItsParametersString) {
  DfxKey record{};
  record.f0 = param();
  record.f1 = full<Cond>();
  EXPECT_EQ(compact(record).size(), 24U + 14 + 8 + 11 + 150 + 8);
  Unpacked<DfxKey> unpacked(compact(record));
  expectSame(unpacked.record, record);
  EXPECT_EQ(unpacked.trace, Trace{"unpackAlloc size=3 owner=12 "
                                  "caller=\"l2vpn_cfg_query_comm_param_unpack_non_root\" -> #1"});
  EXPECT_EQ(unpacked.release(),
            Trace{"unpackFree #1 owner=12 caller=\"l2vpn_cfg_query_dfx_key_free_unpacked\""});
  EXPECT_EQ(unpacked.record.f0.f2, nullptr);
}

TEST(ConfigurationQueries, KeyWhoseConditionFailsReleasesItsParametersString) {
  DfxKey record{};
  record.f0 = param();
  record.f1 = full<Cond>();
  const Buffer good = compact(record);
  ASSERT_EQ(good[83], 128);
  const Unpacked<DfxKey> unpacked(withU32(good, 83, 127));
  std::memset(record.f1.f2, 0, 128);
  record.f0.f2 = nullptr;
  expectSame(unpacked.record, record);
  EXPECT_EQ(unpacked.trace.back(),
            "unpackFree #1 owner=12 caller=\"l2vpn_cfg_query_dfx_key_free_unpacked\"");
  EXPECT_TRUE(recorder().blocks.empty());
}

TEST(ConfigurationQueries, SizePast32BitsFails) {
  Param longParam{};
  longParam.f2 = abc;
  longParam.f2_len = 0xFFFFFFFF - 26;
  EXPECT_EQ(askForSize(longParam, 0xFFFFFFFF).result, 0U);
  ++longParam.f2_len;
  EXPECT_EQ(askForSize(longParam, 0xFFFFFFFF).result, failure);
  Rec longRec{};
  longRec.f3 = abc;
  longRec.f3_len = 0xFFFFFFFF - 30;
  EXPECT_EQ(askForSize(longRec, 0xFFFFFFFF).result, 0U);
  ++longRec.f3_len;
  EXPECT_EQ(askForSize(longRec, 0xFFFFFFFF).result, failure);
  DfxKey longKey{};
  longKey.f0.f2 = abc;
  longKey.f0.f2_len = 0xFFFFFFFE - 196;
  EXPECT_EQ(askForSize(longKey, 0xFFFFFFFF).length, 0xFFFFFFFE);
  ++longKey.f0.f2_len;  // a key has a lower limit than other messages
  EXPECT_EQ(askForSize(longKey, 0xFFFFFFFF).result, failure);
  longKey.f0.f2_len = 0xFFFFFFFF;
  EXPECT_EQ(askForSize(longKey, 0xFFFFFFFF).result, failure);
}

TEST(ConfigurationQueries, PackChecksRecordAndRoom) {
  expectPackLimits(Param{});
  expectPackLimits(param());
  expectPackLimits(Rec{});
  expectPackLimits(rec());
  expectPackLimits(Cond{});
  expectPackLimits(full<Cond>());
}

TEST(ConfigurationQueries, UnpackChecksParametersAndHead) {
  expectUnpackParameters<Param>();
  expectUnpackParameters<Rec>();
  expectUnpackParameters<Cond>();
  expectUnpackParameters<DfxKey>();
  expectUnpackParameters<l2vpn_cfg_query_dfx_rec>();
  expectHeadChecksByMessage(param());
  expectHeadChecksByMessage(rec());
  expectHeadChecksByMessage(full<Cond>());
  expectHeadChecksByMessage(DfxKey{});
}

}  // namespace
