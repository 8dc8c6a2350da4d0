// Pseudowire auxiliaries: subpw, pw_pmo.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Subpw = l2vpn_sync_subpw;
using Pmo = l2vpn_sync_pw_pmo;

TEST(Auxiliaries, SubpwOfZerosPacksTo98Bytes) {
  const Buffer expected = Layout()
                              .u32(22)
                              .u16(18, 76)
                              .u16(0, 0, 0, 0, 0, 4, 8)
                              .u32(18)
                              .u32(8, 36)
                              .u32(28)
                              .zeros(28)
                              .u32(28)
                              .zeros(28);
  EXPECT_EQ(hex(compact(Subpw{})), hex(expected));
  EXPECT_EQ(expected.size(), 98U);
}

TEST(Auxiliaries, PmoOfZerosPacksTo26BytesAndIsSentAs48) {
  const Buffer expected = Layout().u32(22).u16(18, 4).zeros(14).u32(18);
  EXPECT_EQ(hex(compact(Pmo{})), hex(expected));
  EXPECT_EQ(expected.size(), 26U);
  EXPECT_EQ(
      hex(sent(Pmo{})),
      hex(Layout().u32(4, 0xFFFFFFE8).zeros(20).u16(18, 24, 4, 8, 12, 16, 17, 18, 20).zeros(2)));
}

TEST(Auxiliaries, FullSubpwHasItsWordsBehindItsScalars) {
  const Buffer bytes = compact(full<Subpw>());
  EXPECT_EQ(bytes.size(), 112U);
  EXPECT_EQ(hex(firstBytes(bytes, 52)), hex(Layout()
                                                .u32(22)
                                                .u16(18, 90)
                                                .u16(4, 8, 12, 13, 17, 18, 22)
                                                .u32(18)
                                                .u32(0x40010203, 0x41010203)
                                                .u8(0x42)
                                                .u32(0x43010203)
                                                .u8(0x44)
                                                .u32(8, 36)
                                                .u32(28)));
}

TEST(Auxiliaries, AllScalarsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<Subpw>()).size(), 112U);
  EXPECT_EQ(compact(full<Pmo>()).size(), 46U);
}

TEST(Auxiliaries, SendsEachRecordInItsFixedLength) {
  expectSentFixed<Subpw>();
  expectSentFixed<Pmo>();
}

TEST(Auxiliaries, TheImageOfASubpwEndsInItsVtableAndZeros) {
  const Buffer image = sent(full<Subpw>());
  EXPECT_EQ(hex(Buffer(image.begin() + 94, image.end())),
            hex(Layout().zeros(2).u16(18, 90, 4, 8, 12, 13, 17, 18, 54).zeros(6)));
}

TEST(Auxiliaries, ReadsBackBothArrangements) {
  expectRoundTrip(Subpw{});
  expectRoundTrip(full<Subpw>());
  expectRoundTrip(Pmo{});
  expectRoundTrip(full<Pmo>());
}

TEST(Auxiliaries, VtableOf16BytesLeavesF6OfAPmoZero) {
  expectVtableOf<Pmo>(16, offsetof(Pmo, f6));
  expectVtableOf<Subpw>(16, offsetof(Subpw, f6));
  expectVtableOf<Subpw>(4, 0);
}

TEST(Auxiliaries, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<Subpw>(48, 28, offsetof(Subpw, f5));
  expectArrayLengthChecked<Subpw>(80, 28, offsetof(Subpw, f6));
}

TEST(Auxiliaries, StopsSilentlyAtAFieldPastTheEnd) {
  const Buffer pmo = compact(full<Pmo>());
  expectRead(firstBytes(pmo, 45), upTo(offsetof(Pmo, f6), full<Pmo>()));
  expectRead(withU16(pmo, 8 + 2 * 5, 46 - 22 - 1), upTo(offsetof(Pmo, f5), full<Pmo>()));
}

TEST(Auxiliaries, PackChecksRecordAndRoom) {
  expectPackLimits(Subpw{});
  expectPackLimits(full<Subpw>());
  expectPackLimits(Pmo{});
  expectPackLimits(full<Pmo>());
}

TEST(Auxiliaries, UnpackChecksItsParameters) {
  expectUnpackParameters<Subpw>();
  expectUnpackParameters<Pmo>();
}

TEST(Auxiliaries, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<Subpw>());
  expectHeadChecksByTableReader(full<Pmo>());
}

TEST(Auxiliaries, ReleaseDoesNothing) {
  expectNothingToRelease<Subpw>();
  expectNothingToRelease<Pmo>();
}

}  // namespace
