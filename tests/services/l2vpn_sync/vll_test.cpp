// VLL records: vll_ac, extnhp, vll_pw, vll_inst, vllexp.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using VllAc = l2vpn_sync_vll_ac;
using Extnhp = l2vpn_sync_extnhp;
using VllPw = l2vpn_sync_vll_pw;
using VllInst = l2vpn_sync_vll_inst;
using VllExp = l2vpn_sync_vllexp;

TEST(Vll, AcOfZerosPacksTo80BytesAndBack) {
  const Buffer expected = Layout()
                              .u32(36)
                              .u16(32, 44)
                              .zeros(24)
                              .u16(4, 8)
                              .u32(32)
                              .u32(8, 20)
                              .u32(12)
                              .zeros(12)
                              .u32(12)
                              .zeros(12);
  EXPECT_EQ(hex(compact(VllAc{})), hex(expected));
  EXPECT_EQ(expected.size(), 80U);
  expectRead(expected, VllAc{});
}

TEST(Vll, ExpOfZerosPacksTo26Bytes) {
  const Buffer expected = Layout().u32(22).u16(18, 4).zeros(14).u32(18);
  EXPECT_EQ(hex(compact(VllExp{})), hex(expected));
  EXPECT_EQ(expected.size(), 26U);
}

TEST(Vll, ExtnhpWithOnlyF4PacksTo25Bytes) {
  Extnhp record{};
  record.f4 = 1;
  const Buffer expected = Layout().u32(20).u16(16, 5).u16(0, 0, 0, 0, 4, 0).u32(16).u8(1);
  EXPECT_EQ(hex(compact(record)), hex(expected));
  EXPECT_EQ(expected.size(), 25U);
  expectRead(expected, record);
}

TEST(Vll, PwAndInstanceOfZeros) {
  EXPECT_EQ(hex(compact(VllPw{})), hex(Layout()
                                           .u32(58)
                                           .u16(54, 76)
                                           .zeros(46)
                                           .u16(4, 8)
                                           .u32(54)
                                           .u32(8, 36)
                                           .u32(28)
                                           .zeros(28)
                                           .u32(28)
                                           .zeros(28)));
  EXPECT_EQ(hex(compact(VllInst{})), hex(Layout()
                                             .u32(26)
                                             .u16(22, 84)
                                             .zeros(14)
                                             .u16(4, 8)
                                             .u32(22)
                                             .u32(8, 40)
                                             .u32(32)
                                             .zeros(32)
                                             .u32(32)
                                             .zeros(32)));
}

TEST(Vll, AllScalarsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<VllAc>()).size(), 107U);
  EXPECT_EQ(compact(full<Extnhp>()).size(), 45U);
  EXPECT_EQ(compact(full<VllPw>()).size(), 195U);
  EXPECT_EQ(compact(full<VllInst>()).size(), 126U);
  EXPECT_EQ(compact(full<VllExp>()).size(), 42U);
}

TEST(Vll, SendsEachRecordInItsFixedLength) {
  expectSentFixed<VllAc>();
  expectSentFixed<Extnhp>();
  expectSentFixed<VllPw>();
  expectSentFixed<VllInst>();
  expectSentFixed<VllExp>();
}

TEST(Vll, ImagesEndWithVtableAndPadding) {
  const auto from = [](const Buffer& image, size_t vtable) {
    return hex(Buffer(image.begin() + static_cast<std::ptrdiff_t>(vtable), image.end()));
  };
  const Buffer ac = sent(full<VllAc>());
  EXPECT_EQ(from(ac, 75), hex(Layout()
                                  .u8(0)
                                  .u16(32, 71, 4, 8, 12, 16, 20, 21, 22, 24, 26, 27, 28, 30, 31, 51)
                                  .zeros(4)));
  EXPECT_EQ(from(sent(full<Extnhp>()), 29),
            hex(Layout().zeros(3).u16(16, 25, 4, 8, 12, 16, 20, 21)));
  EXPECT_EQ(from(sent(full<VllPw>()), 141),
            hex(Layout()
                    .zeros(3)
                    .u16(54, 137, 4, 8, 12, 16, 17, 18, 20, 24, 28, 32, 34, 36, 37, 39, 40)
                    .u16(41, 45, 49, 53, 54, 55, 57, 61, 65, 101)
                    .zeros(2)));
  EXPECT_EQ(from(sent(full<VllInst>()), 104),
            hex(Layout().u16(22, 100, 4, 8, 12, 16, 17, 18, 19, 20, 60).zeros(2)));
  EXPECT_EQ(from(sent(full<VllExp>()), 24),
            hex(Layout().u16(18, 20, 4, 8, 12, 16, 17, 18, 19).zeros(6)));
}

TEST(Vll, ReadsBackBothArrangements) {
  expectRoundTrip(full<VllAc>());
  expectRoundTrip(Extnhp{});
  expectRoundTrip(full<Extnhp>());
  expectRoundTrip(VllPw{});
  expectRoundTrip(full<VllPw>());
  expectRoundTrip(VllInst{});
  expectRoundTrip(full<VllInst>());
  expectRoundTrip(VllExp{});
  expectRoundTrip(full<VllExp>());
}

TEST(Vll, VtableOf18BytesLeavesTheArraysOfAnInstanceZero) {
  expectVtableOf<VllInst>(18, offsetof(VllInst, f7));
}

TEST(Vll, ShorterVtableLeavesTheRestZero) {
  expectVtableOf<VllAc>(30, offsetof(VllAc, f13));
  expectVtableOf<Extnhp>(15, offsetof(Extnhp, f5));
  expectVtableOf<VllPw>(4, 0);
  expectVtableOf<VllExp>(6, offsetof(VllExp, f1));
}

TEST(Vll, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<VllPw>(131, 28, offsetof(VllPw, f23));
  expectArrayLengthChecked<VllPw>(163, 28, offsetof(VllPw, f24));
  expectArrayLengthChecked<VllAc>(75, 12, offsetof(VllAc, f12));
  expectArrayLengthChecked<VllAc>(91, 12, offsetof(VllAc, f13));
  expectArrayLengthChecked<VllInst>(54, 32, offsetof(VllInst, f7));
  expectArrayLengthChecked<VllInst>(90, 32, offsetof(VllInst, f8));
}

TEST(Vll, StopsSilentlyAtAFieldPastTheEnd) {
  const Buffer extnhp = compact(full<Extnhp>());
  expectRead(firstBytes(extnhp, 44), upTo(offsetof(Extnhp, f5), full<Extnhp>()));
  expectRead(withU16(extnhp, 16, 45 - 20), upTo(offsetof(Extnhp, f4), full<Extnhp>()));
  const Buffer ac = compact(full<VllAc>());
  expectRead(withU16(ac, 8 + 2 * 7, 107 - 36 - 1), upTo(offsetof(VllAc, f7), full<VllAc>()));
}

TEST(Vll, PackChecksRecordAndRoom) {
  expectPackLimits(VllAc{});
  expectPackLimits(full<VllAc>());
  expectPackLimits(Extnhp{});
  expectPackLimits(full<Extnhp>());
  expectPackLimits(VllPw{});
  expectPackLimits(full<VllPw>());
  expectPackLimits(VllInst{});
  expectPackLimits(full<VllInst>());
  expectPackLimits(VllExp{});
  expectPackLimits(full<VllExp>());
}

TEST(Vll, UnpackChecksItsParameters) {
  expectUnpackParameters<VllAc>();
  expectUnpackParameters<Extnhp>();
  expectUnpackParameters<VllPw>();
  expectUnpackParameters<VllInst>();
  expectUnpackParameters<VllExp>();
}

TEST(Vll, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<VllAc>());
  expectHeadChecksByTableReader(full<Extnhp>());
  expectHeadChecksByTableReader(full<VllPw>());
  expectHeadChecksByTableReader(full<VllInst>());
  expectHeadChecksByTableReader(full<VllExp>());
}

TEST(Vll, ReleaseDoesNothing) {
  expectNothingToRelease<VllAc>();
  expectNothingToRelease<Extnhp>();
  expectNothingToRelease<VllPw>();
  expectNothingToRelease<VllInst>();
  expectNothingToRelease<VllExp>();
}

}  // namespace
