// Debug information that is sent in the fixed arrangement: dbginfo_cmd_ipc, dbginfo_dedata.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Ipc = dbginfo_cmd_ipc_l2vpn;
using Dedata = dbginfo_dedata_l2vpn;

TEST(DebugImages, IpcAndDedataAreSentInOneLengthWhateverTheirValues) {
  expectSentFixed<Ipc>();
  expectSentFixed<Dedata>();
  expectNothingToRelease<Ipc>();
  expectNothingToRelease<Dedata>();
}

TEST(DebugImages, TheImageOfAnIpc) {
  const Ipc record{.f0 = 0x100,
                   .f1 = 0x101,
                   .f2 = 0x102,
                   .f3 = 0x103,
                   .f4 = 0x104,
                   .f5 = 0x105,
                   .f6 = 0x106,
                   .f7 = 0x107,
                   .f8 = 0x108,
                   .f9 = 0x109,
                   .f10 = 0x10A,
                   .f11 = 0x10B,
                   .f12 = 0x10C};
  EXPECT_EQ(hex(sent(record)),
            hex(Layout()
                    .u32(4, 0xFFFFFFD0)
                    .u32(0x100, 0x101)
                    .u16(0x102, 0x103)
                    .u32(0x104, 0x105, 0x106, 0x107)
                    .u16(0x108)
                    .u32(0x109)
                    .u16(0x10A, 0x10B)
                    .u32(0x10C)
                    .zeros(2)
                    .u16(30, 46, 4, 8, 12, 14, 16, 20, 24, 28, 32, 34, 38, 40, 42)
                    .zeros(6)));
  expectRoundTrip(record);
}

TEST(DebugImages, TheImageOfDedata) {
  const Dedata record{.f0 = 0x100,
                      .f1 = 0x101,
                      .f2 = 0x102,
                      .f3 = 0x103,
                      .f4 = 0x104,
                      .f5 = 0x105,
                      .f6 = 0x106,
                      .f7 = 0x107,
                      .f8 = 0x108,
                      .f9 = 0x109,
                      .f10 = 0x10A,
                      .f11 = 0x10B,
                      .f12 = 0x10C};
  EXPECT_EQ(hex(sent(record)),
            hex(Layout()
                    .u32(4, 0xFFFFFFD4)
                    .u32(0x100, 0x101)
                    .u16(0x102, 0x103, 0x104, 0x105, 0x106, 0x107)
                    .u32(0x108, 0x109)
                    .u16(0x10A)
                    .u32(0x10B, 0x10C)
                    .zeros(2)
                    .u16(30, 42, 4, 8, 12, 14, 16, 18, 20, 22, 24, 28, 32, 34, 38)
                    .zeros(2)));
  expectRoundTrip(record);
}

}  // namespace
