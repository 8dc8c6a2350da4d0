// Pseudowire auxiliaries: subpw, pw_pmo.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Subpw = l2vpn_sync_subpw;
using Pmo = l2vpn_sync_pw_pmo;

TEST(Auxiliaries, ASubpwOfZerosPacksTo98Bytes) {
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
  EXPECT_EQ(shown(compact(Subpw{})), shown(expected));
  EXPECT_EQ(expected.size(), 98U);
}

TEST(Auxiliaries, APmoOfZerosPacksTo26BytesAndIsSentAs48) {
  const Buffer expected = Layout().u32(22).u16(18, 4).zeros(14).u32(18);
  EXPECT_EQ(shown(compact(Pmo{})), shown(expected));
  EXPECT_EQ(expected.size(), 26U);
  EXPECT_EQ(
      shown(sent(Pmo{})),
      shown(Layout().u32(4, 0xFFFFFFE8).zeros(20).u16(18, 24, 4, 8, 12, 16, 17, 18, 20).zeros(2)));
}

TEST(Auxiliaries, AFullSubpwHasItsWordsBehindItsScalars) {
  const Buffer bytes = compact(full<Subpw>());
  EXPECT_EQ(bytes.size(), 112U);
  EXPECT_EQ(shown(firstBytes(bytes, 52)), shown(Layout()
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

TEST(Auxiliaries, EveryScalarMakesTheLargestMessage) {
  EXPECT_EQ(compact(full<Subpw>()).size(), 112U);
  EXPECT_EQ(compact(full<Pmo>()).size(), 46U);
}

TEST(Auxiliaries, EachRecordIsSentInItsOwnLength) {
  expectSentFixed<Subpw>();
  expectSentFixed<Pmo>();
}

TEST(Auxiliaries, TheImageOfASubpwEndsInItsVtableAndZeros) {
  const Buffer image = sent(full<Subpw>());
  EXPECT_EQ(shown(Buffer(image.begin() + 94, image.end())),
            shown(Layout().zeros(2).u16(18, 90, 4, 8, 12, 13, 17, 18, 54).zeros(6)));
}

TEST(Auxiliaries, BothArrangementsAreReadBack) {
  expectRoundTrip(Subpw{});
  expectRoundTrip(full<Subpw>());
  expectRoundTrip(Pmo{});
  expectRoundTrip(full<Pmo>());
}

TEST(Auxiliaries, AVtableOf16BytesLeavesF6OfAPmoZero) {
  expectVtableOf<Pmo>(16, offsetof(Pmo, f6));
  expectVtableOf<Subpw>(16, offsetof(Subpw, f6));
  expectVtableOf<Subpw>(4, 0);
}

TEST(Auxiliaries, AnArrayOfAnotherLengthEndsTheReading) {
  expectArrayLengthChecked<Subpw>(48, 28, offsetof(Subpw, f5));
  expectArrayLengthChecked<Subpw>(80, 28, offsetof(Subpw, f6));
}

TEST(Auxiliaries, AFieldPastTheEndEndsTheReadingSilently) {
  const Buffer pmo = compact(full<Pmo>());
  expectRead(firstBytes(pmo, 45), upTo(offsetof(Pmo, f6), full<Pmo>()));
  expectRead(withU16(pmo, 8 + 2 * 5, 46 - 22 - 1), upTo(offsetof(Pmo, f5), full<Pmo>()));
}

TEST(Auxiliaries, PackingKeepsItsLimits) {
  expectPackLimits(Subpw{});
  expectPackLimits(full<Subpw>());
  expectPackLimits(Pmo{});
  expectPackLimits(full<Pmo>());
}

TEST(Auxiliaries, UnpackingChecksItsParameters) {
  expectUnpackParameters<Subpw>();
  expectUnpackParameters<Pmo>();
}

TEST(Auxiliaries, ABadFrameIsLoggedAndLeavesAClearedRecord) {
  expectFrameChecksByTableReader(full<Subpw>());
  expectFrameChecksByTableReader(full<Pmo>());
}

TEST(Auxiliaries, ReleasingDoesNothing) {
  expectNothingToRelease<Subpw>();
  expectNothingToRelease<Pmo>();
}

}  // namespace
