// How the reader finds a table's slots, and the scalars in them.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::Layout;
using harness::Trace;
using harness::Unpacked;

// What a key message without a byte string to release does on the way out of a failure.
const Trace keyReleased{"unpackFree null owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""};

// A key with f0 to f2 and no byte string: table at 16, fields from 20, 28 bytes.
Buffer keyOfScalars() {
  return Layout().u32(16).u16(12, 12, 4, 6, 8, 0).u32(12).u16(0x1111, 0x2222).u32(0x33333333);
}

// A VPLS MAC ping message with one slot present, its value (all ones) ending the buffer.
Buffer pingWithSlot(uint32_t slot, uint32_t width) {
  const Buffer bytes = Layout().u32(34).u16(30, 0).zeros(26).u32(30).fill(width, 0xFF);
  return harness::withU16(bytes, 8 + 2 * slot, 4);
}

template <typename Field>
void expectScalarAtTheEdge(uint32_t slot, Field l2vpn_sync_vpls_macping::*field) {
  const Buffer bytes = pingWithSlot(slot, sizeof(Field));
  const harness::GuardedBuffer whole(bytes);
  const Unpacked<l2vpn_sync_vpls_macping> read(whole.data(), static_cast<uint32_t>(bytes.size()));
  EXPECT_EQ(read.record.*field, static_cast<Field>(-1)) << "slot " << slot;
  EXPECT_EQ(read.trace, Trace());

  const Buffer cut = harness::firstBytes(bytes, bytes.size() - 1);
  const harness::GuardedBuffer guarded(cut);
  const Unpacked<l2vpn_sync_vpls_macping> failed(guarded.data(), static_cast<uint32_t>(cut.size()));
  EXPECT_EQ(failed.record.*field, 0U) << "slot " << slot;
  EXPECT_EQ(failed.trace, Trace());
}

TEST(Reader, ReadsScalarsOfEveryWidthUpToTheLastByteAndNotBeyond) {
  expectScalarAtTheEdge(0, &l2vpn_sync_vpls_macping::f0);    // u64
  expectScalarAtTheEdge(1, &l2vpn_sync_vpls_macping::f1);    // u32
  expectScalarAtTheEdge(3, &l2vpn_sync_vpls_macping::f3);    // u16
  expectScalarAtTheEdge(12, &l2vpn_sync_vpls_macping::f12);  // u8
}

TEST(Reader, KeepsTheScalarsBeforeOneThatLiesPastTheEnd) {
  for (const uint32_t entry : {9U, 12U, 0x7FFFU, 0x8000U, 0xFFFFU}) {
    const Unpacked<dbginfo_key_l2vpn> key(harness::withU16(keyOfScalars(), 12, entry));
    EXPECT_EQ(key.record.f0, 0x1111);
    EXPECT_EQ(key.record.f1, 0x2222);
    EXPECT_EQ(key.record.f2, 0U) << "at " << entry;
    EXPECT_EQ(key.record.f3, nullptr);
    EXPECT_EQ(key.trace, keyReleased);
  }
}

TEST(Reader, ReadsNothingAfterTheFirstFieldThatFails) {
  const Unpacked<dbginfo_key_l2vpn> key(harness::withU16(keyOfScalars(), 8, 0xFFFF));
  EXPECT_EQ(key.record.f0, 0);
  EXPECT_EQ(key.record.f1, 0);
  EXPECT_EQ(key.record.f2, 0U);
  EXPECT_EQ(key.trace, keyReleased);
}

TEST(Reader, ReadsAnUnalignedScalarAsAnAlignedOne) {
  for (uint32_t shift = 0; shift < 8; ++shift) {
    const Buffer bytes = Layout().zeros(shift).append(keyOfScalars());
    const Unpacked<dbginfo_key_l2vpn> key(bytes.data() + shift, 28);
    EXPECT_EQ(key.record.f2, 0x33333333U) << "shifted by " << shift;
  }
  const Buffer odd = Layout().u32(16).u16(12, 9, 0, 0, 5, 0).u32(12).u8(0xEE).u32(0x44332211);
  EXPECT_EQ(Unpacked<dbginfo_key_l2vpn>(odd).record.f2, 0x44332211U);
}

TEST(Reader, ReadsFieldsInAnyOrderAndTwoFromOnePlace) {
  const Buffer bytes = Layout().u32(16).u16(12, 0, 8, 8, 4, 0).u32(12).u32(0x55555555).u16(0x6666);
  const Unpacked<dbginfo_key_l2vpn> key(bytes);
  EXPECT_EQ(key.record.f0, 0x6666);
  EXPECT_EQ(key.record.f1, 0x6666);
  EXPECT_EQ(key.record.f2, 0x55555555U);
}

TEST(Reader, ReadsAZeroEntryAsAbsent) {
  const Unpacked<dbginfo_key_l2vpn> key(harness::withU16(keyOfScalars(), 10, 0));
  EXPECT_EQ(key.record.f0, 0x1111);
  EXPECT_EQ(key.record.f1, 0);
  EXPECT_EQ(key.record.f2, 0x33333333U);
  EXPECT_EQ(key.record.f3, nullptr);
  EXPECT_EQ(key.record.f3_len, 0U);
  EXPECT_EQ(key.trace, Trace());
}

TEST(Reader, ReadsSlotsBeyondAShortVtableAsAbsent) {
  // Of each length, how many slots it reaches.
  for (const auto& [length, slots] : std::initializer_list<std::pair<uint32_t, int>>{
           {4, 0}, {5, 0}, {6, 1}, {7, 1}, {8, 2}, {9, 2}, {10, 3}, {11, 3}}) {
    const Unpacked<dbginfo_key_l2vpn> key(harness::withU16(keyOfScalars(), 4, length));
    EXPECT_EQ(key.record.f0, slots > 0 ? 0x1111 : 0) << "vtable of " << length;
    EXPECT_EQ(key.record.f1, slots > 1 ? 0x2222 : 0) << "vtable of " << length;
    EXPECT_EQ(key.record.f2, slots > 2 ? 0x33333333U : 0) << "vtable of " << length;
    EXPECT_EQ(key.trace, Trace());
  }
}

TEST(Reader, LeavesFieldsOfNewerSchemasZero) {
  const Buffer bytes =
      Layout().u32(16).u16(12, 16, 4, 8, 12, 0).u32(12).u32(0x11111111, 0x22222222, 0x33333333);
  const Unpacked<l2vpn_cfg_query_comm_rec> record(bytes);
  EXPECT_EQ(record.record.f0, 0x11111111U);
  EXPECT_EQ(record.record.f1, 0x22222222U);
  EXPECT_EQ(record.record.f2, 0x33333333U);
  EXPECT_EQ(record.record.f4, 0U);
  EXPECT_EQ(record.trace, Trace());
}

TEST(Reader, LeavesCountersBeyondAShortVtableZero) {
  const Buffer bytes = Layout()
                           .u32(18)
                           .u16(14, 28, 4, 8, 12, 13, 24)
                           .u32(14)
                           .u32(0x11111111, 0x22222222)
                           .u8(0x33)
                           .u32(4, 3)
                           .u8(1, 2, 3)
                           .u32(0x44444444);
  const Unpacked<l2vpn_stat_pw_stat> statistics(bytes);
  EXPECT_EQ(statistics.record.f0, 0x11111111U);
  EXPECT_EQ(statistics.record.f2, 0x33);
  EXPECT_EQ(statistics.record.f3[2], 3);
  EXPECT_EQ(statistics.record.f4, 0x44444444U);
  EXPECT_EQ(statistics.record.f5, 0U);
  EXPECT_EQ(statistics.record.f12, 0U);
  EXPECT_EQ(statistics.trace, Trace());
}

TEST(Reader, IgnoresSlotsThatItDoesNotKnow) {
  const Buffer bytes = Layout()
                           .u32(20)
                           .u16(16, 0, 4, 6, 8, 0, 0xFFFF, 0xFFFF)
                           .u32(16)
                           .u16(0x1111, 0x2222)
                           .u32(0x33333333);
  const Unpacked<dbginfo_key_l2vpn> key(bytes);
  EXPECT_EQ(key.record.f0, 0x1111);
  EXPECT_EQ(key.record.f2, 0x33333333U);
  EXPECT_EQ(key.record.f3, nullptr);
  EXPECT_EQ(key.trace, Trace());
}

TEST(Reader, DoesNotUseTheTableLength) {
  for (const uint32_t length : {0U, 1U, 0x7FFFU, 0xFFFFU}) {
    const Unpacked<dbginfo_key_l2vpn> key(harness::withU16(keyOfScalars(), 6, length));
    EXPECT_EQ(key.record.f2, 0x33333333U) << "table length " << length;
    EXPECT_EQ(key.trace, Trace());
  }
}

TEST(Reader, AcceptsAVtableBehindItsTable) {
  // Sixty-eight bytes behind the table at 4, with nothing that matters between.
  const Buffer bytes =
      Layout().u32(4, static_cast<uint32_t>(-68)).u16(0x1111).zeros(62).u16(6, 0, 4);
  ASSERT_EQ(bytes.size(), 78U);
  const Unpacked<dbginfo_key_l2vpn> key(bytes);
  EXPECT_EQ(key.record.f0, 0x1111);
  EXPECT_EQ(key.trace, Trace());
}

TEST(Reader, AcceptsAVtableThatIsFarFromItsTable) {
  for (const uint32_t gap : {0xFFFFU, 0x10000U}) {
    // Before the table, and behind it.
    const Buffer before = Layout().u32(4 + gap).u16(6, 0, 4).zeros(gap - 6).u32(gap).u16(0x1111);
    EXPECT_EQ(Unpacked<dbginfo_key_l2vpn>(before).record.f0, 0x1111) << gap << " before";
    const Buffer behind = Layout().u32(4, 0U - gap).u16(0x2222).zeros(gap - 6).u16(6, 0, 4);
    EXPECT_EQ(Unpacked<dbginfo_key_l2vpn>(behind).record.f0, 0x2222) << gap << " behind";
  }
}

TEST(Reader, IgnoresWhatFollowsTheMessage) {
  const Buffer bytes = Layout().append(keyOfScalars()).fill(5, 0xFF);
  const Unpacked<dbginfo_key_l2vpn> key(bytes);
  EXPECT_EQ(key.record.f2, 0x33333333U);
  EXPECT_EQ(key.trace, Trace());
}

}  // namespace
