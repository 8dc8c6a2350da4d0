// MAC and OAM records: vpls_vsimac, oam_staticmac, vpls_macping.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Vsimac = l2vpn_sync_vpls_vsimac;
using StaticMac = l2vpn_sync_oam_staticmac;
using MacPing = l2vpn_sync_vpls_macping;

TEST(MacAndOam, MacPingOfZerosPacksTo52Bytes) {
  const Buffer expected = Layout()
                              .u32(34)
                              .u16(30, 18)
                              .u16(0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0)
                              .u32(30)
                              .u32(4)
                              .u32(6)
                              .zeros(6);
  EXPECT_EQ(hex(compact(MacPing{})), hex(expected));
  EXPECT_EQ(expected.size(), 52U);
}

TEST(MacAndOam, MacPingWithF0PacksTo60BytesWithF0BehindTheVtableOffset) {
  MacPing record{};
  record.f0 = 1;
  const Buffer expected = Layout()
                              .u32(34)
                              .u16(30, 26)
                              .u16(4, 0, 0, 0, 0, 12, 0, 0, 0, 0, 0, 0, 0)
                              .u32(30)
                              .u64(1)
                              .u32(4)
                              .u32(6)
                              .zeros(6);
  EXPECT_EQ(hex(compact(record)), hex(expected));
  EXPECT_EQ(expected.size(), 60U);
  expectRead(expected, record);
}

TEST(MacAndOam, StaticMacOfZerosPacksTo110BytesAndIsSentAs136) {
  const Buffer expected = Layout()
                              .u32(28)
                              .u16(24, 82)
                              .u16(0, 0, 4, 0, 0, 0, 0, 0, 8, 12)
                              .u32(24)
                              .u32(12, 18, 42)
                              .u32(6)
                              .zeros(6)
                              .u32(24)
                              .zeros(24)
                              .u32(24)
                              .zeros(24);
  EXPECT_EQ(hex(compact(StaticMac{})), hex(expected));
  EXPECT_EQ(expected.size(), 110U);
  EXPECT_EQ(sent(StaticMac{}).size(), 136U);
}

TEST(MacAndOam, VsimacOfZerosHasItsThreeWordsTogether) {
  const Buffer expected = Layout()
                              .u32(42)
                              .u16(38, 58)
                              .u16(0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 12)
                              .u32(38)
                              .u32(12, 18, 30)
                              .u32(6)
                              .zeros(6)
                              .u32(12)
                              .zeros(12)
                              .u32(12)
                              .zeros(12);
  EXPECT_EQ(hex(compact(Vsimac{})), hex(expected));
  EXPECT_EQ(expected.size(), 100U);
}

TEST(MacAndOam, ScalarsComeBeforeWordsWhateverTheirSlots) {
  const Buffer vsimac = compact(full<Vsimac>());
  EXPECT_EQ(hex(firstBytes(vsimac, 50)),
            hex(Layout()
                    .u32(42)
                    .u16(38, 100)
                    .u16(4, 46, 8, 10, 14, 15, 16, 18, 22, 24, 26, 30, 34, 38, 42, 50, 54)
                    .u32(38)
                    .u32(0x40010203)));
  EXPECT_EQ(hex(Buffer(vsimac.begin() + 88, vsimac.begin() + 104)),
            hex(Layout().u32(12, 18, 30).u32(6)));
  const Buffer staticMac = compact(full<StaticMac>());
  EXPECT_EQ(hex(firstBytes(staticMac, 32)),
            hex(Layout().u32(28).u16(24, 104).u16(4, 8, 26, 12, 13, 14, 18, 22, 30, 34).u32(24)));
  EXPECT_EQ(hex(Buffer(staticMac.begin() + 54, staticMac.begin() + 70)),
            hex(Layout().u32(12, 18, 42).u32(6)));
  const Buffer macPing = compact(full<MacPing>());
  EXPECT_EQ(hex(firstBytes(macPing, 38)),
            hex(Layout()
                    .u32(34)
                    .u16(30, 52)
                    .u16(4, 12, 16, 20, 22, 38, 24, 25, 26, 30, 34, 36, 37)
                    .u32(30)));
}

TEST(MacAndOam, AllScalarsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<Vsimac>()).size(), 142U);
  EXPECT_EQ(compact(full<StaticMac>()).size(), 132U);
  EXPECT_EQ(compact(full<MacPing>()).size(), 86U);
}

TEST(MacAndOam, SendsEachRecordInItsFixedLength) {
  expectSentFixed<Vsimac>();
  expectSentFixed<StaticMac>();
  expectSentFixed<MacPing>();
}

TEST(MacAndOam, ImagesEndWithVtableAndPadding) {
  const auto from = [](const Buffer& image, size_t vtable) {
    return hex(Buffer(image.begin() + static_cast<std::ptrdiff_t>(vtable), image.end()));
  };
  EXPECT_EQ(from(sent(full<Vsimac>()), 104),
            hex(Layout()
                    .u16(38, 100, 4, 8, 22, 24, 28, 29, 30, 32, 36, 38, 40, 44, 48, 52, 56)
                    .u16(60, 80)
                    .zeros(2)));
  EXPECT_EQ(from(sent(full<StaticMac>()), 108),
            hex(Layout().u16(24, 104, 4, 8, 12, 26, 27, 28, 32, 36, 40, 72).zeros(4)));
  EXPECT_EQ(from(sent(full<MacPing>()), 56),
            hex(Layout().u16(30, 52, 4, 12, 16, 20, 22, 24, 38, 39, 40, 44, 48, 50, 51).zeros(2)));
}

TEST(MacAndOam, ReadsBackBothArrangements) {
  expectRoundTrip(Vsimac{});
  expectRoundTrip(full<Vsimac>());
  expectRoundTrip(StaticMac{});
  expectRoundTrip(full<StaticMac>());
  expectRoundTrip(MacPing{});
  expectRoundTrip(full<MacPing>());
}

TEST(MacAndOam, VtableThatStopsAfterSlot14LeavesBothLongArraysZero) {
  expectVtableOf<Vsimac>(34, offsetof(Vsimac, f15));
  expectVtableOf<StaticMac>(22, offsetof(StaticMac, f9));
  expectVtableOf<MacPing>(4, 0);
}

TEST(MacAndOam, MacOfEightBytesLeavesOnlyF0OfAVsimac) {
  const Buffer good = compact(full<Vsimac>());
  ASSERT_EQ(good[100], 6);
  expectRead(withU32(good, 100, 8), upTo(offsetof(Vsimac, f1), full<Vsimac>()));
}

TEST(MacAndOam, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<Vsimac>(100, 6, offsetof(Vsimac, f1));
  expectArrayLengthChecked<Vsimac>(110, 12, offsetof(Vsimac, f15));
  expectArrayLengthChecked<Vsimac>(126, 12, offsetof(Vsimac, f16));
  expectArrayLengthChecked<StaticMac>(66, 6, offsetof(StaticMac, f2));
  expectArrayLengthChecked<StaticMac>(76, 24, offsetof(StaticMac, f8));
  expectArrayLengthChecked<StaticMac>(104, 24, offsetof(StaticMac, f9));
  expectArrayLengthChecked<MacPing>(76, 6, offsetof(MacPing, f5));
}

TEST(MacAndOam, U64LessThanEightBytesBeforeTheEndLeavesAllZero) {
  const Buffer good = compact(full<MacPing>());
  expectRead(withU16(good, 8, 86 - 34 - 7), MacPing{});
  Buffer tail = withU16(good, 8, 86 - 34 - 8);
  MacPing expected = full<MacPing>();
  // The last eight bytes are half of the array's length word and the array.
  expected.f0 = 0xCAC9C8C7C6C50000;
  expectRead(tail, expected);
}

TEST(MacAndOam, PackChecksRecordAndRoom) {
  expectPackLimits(Vsimac{});
  expectPackLimits(full<Vsimac>());
  expectPackLimits(StaticMac{});
  expectPackLimits(full<StaticMac>());
  expectPackLimits(MacPing{});
  expectPackLimits(full<MacPing>());
}

TEST(MacAndOam, UnpackChecksItsParameters) {
  expectUnpackParameters<Vsimac>();
  expectUnpackParameters<StaticMac>();
  expectUnpackParameters<MacPing>();
}

TEST(MacAndOam, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<Vsimac>());
  expectHeadChecksByTableReader(full<StaticMac>());
  expectHeadChecksByTableReader(full<MacPing>());
}

TEST(MacAndOam, ReleaseDoesNothing) {
  expectNothingToRelease<Vsimac>();
  expectNothingToRelease<StaticMac>();
  expectNothingToRelease<MacPing>();
}

}  // namespace
