// VPLS attachment circuits: vpls_ac, vpls_ac_sub, vpls_ac_share.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Ac = l2vpn_sync_vpls_ac;
using AcSub = l2vpn_sync_vpls_ac_sub;
using AcShare = l2vpn_sync_vpls_ac_share;

TEST(AttachmentCircuits, AcOfZerosPacksTo72Bytes) {
  const Buffer expected = Layout()
                              .u32(28)
                              .u16(24, 44)
                              .u16(0, 0, 0, 0, 0, 0, 0, 0, 4, 8)
                              .u32(24)
                              .u32(8, 20)
                              .u32(12)
                              .zeros(12)
                              .u32(12)
                              .zeros(12);
  EXPECT_EQ(hex(compact(Ac{})), hex(expected));
  EXPECT_EQ(expected.size(), 72U);
}

TEST(AttachmentCircuits, AcWithEveryScalarPacksTo93Bytes) {
  Ac record{.f0 = 0x10111213,
            .f1 = 0x20212223,
            .f2 = 0x30313233,
            .f3 = 0x40414243,
            .f4 = 0x50,
            .f5 = 0x60,
            .f6 = 0x7071,
            .f7 = 0x80,
            .f8 = {},
            .f9 = {}};
  std::memset(record.f8, 0x90, 12);
  std::memset(record.f9, 0xA0, 12);
  const Buffer expected = Layout()
                              .u32(28)
                              .u16(24, 65)
                              .u16(4, 8, 12, 16, 20, 21, 22, 24, 25, 29)
                              .u32(24)
                              .u32(0x10111213, 0x20212223, 0x30313233, 0x40414243)
                              .u8(0x50, 0x60)
                              .u16(0x7071)
                              .u8(0x80)
                              .u32(8, 20)
                              .u32(12)
                              .fill(12, 0x90)
                              .u32(12)
                              .fill(12, 0xA0);
  EXPECT_EQ(hex(compact(record)), hex(expected));
  EXPECT_EQ(expected.size(), 93U);

  const Buffer image = Layout()
                           .u32(4, 0xFFFFFFBC)
                           .u32(0x10111213, 0x20212223, 0x30313233, 0x40414243)
                           .u8(0x50, 0x60)
                           .u16(0x7071)
                           .u8(0x80)
                           .u32(4, 12)
                           .fill(12, 0x90)
                           .u32(4, 12)
                           .fill(12, 0xA0)
                           .zeros(3)
                           .u16(24, 65)
                           .u16(4, 8, 12, 16, 20, 21, 22, 24, 25, 45);
  EXPECT_EQ(hex(sent(record)), hex(image));
}

TEST(AttachmentCircuits, CompactLengthsRunFromNoScalarToEveryScalar) {
  EXPECT_EQ(compact(AcSub{}).size(), 100U);
  EXPECT_EQ(compact(full<AcSub>()).size(), 148U);
  EXPECT_EQ(compact(AcShare{}).size(), 84U);
  EXPECT_EQ(compact(full<AcShare>()).size(), 116U);
}

TEST(AttachmentCircuits, SendsEachRecordInItsFixedLength) {
  expectSentFixed<Ac>();
  expectSentFixed<AcSub>();
  expectSentFixed<AcShare>();
}

TEST(AttachmentCircuits, ImagesEndWithVtableAndPadding) {
  const Buffer sub = sent(full<AcSub>());
  EXPECT_EQ(Buffer(sub.begin() + 96, sub.end()),
            Buffer(Layout()
                       .u16(52, 92, 4, 8, 12, 14, 16, 20, 24, 25, 26, 28, 30, 32, 33)
                       .u16(34, 35, 36, 40, 42, 44, 46, 47, 48, 52, 72)
                       .zeros(4)));
  const Buffer share = sent(full<AcShare>());
  EXPECT_EQ(Buffer(share.begin() + 80, share.end()),
            Buffer(Layout()
                       .u16(36, 76, 4, 8, 12, 16, 20, 22, 24, 25, 26, 28, 30, 32, 33, 34, 36, 56)
                       .zeros(4)));
}

TEST(AttachmentCircuits, ReadsBackBothArrangements) {
  expectRoundTrip(Ac{});
  expectRoundTrip(full<Ac>());
  expectRoundTrip(AcSub{});
  expectRoundTrip(full<AcSub>());
  expectRoundTrip(AcShare{});
  expectRoundTrip(full<AcShare>());
}

TEST(AttachmentCircuits, ReadsAVtableWithoutSlotsAsZeros) {
  expectVtableOf<Ac>(4, 0);
  expectVtableOf<AcSub>(4, 0);
  expectVtableOf<AcShare>(4, 0);
}

TEST(AttachmentCircuits, VtableOf22BytesLeavesF9OfAnAcZero) {
  expectVtableOf<Ac>(22, offsetof(Ac, f9));
  expectVtableOf<Ac>(23, offsetof(Ac, f9));
  expectVtableOf<Ac>(21, offsetof(Ac, f8));
}

TEST(AttachmentCircuits, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<Ac>(61, 12, offsetof(Ac, f8));
  expectArrayLengthChecked<Ac>(77, 12, offsetof(Ac, f9));
  expectArrayLengthChecked<AcSub>(116, 12, offsetof(AcSub, f22));
  expectArrayLengthChecked<AcSub>(132, 12, offsetof(AcSub, f23));
  expectArrayLengthChecked<AcShare>(84, 12, offsetof(AcShare, f14));
  expectArrayLengthChecked<AcShare>(100, 12, offsetof(AcShare, f15));
}

TEST(AttachmentCircuits, StopsAtAScalarPastTheEnd) {
  const Buffer good = compact(full<Ac>());
  expectRead(withU16(good, 8 + 2 * 6, 93 - 28 - 2), [] {
    Ac record = full<Ac>();
    record.f6 = 0xD4D3;  // the last two bytes of f9
    return record;
  }());
  expectRead(withU16(good, 8 + 2 * 6, 93 - 28 - 1), upTo(offsetof(Ac, f6), full<Ac>()));
  expectRead(withU16(good, 8, 93 - 28 - 3), Ac{});
}

TEST(AttachmentCircuits, StopsAtAnArrayPastTheEnd) {
  const Buffer good = compact(full<Ac>());
  const Ac beforeArrays = upTo(offsetof(Ac, f8), full<Ac>());
  expectRead(withU16(good, 24, 93 - 28 - 3), beforeArrays);  // the offset word
  expectRead(withU32(good, 53, 93 - 53 + 1), beforeArrays);  // the target
  expectRead(withU32(good, 53, 93 - 53 - 3), beforeArrays);  // the length word
  expectRead(withU32(good, 53, 0xFFFFFFFF), beforeArrays);   // a target that wraps
  expectRead(firstBytes(good, 92), upTo(offsetof(Ac, f9), full<Ac>()));
}

TEST(AttachmentCircuits, PackChecksRecordAndRoom) {
  expectPackLimits(Ac{});
  expectPackLimits(full<Ac>());
  expectPackLimits(AcSub{});
  expectPackLimits(full<AcSub>());
  expectPackLimits(AcShare{});
  expectPackLimits(full<AcShare>());
}

TEST(AttachmentCircuits, UnpackChecksItsParameters) {
  expectUnpackParameters<Ac>();
  expectUnpackParameters<AcSub>();
  expectUnpackParameters<AcShare>();
}

TEST(AttachmentCircuits, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<Ac>());
  expectHeadChecksByTableReader(full<AcSub>());
  expectHeadChecksByTableReader(full<AcShare>());
}

TEST(AttachmentCircuits, ReleaseDoesNothing) {
  expectNothingToRelease<Ac>();
  expectNothingToRelease<AcSub>();
  expectNothingToRelease<AcShare>();
}

}  // namespace
