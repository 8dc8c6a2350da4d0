// VPLS instances: vpls_inst, vpls_inst_info, vpls_exp.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Inst = l2vpn_sync_vpls_inst;
using Info = l2vpn_sync_vpls_inst_info;
using Exp = l2vpn_sync_vpls_exp;

Layout instanceOfZeros() {
  return Layout()
      .u32(34)
      .u16(30, 68)
      .u16(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 8)
      .u32(30)
      .u32(8, 32)
      .u32(24)
      .zeros(24)
      .u32(24)
      .zeros(24);
}

TEST(Instances, InstanceOfZerosPacksTo102Bytes) {
  EXPECT_EQ(hex(compact(Inst{})), hex(instanceOfZeros()));
  EXPECT_EQ(hex(compact(Info{})), hex(instanceOfZeros()));
  EXPECT_EQ(compact(Inst{}).size(), 102U);
}

TEST(Instances, ExpOfZerosPacksTo26Bytes) {
  const Buffer expected = Layout().u32(22).u16(18, 4).u16(0, 0, 0, 0, 0, 0, 0).u32(18);
  EXPECT_EQ(hex(compact(Exp{})), hex(expected));
  EXPECT_EQ(expected.size(), 26U);
}

TEST(Instances, AllScalarsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<Inst>()).size(), 126U);
  EXPECT_EQ(compact(full<Info>()).size(), 126U);
  EXPECT_EQ(compact(full<Exp>()).size(), 42U);
}

TEST(Instances, SendsEachRecordInItsFixedLength) {
  expectSentFixed<Inst>();
  expectSentFixed<Info>();
  expectSentFixed<Exp>();
}

TEST(Instances, TheImageOfAnExpIs42BytesAndZeros) {
  const Exp record{.f0 = 0x10111213,
                   .f1 = 0x20212223,
                   .f2 = 0x30313233,
                   .f3 = 0x40,
                   .f4 = 0x50,
                   .f5 = 0x60,
                   .f6 = 0x70};
  const Buffer image = Layout()
                           .u32(4, 0xFFFFFFEC)
                           .u32(0x10111213, 0x20212223, 0x30313233)
                           .u8(0x40, 0x50, 0x60, 0x70)
                           .u16(18, 20)
                           .u16(4, 8, 12, 16, 17, 18, 19)
                           .zeros(6);
  EXPECT_EQ(hex(sent(record)), hex(image));
}

TEST(Instances, TheImageOfAnInstanceIs126BytesAndZeros) {
  const Buffer image = sent(full<Inst>());
  EXPECT_EQ(hex(Buffer(image.begin() + 96, image.end())),
            hex(Layout().u16(30, 92, 4, 8, 12, 16, 17, 18, 20, 21, 22, 23, 24, 28, 60).zeros(2)));
  EXPECT_EQ(hex(sent(full<Info>())), hex(image));
}

TEST(Instances, ReadsBackBothArrangements) {
  expectRoundTrip(Inst{});
  expectRoundTrip(full<Inst>());
  expectRoundTrip(Info{});
  expectRoundTrip(full<Info>());
  expectRoundTrip(Exp{});
  expectRoundTrip(full<Exp>());
}

TEST(Instances, InstanceIsReadAsInstanceInformation) {
  const auto inst = full<Inst>();
  const Unpacked<Info> info(compact(inst));
  EXPECT_EQ(bytesOf(info.record), bytesOf(inst));
  EXPECT_NE(of<Inst>().id(), of<Info>().id());
}

TEST(Instances, VtableOf16BytesLeavesF6OfAnExpZero) {
  expectVtableOf<Exp>(16, offsetof(Exp, f6));
  expectVtableOf<Exp>(17, offsetof(Exp, f6));
  expectVtableOf<Exp>(4, 0);
  expectVtableOf<Inst>(4, 0);
  expectVtableOf<Inst>(28, offsetof(Inst, f12));
}

TEST(Instances, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<Inst>(70, 24, offsetof(Inst, f11));
  expectArrayLengthChecked<Inst>(98, 24, offsetof(Inst, f12));
  expectArrayLengthChecked<Info>(70, 24, offsetof(Info, f11));
  expectArrayLengthChecked<Info>(98, 24, offsetof(Info, f12));
}

TEST(Instances, StopsAtAScalarPastTheEnd) {
  const Buffer good = compact(full<Exp>());
  expectRead(withU16(good, 8 + 2 * 6, 42 - 22), upTo(offsetof(Exp, f6), full<Exp>()));
  expectRead(withU16(good, 8 + 2 * 2, 42 - 22 - 3), upTo(offsetof(Exp, f2), full<Exp>()));
}

TEST(Instances, PackChecksRecordAndRoom) {
  expectPackLimits(Inst{});
  expectPackLimits(full<Inst>());
  expectPackLimits(Info{});
  expectPackLimits(full<Info>());
  expectPackLimits(Exp{});
  expectPackLimits(full<Exp>());
}

TEST(Instances, UnpackChecksItsParameters) {
  expectUnpackParameters<Inst>();
  expectUnpackParameters<Info>();
  expectUnpackParameters<Exp>();
}

TEST(Instances, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<Inst>());
  expectHeadChecksByTableReader(full<Info>());
  expectHeadChecksByTableReader(full<Exp>());
}

TEST(Instances, ReleaseDoesNothing) {
  expectNothingToRelease<Inst>();
  expectNothingToRelease<Info>();
  expectNothingToRelease<Exp>();
}

}  // namespace
