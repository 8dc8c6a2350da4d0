// Pseudowire statistics.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using PwStat = l2vpn_stat_pw_stat;

constexpr PwStat statistics{.f0 = 0x10111213,
                            .f1 = 0x20212223,
                            .f2 = 0x30,
                            .f3 = {0xA1, 0xA2, 0xA3},
                            .f4 = 0x40414243,
                            .f5 = 0x5051525354555657,
                            .f6 = 0x6061626364656667,
                            .f7 = 0x7071727374757677,
                            .f8 = 0x8081828384858687,
                            .f9 = 0x9091929394959697,
                            .f10 = 0xA0A1A2A3A4A5A6A7,
                            .f11 = 0xB0B1B2B3B4B5B6B7,
                            .f12 = 0xC0C1C2C3C4C5C6C7};

Layout counters() {
  return Layout()
      .u64(0x5051525354555657, 0x6061626364656667, 0x7071727374757677, 0x8081828384858687)
      .u64(0x9091929394959697, 0xA0A1A2A3A4A5A6A7, 0xB0B1B2B3B4B5B6B7, 0xC0C1C2C3C4C5C6C7);
}

TEST(Statistics, ZerosPackTo49BytesWithOnlyF3Present) {
  const Buffer expected = Layout()
                              .u32(34)
                              .u16(30, 15)
                              .u16(0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0)
                              .u32(30)
                              .u32(4)
                              .u32(3)
                              .zeros(3);
  EXPECT_EQ(hex(compact(PwStat{})), hex(expected));
  EXPECT_EQ(expected.size(), 49U);
}

TEST(Statistics, EveryFieldPacksWithF3BehindTheScalars) {
  const Buffer expected = Layout()
                              .u32(34)
                              .u16(30, 92)
                              .u16(4, 8, 12, 81, 13, 17, 25, 33, 41, 49, 57, 65, 73)
                              .u32(30)
                              .u32(0x10111213, 0x20212223)
                              .u8(0x30)
                              .u32(0x40414243)
                              .append(counters())
                              .u32(4)
                              .u32(3)
                              .u8(0xA1, 0xA2, 0xA3);
  EXPECT_EQ(hex(compact(statistics)), hex(expected));
  // 49, three of 4, one of 1 and eight counters of 8.
  EXPECT_EQ(expected.size(), 126U);
}

TEST(Statistics, EachFieldAddsItsWidth) {
  const auto sizeWith = [](auto set) {
    PwStat record{};
    set(record);
    return compact(record).size();
  };
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f0 = 1; }), 53U);
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f1 = 1; }), 53U);
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f2 = 1; }), 50U);
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f3[1] = 1; }), 49U);
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f4 = 1; }), 53U);
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f5 = 1; }), 57U);
  EXPECT_EQ(sizeWith([](PwStat& record) { record.f12 = uint64_t{1} << 63; }), 57U);
}

TEST(Statistics, TheImageIs128Bytes) {
  const Buffer image = Layout()
                           .u32(4, 0xFFFFFFA4)
                           .u32(0x10111213, 0x20212223)
                           .u8(0x30)
                           .u32(4)
                           .u32(3)
                           .u8(0xA1, 0xA2, 0xA3)
                           .u32(0x40414243)
                           .append(counters())
                           .u16(30, 92)
                           .u16(4, 8, 12, 13, 24, 28, 36, 44, 52, 60, 68, 76, 84)
                           .zeros(2);
  EXPECT_EQ(hex(sent(statistics)), hex(image));
  EXPECT_EQ(image.size(), 128U);
  EXPECT_EQ(sent(PwStat{}).size(), 128U);
}

TEST(Statistics, SingleTakesNoAllocationBatch144BytesARecord) {
  expectSentFixed<PwStat>();
  const PwStat records[3] = {};
  resetRecorder();
  EXPECT_EQ(of<PwStat>().sendBatch(7, records, 3, 0), 0U);
  EXPECT_EQ(takeTrace().at(0),
            "memAlloc size=432 owner=25088 caller=\"l2vpn_stat_pw_stat__sendbatch\" -> #1");
}

TEST(Statistics, ReadsBackBothArrangements) {
  expectRoundTrip(PwStat{});
  expectRoundTrip(statistics);
}

TEST(Statistics, F3OfTwoOrFourBytesKeepsWhatWasReadBefore) {
  expectArrayLengthChecked<PwStat>(119, 3, offsetof(PwStat, f3));
  const Buffer good = compact(statistics);
  // Room for a fourth byte: the length alone is wrong.
  expectRead(withU32(Layout().append(good).zeros(8), 119, 4),
             upTo(offsetof(PwStat, f3), statistics));
  expectRead(withU32(good, 119, 2), upTo(offsetof(PwStat, f3), statistics));
}

TEST(Statistics, AbsentF3IsZero) {
  PwStat expected = statistics;
  std::memset(expected.f3, 0, 3);
  expectRead(withU16(compact(statistics), 8 + 2 * 3, 0), expected);
}

TEST(Statistics, VtableOfSlots0To4LeavesTheCountersZero) {
  expectVtableOf<PwStat>(14, offsetof(PwStat, f5));
  expectVtableOf<PwStat>(4, 0);
}

TEST(Statistics, StopsAtACounterPastTheEnd) {
  const Buffer good = compact(statistics);
  expectRead(withU16(good, 8 + 2 * 6, 126 - 34 - 7), upTo(offsetof(PwStat, f6), statistics));
}

TEST(Statistics, PackChecksRecordAndRoom) {
  expectPackLimits(PwStat{});
  expectPackLimits(statistics);
}

TEST(Statistics, UnpackChecksItsParameters) {
  expectUnpackParameters<PwStat>();
}

TEST(Statistics, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(statistics);
}

TEST(Statistics, ReleaseDoesNothing) {
  expectNothingToRelease<PwStat>();
}

}  // namespace
