// Debug information: dbginfo_key, dbginfo_para, dbginfo_cmd_ipc, dbginfo_endata, dbginfo_dedata.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using DebugKey = dbginfo_key_l2vpn;
using Para = dbginfo_para_l2vpn;
using Ipc = dbginfo_cmd_ipc_l2vpn;
using Endata = dbginfo_endata_l2vpn;
using Dedata = dbginfo_dedata_l2vpn;

DebugKey key() {
  return {.f0 = 0x1011, .f1 = 0x2021, .f2 = 0x30313233, .f3_len = 3, .f3 = abc};
}

Endata endata() {
  Endata record{};
  record.f0 = 0x10;
  record.f12_len = 3;
  record.f12 = abc;
  record.f13 = 0x20;
  record.f14_len = 5;
  record.f14 = defgh;
  return record;
}

// A record after its strings were released.
template <typename Record>
void expectLeft(const Unpacked<Record>& unpacked, const Record& expected) {
  expectSame(unpacked.record, expected);
  EXPECT_TRUE(recorder().blocks.empty());
}

TEST(DebugInformation, KeyOfZerosPacksTo20Bytes) {
  const Buffer expected = Layout().u32(16).u16(12, 4, 0, 0, 0, 0).u32(12);
  EXPECT_EQ(hex(compact(DebugKey{})), hex(expected));
  EXPECT_EQ(expected.size(), 20U);
}

TEST(DebugInformation, KeyWithAStringOfThreePacksTo39Bytes) {
  const Buffer expected = Layout()
                              .u32(16)
                              .u16(12, 23, 4, 6, 8, 12)
                              .u32(12)
                              .u16(0x1011, 0x2021)
                              .u32(0x30313233)
                              .u32(4)
                              .u32(3)
                              .text("abc");
  EXPECT_EQ(hex(compact(key())), hex(expected));
  EXPECT_EQ(expected.size(), 39U);
  DebugKey withoutF0 = key();
  withoutF0.f0 = 0;
  EXPECT_EQ(compact(withoutF0).size(), 37U);
}

TEST(DebugInformation, StringOfLengthZeroCountsEightBytesThatAreNotWritten) {
  DebugKey record{};
  record.f3 = abc;
  const Packed<DebugKey> packed(record, 28);
  EXPECT_EQ(packed.result, 0U);
  EXPECT_EQ(packed.length, 28U);
  EXPECT_EQ(hex(packed.buffer), hex(Layout().u32(16).u16(12, 4, 0, 0, 0, 0).u32(12).fill(8, mark)));
  expectRead(packed.buffer, DebugKey{});
}

TEST(DebugInformation, LengthWithoutAStringIsAbsent) {
  DebugKey record{};
  record.f3_len = 5;
  EXPECT_EQ(compact(record).size(), 20U);
}

TEST(DebugInformation, KeysStringIsOneBlockUntilItsRelease) {
  Unpacked<DebugKey> unpacked(compact(key()));
  EXPECT_EQ(unpacked.record.f0, 0x1011);
  EXPECT_EQ(unpacked.record.f1, 0x2021);
  EXPECT_EQ(unpacked.record.f2, 0x30313233U);
  EXPECT_EQ(unpacked.record.f3_len, 3U);
  EXPECT_EQ(std::memcmp(unpacked.record.f3, "abc", 3), 0);
  EXPECT_EQ(unpacked.trace,
            Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_key_l2vpn_unpack\" -> #1"});
  EXPECT_EQ(unpacked.release(),
            Trace{"unpackFree #1 owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""});
  EXPECT_EQ(unpacked.record.f3, nullptr);
  EXPECT_EQ(unpacked.record.f3_len, 3U);
  EXPECT_EQ(unpacked.release(),
            Trace{"unpackFree null owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""});
}

TEST(DebugInformation, StringOfLengthZeroOnTheWireTakesNoBlock) {
  DebugKey expected = key();
  expected.f3_len = 0;
  expected.f3 = nullptr;
  expectRead(withU32(compact(key()), 32, 0), expected);
}

TEST(DebugInformation, ParametersOfZerosPackTo28Bytes) {
  const Buffer expected = Layout().u32(24).u16(20, 4).zeros(16).u32(20);
  EXPECT_EQ(hex(compact(Para{})), hex(expected));
  EXPECT_EQ(expected.size(), 28U);
  const Para record{
      .f0 = 1, .f1 = 2, .f2 = 3, .f3 = 4, .f4 = 5, .f5 = 6, .f6 = 7, .f7_len = 3, .f7 = abc};
  EXPECT_EQ(hex(compact(record)), hex(Layout()
                                          .u32(24)
                                          .u16(20, 39, 4, 6, 10, 14, 18, 22, 24, 28)
                                          .u32(20)
                                          .u16(1)
                                          .u32(2, 3, 4, 5)
                                          .u16(6)
                                          .u32(7)
                                          .u32(4)
                                          .u32(3)
                                          .text("abc")));
  Unpacked<Para> unpacked(compact(record));
  EXPECT_EQ(
      unpacked.trace,
      Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_para_l2vpn_unpack_non_root\" -> #1"});
  EXPECT_EQ(unpacked.release(),
            Trace{"unpackFree #1 owner=12 caller=\"dbginfo_para_l2vpn_free_unpacked\""});
}

TEST(DebugInformation, EndataKeepsItsStringsInSlotOrder) {
  EXPECT_EQ(hex(compact(Endata{})), hex(Layout().u32(38).u16(34, 4).zeros(30).u32(34)));
  EXPECT_EQ(hex(compact(endata())), hex(Layout()
                                            .u32(38)
                                            .u16(34, 36)
                                            .u16(4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 12, 16)
                                            .u32(34)
                                            .u32(0x10)
                                            .u32(12)  // over f13 and the other word
                                            .u32(0x20)
                                            .u32(11)  // over its own word and the first string
                                            .u32(3)
                                            .text("abc")
                                            .u32(5)
                                            .text("defgh")));
  EXPECT_EQ(compact(endata()).size(), 42U + 4 + 11 + 4 + 13);
}

TEST(DebugInformation, EndataReleasesBothStrings) {
  Unpacked<Endata> unpacked(compact(endata()));
  EXPECT_EQ(unpacked.trace,
            (Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_endata_l2vpn_unpack\" -> #1",
                   "unpackAlloc size=5 owner=12 caller=\"dbginfo_endata_l2vpn_unpack\" -> #2"}));
  EXPECT_EQ(std::memcmp(unpacked.record.f14, "defgh", 5), 0);
  EXPECT_EQ(unpacked.release(),
            (Trace{"unpackFree #1 owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\"",
                   "unpackFree #2 owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\""}));
}

TEST(DebugInformation, RefusedAllocationReleasesEverythingAndKeepsLengths) {
  const Unpacked<DebugKey> first(compact(key()), 1);
  EXPECT_EQ(
      first.trace,
      (Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_key_l2vpn_unpack\" -> null",
             reportedRefusal("dbginfo_key_l2vpn_unpack", "Malloc unpack data unsuccess, size(3)"),
             "unpackFree null owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""}));
  DebugKey left = key();
  left.f3 = nullptr;
  expectLeft(first, left);

  const Unpacked<Endata> second(compact(endata()), 2);
  EXPECT_EQ(second.trace,
            (Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_endata_l2vpn_unpack\" -> #1",
                   "unpackAlloc size=5 owner=12 caller=\"dbginfo_endata_l2vpn_unpack\" -> null",
                   reportedRefusal("dbginfo_endata_l2vpn_unpack",
                                   "Malloc unpack data unsuccess, size(5)"),
                   "unpackFree #1 owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\"",
                   "unpackFree null owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\""}));
  Endata leftOfEndata = endata();
  leftOfEndata.f12 = nullptr;
  leftOfEndata.f14 = nullptr;
  expectLeft(second, leftOfEndata);
}

TEST(DebugInformation, TheTableReadersRefusalHasSixteenBlanks) {
  Para record{};
  record.f7_len = 3;
  record.f7 = abc;
  const Unpacked<Para> unpacked(compact(record), 1);
  EXPECT_EQ(
      unpacked.trace,
      (Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_para_l2vpn_unpack_non_root\" -> null",
             reportedRefusal("dbginfo_para_l2vpn_unpack_non_root",
                             "Malloc unpack data unsuccess,                size(3)"),
             "unpackFree null owner=12 caller=\"dbginfo_para_l2vpn_free_unpacked\""}));
  record.f7 = nullptr;
  expectLeft(unpacked, record);
}

TEST(DebugInformation, FieldPastTheEndReleasesWhatWasAllocated) {
  Endata expected = endata();
  expected.f12 = nullptr;
  expected.f14_len = 0;
  expected.f14 = nullptr;
  const Buffer good = compact(endata());
  const Unpacked<Endata> cut(firstBytes(good, good.size() - 1));
  EXPECT_EQ(cut.trace,
            (Trace{"unpackAlloc size=3 owner=12 caller=\"dbginfo_endata_l2vpn_unpack\" -> #1",
                   "unpackFree #1 owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\"",
                   "unpackFree null owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\""}));
  expectLeft(cut, expected);
}

TEST(DebugInformation, PackChecksRecordAndRoom) {
  expectPackLimits(DebugKey{});
  expectPackLimits(key());
  expectPackLimits(Para{});
  expectPackLimits(Ipc{});
  expectPackLimits(full<Ipc>());
  expectPackLimits(Endata{});
  expectPackLimits(endata());
  expectPackLimits(Dedata{});
  expectPackLimits(full<Dedata>());
}

TEST(DebugInformation, SizePast32BitsFails) {
  DebugKey longKey{};
  longKey.f3 = abc;
  longKey.f3_len = 0xFFFFFFFF - 28;
  EXPECT_EQ(askForSize(longKey, 0xFFFFFFFF).length, 0xFFFFFFFF);
  EXPECT_EQ(askForSize(longKey, 0xFFFFFFFF).result, 0U);
  for (const uint32_t more : {1U, 2U, 20U}) {  // 0xFFFFFFFF, 0 and 18 in 32 bits
    longKey.f3_len = 0xFFFFFFFF - 28 + more;
    EXPECT_EQ(askForSize(longKey, 0xFFFFFFFF).result, failure);
    EXPECT_EQ(of<DebugKey>().sendSingle(7, &longKey, unused, 0), failure);
  }
  Para longPara{};
  longPara.f7 = abc;
  longPara.f7_len = 0xFFFFFFFF - 36;
  EXPECT_EQ(askForSize(longPara, 0xFFFFFFFF).result, 0U);
  ++longPara.f7_len;
  EXPECT_EQ(askForSize(longPara, 0xFFFFFFFF).result, failure);

  Endata longEndata{};
  longEndata.f12 = longEndata.f14 = abc;
  longEndata.f12_len = 0x80000000;
  longEndata.f14_len = 0x7FFFFFFF - 58;
  EXPECT_EQ(askForSize(longEndata, 0xFFFFFFFF).length, 0xFFFFFFFF);
  ++longEndata.f14_len;
  EXPECT_EQ(askForSize(longEndata, 0xFFFFFFFF).result, failure);
  longEndata.f14_len = 0x80000000;
  EXPECT_EQ(askForSize(longEndata, 0xFFFFFFFF).result, failure);
}

TEST(DebugInformation, UnpackChecksItsParameters) {
  expectUnpackParameters<DebugKey>();
  expectUnpackParameters<Para>();
  expectUnpackParameters<Ipc>();
  expectUnpackParameters<Endata>();
  expectUnpackParameters<Dedata>();
}

TEST(DebugInformation, BadHeadKeepsRecordsButClearsParameters) {
  expectHeadChecksByMessage(key());
  expectHeadChecksByMessage(full<Ipc>());
  expectHeadChecksByMessage(endata());
  expectHeadChecksByMessage(full<Dedata>());
  const Buffer good = compact(Para{
      .f0 = 1, .f1 = 2, .f2 = 3, .f3 = 4, .f4 = 5, .f5 = 6, .f6 = 7, .f7_len = 0, .f7 = nullptr});
  const Unpacked<Para> unpacked(withU32(good, 0, 2));
  EXPECT_EQ(bytesOf(unpacked.record), Buffer(40, 0));
  EXPECT_EQ(unpacked.trace,
            (Trace{reported("dbginfo_para_l2vpn_unpack_non_root",
                            "Table offset(2) is out of range(4 - 52)"),
                   "unpackFree null owner=12 caller=\"dbginfo_para_l2vpn_free_unpacked\""}));
}

TEST(DebugInformation, ReleaseOfNullDoesNothing) {
  resetRecorder();
  of<DebugKey>().freeUnpacked(nullptr);
  of<Para>().freeUnpacked(nullptr);
  of<Endata>().freeUnpacked(nullptr);
  EXPECT_EQ(takeTrace(), Trace{});
}

}  // namespace
