// VPLS MAC withdrawal: vpls_ac_macdraw, vpls_pw_macdraw, vpls_inst_macdraw.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using OfAc = l2vpn_sync_vpls_ac_macdraw;
using OfPw = l2vpn_sync_vpls_pw_macdraw;
using OfInst = l2vpn_sync_vpls_inst_macdraw;

TEST(MacWithdrawal, RecordOfZerosPacksToItsHead) {
  const Buffer ofAc = Layout().u32(22).u16(18, 4).zeros(14).u32(18);
  EXPECT_EQ(hex(compact(OfAc{})), hex(ofAc));
  EXPECT_EQ(hex(compact(OfInst{})), hex(ofAc));
  EXPECT_EQ(ofAc.size(), 26U);
  const Buffer ofPw = Layout().u32(26).u16(22, 4).zeros(18).u32(22);
  EXPECT_EQ(hex(compact(OfPw{})), hex(ofPw));
  EXPECT_EQ(ofPw.size(), 30U);
}

TEST(MacWithdrawal, EveryFieldOfAPwPacksTo54BytesWithTheWordsOfItsImage) {
  const OfPw record{.f0 = 0x10111213,
                    .f1 = 0x20212223,
                    .f2 = 0x30,
                    .f3 = 0x40,
                    .f4 = 0x50,
                    .f5 = 0x60,
                    .f6 = 0x70717273,
                    .f7 = 0x80818283,
                    .f8 = 0x90919293};
  const Buffer fields = Layout()
                            .u32(0x10111213, 0x20212223)
                            .u8(0x30, 0x40, 0x50, 0x60)
                            .u32(0x70717273, 0x80818283, 0x90919293);
  const Buffer vtable = Layout().u16(22, 28).u16(4, 8, 12, 13, 14, 15, 16, 20, 24);
  EXPECT_EQ(hex(compact(record)), hex(Layout().u32(26).append(vtable).u32(22).append(fields)));
  EXPECT_EQ(compact(record).size(), 54U);
  EXPECT_EQ(hex(sent(record)),
            hex(Layout().u32(4, 0xFFFFFFE4).append(fields).append(vtable).zeros(2)));
}

TEST(MacWithdrawal, ImagesOfAcAndInstance) {
  const Buffer ofAc = sent(full<OfAc>());
  EXPECT_EQ(hex(Buffer(ofAc.begin() + 28, ofAc.end())),
            hex(Layout().u16(18, 24, 4, 8, 12, 16, 20, 21, 22).zeros(2)));
  const Buffer ofInst = sent(full<OfInst>());
  EXPECT_EQ(hex(Buffer(ofInst.begin() + 28, ofInst.end())),
            hex(Layout().u16(18, 24, 4, 8, 12, 16, 17, 18, 20).zeros(2)));
}

TEST(MacWithdrawal, OnlyF7OfAPwPacksTo34Bytes) {
  OfPw record{};
  record.f7 = 9;
  const Buffer expected = Layout().u32(26).u16(22, 8).u16(0, 0, 0, 0, 0, 0, 0, 4, 0).u32(22).u32(9);
  EXPECT_EQ(hex(compact(record)), hex(expected));
  EXPECT_EQ(expected.size(), 34U);
  expectRead(expected, record);
}

TEST(MacWithdrawal, AllFieldsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<OfAc>()).size(), 46U);
  EXPECT_EQ(compact(full<OfPw>()).size(), 54U);
  EXPECT_EQ(compact(full<OfInst>()).size(), 46U);
}

TEST(MacWithdrawal, SendsEachRecordInItsFixedLength) {
  expectSentFixed<OfAc>();
  expectSentFixed<OfPw>();
  expectSentFixed<OfInst>();
}

TEST(MacWithdrawal, ReadsBackBothArrangements) {
  expectRoundTrip(OfAc{});
  expectRoundTrip(full<OfAc>());
  expectRoundTrip(OfPw{});
  expectRoundTrip(full<OfPw>());
  expectRoundTrip(OfInst{});
  expectRoundTrip(full<OfInst>());
}

TEST(MacWithdrawal, VtableOf14BytesLeavesF5AndF6OfAnInstanceZero) {
  expectVtableOf<OfInst>(14, offsetof(OfInst, f5));
  expectVtableOf<OfAc>(16, offsetof(OfAc, f6));
  expectVtableOf<OfPw>(4, 0);
}

TEST(MacWithdrawal, StopsAtAFieldPastTheEnd) {
  const Buffer good = compact(full<OfPw>());
  expectRead(withU16(good, 8 + 2 * 7, 54 - 26 - 3), upTo(offsetof(OfPw, f7), full<OfPw>()));
  expectRead(withU16(good, 8 + 2 * 2, 54 - 26), upTo(offsetof(OfPw, f2), full<OfPw>()));
  expectRead(firstBytes(good, 53), upTo(offsetof(OfPw, f8), full<OfPw>()));
  const Buffer ofAc = compact(full<OfAc>());
  expectRead(withU16(ofAc, 8 + 2 * 6, 46 - 22 - 1), upTo(offsetof(OfAc, f6), full<OfAc>()));
}

TEST(MacWithdrawal, PackChecksRecordAndRoom) {
  expectPackLimits(OfAc{});
  expectPackLimits(full<OfAc>());
  expectPackLimits(OfPw{});
  expectPackLimits(full<OfPw>());
  expectPackLimits(OfInst{});
  expectPackLimits(full<OfInst>());
}

TEST(MacWithdrawal, UnpackChecksItsParameters) {
  expectUnpackParameters<OfAc>();
  expectUnpackParameters<OfPw>();
  expectUnpackParameters<OfInst>();
}

TEST(MacWithdrawal, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<OfAc>());
  expectHeadChecksByTableReader(full<OfPw>());
  expectHeadChecksByTableReader(full<OfInst>());
}

TEST(MacWithdrawal, ReleaseDoesNothing) {
  expectNothingToRelease<OfAc>();
  expectNothingToRelease<OfPw>();
  expectNothingToRelease<OfInst>();
}

}  // namespace
