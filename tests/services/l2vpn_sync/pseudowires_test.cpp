// VPLS pseudowires: vpls_pw, vpls_pwred_pg.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Pw = l2vpn_sync_vpls_pw;
using Pg = l2vpn_sync_vpls_pwred_pg;

TEST(Pseudowires, PwOfZerosPacksTo134Bytes) {
  const Buffer expected = Layout()
                              .u32(58)
                              .u16(54, 76)
                              .zeros(46)
                              .u16(4, 8)
                              .u32(54)
                              .u32(8, 36)
                              .u32(28)
                              .zeros(28)
                              .u32(28)
                              .zeros(28);
  EXPECT_EQ(hex(compact(Pw{})), hex(expected));
  EXPECT_EQ(expected.size(), 134U);
}

TEST(Pseudowires, GroupOfZerosPacksTo82Bytes) {
  const Buffer expected = Layout()
                              .u32(30)
                              .u16(26, 52)
                              .u16(0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 8)
                              .u32(26)
                              .u32(8, 24)
                              .u32(16)
                              .zeros(16)
                              .u32(16)
                              .zeros(16);
  EXPECT_EQ(hex(compact(Pg{})), hex(expected));
  EXPECT_EQ(expected.size(), 82U);
}

TEST(Pseudowires, AllScalarsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<Pw>()).size(), 198U);
  EXPECT_EQ(compact(full<Pg>()).size(), 110U);
}

TEST(Pseudowires, SendsEachRecordInItsFixedLength) {
  expectSentFixed<Pw>();
  expectSentFixed<Pg>();
}

TEST(Pseudowires, ImagesEndWithVtableAndPadding) {
  const Buffer pw = sent(full<Pw>());
  EXPECT_EQ(hex(Buffer(pw.begin(), pw.begin() + 8)), hex(Layout().u32(4, 0xFFFFFF74)));
  EXPECT_EQ(hex(Buffer(pw.begin() + 144, pw.end())),
            hex(Layout()
                    .u16(54, 140, 4, 8, 12, 16, 20, 21, 22, 24, 28, 32, 33, 34, 36, 40, 44)
                    .u16(48, 50, 52, 56, 60, 64, 66, 67, 68, 104)
                    .zeros(2)));
  const Buffer pg = sent(full<Pg>());
  EXPECT_EQ(hex(Buffer(pg.begin(), pg.begin() + 8)), hex(Layout().u32(4, 0xFFFFFFB0)));
  EXPECT_EQ(hex(Buffer(pg.begin() + 84, pg.end())),
            hex(Layout().u16(26, 80, 4, 8, 12, 16, 20, 24, 25, 26, 28, 32, 56).zeros(2)));
}

TEST(Pseudowires, ReadsBackBothArrangements) {
  expectRoundTrip(Pw{});
  expectRoundTrip(full<Pw>());
  expectRoundTrip(Pg{});
  expectRoundTrip(full<Pg>());
}

TEST(Pseudowires, GroupWhoseF9SaysTwelveKeepsF0ToF8) {
  const Buffer good = compact(full<Pg>());
  expectRead(withU32(good, 70, 12), upTo(offsetof(Pg, f9), full<Pg>()));
}

TEST(Pseudowires, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<Pw>(134, 28, offsetof(Pw, f23));
  expectArrayLengthChecked<Pw>(166, 28, offsetof(Pw, f24));
  expectArrayLengthChecked<Pg>(70, 16, offsetof(Pg, f9));
  expectArrayLengthChecked<Pg>(90, 16, offsetof(Pg, f10));
}

TEST(Pseudowires, ShorterVtableLeavesTheRestZero) {
  expectVtableOf<Pw>(4, 0);
  expectVtableOf<Pw>(50, offsetof(Pw, f23));
  expectVtableOf<Pg>(24, offsetof(Pg, f10));
}

TEST(Pseudowires, PackChecksRecordAndRoom) {
  expectPackLimits(Pw{});
  expectPackLimits(full<Pw>());
  expectPackLimits(Pg{});
  expectPackLimits(full<Pg>());
}

TEST(Pseudowires, UnpackChecksItsParameters) {
  expectUnpackParameters<Pw>();
  expectUnpackParameters<Pg>();
}

TEST(Pseudowires, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<Pw>());
  expectHeadChecksByTableReader(full<Pg>());
}

TEST(Pseudowires, ReleaseDoesNothing) {
  expectNothingToRelease<Pw>();
  expectNothingToRelease<Pg>();
}

}  // namespace
