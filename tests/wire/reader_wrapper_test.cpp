// Wrapped records: the wrapper's own value survives damage to the record.

#include <gtest/gtest.h>

#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Layout;
using harness::reported;
using harness::Trace;
using harness::Unpacked;

// A wrapped attachment circuit with f0 and its arrays: the wrapper's table at 12 (the word at 18),
// the circuit's vtable at 22 and table at 46 (f0 at 50, words at 54 and 58, lengths at 62 and 78).
Buffer update() {
  return Layout()
      .u32(12)
      .u16(8, 0, 4, 6)
      .u32(8)
      .u16(0x1111)
      .u32(28)
      .u16(24, 0, 4, 0, 0, 0, 0, 0, 0, 0, 8, 12)
      .u32(24)
      .u32(0x22222222)
      .u32(8, 20)
      .u32(12)
      .fill(12, 0x88)
      .u32(12)
      .fill(12, 0x99);
}

constexpr const char* reader = "l2vpn_sync_vpls_ac_unpack_non_root";

// The whole record: the value, the circuit's first field, its two arrays.
void expectUpdate(const Buffer& bytes, const Layout& circuit, const Trace& trace,
                  uint16_t f0 = 0x1111) {
  const harness::GuardedBuffer guarded(bytes);
  const Unpacked<l2vpn_sync_vpls_ac_update> read(guarded.data(),
                                                 static_cast<uint32_t>(bytes.size()));
  Buffer expected = Layout().u16(f0, 0).append(circuit);
  expected.resize(sizeof(l2vpn_sync_vpls_ac_update));
  EXPECT_EQ(hex(harness::bytesOf(read.record)), hex(expected));
  EXPECT_EQ(read.trace, trace);
}

TEST(Wrapper, DeliversItsValueAndItsRecord) {
  const Buffer bytes = update();
  ASSERT_EQ(bytes.size(), 94U);
  expectUpdate(bytes, Layout().u32(0x22222222).zeros(17).fill(12, 0x88).fill(12, 0x99), {});
}

TEST(Wrapper, DeliversItsValueWhenTheRecordIsAbsent) {
  expectUpdate(harness::withU16(update(), 10, 0), Layout(), {});
  expectUpdate(harness::withU16(update(), 4, 6), Layout(), {});
  expectUpdate(harness::withU16(update(), 4, 7), Layout(), {});
}

TEST(Wrapper, DeliversNothingOfAVtableWithoutSlots) {
  for (const uint32_t length : {4U, 5U}) {
    expectUpdate(harness::withU16(update(), 4, length), Layout(), {}, 0);
  }
}

TEST(Wrapper, StopsAtAValueThatPassesTheEnd) {
  for (const uint32_t entry : {81U, 82U, 0xFFFFU}) {
    expectUpdate(harness::withU16(update(), 8, entry), Layout(), {}, 0);
  }
}

TEST(Wrapper, DeliversItsValueWhenTheWordPassesTheEndOrWraps) {
  for (const uint32_t entry : {79U, 82U, 0x8000U, 0xFFFFU}) {
    expectUpdate(harness::withU16(update(), 10, entry), Layout(), {});
  }
  for (const uint32_t target : {0U, 4U, 12U, 17U}) {
    expectUpdate(harness::withU32(update(), 18, target - 18), Layout(), {});
  }
}

TEST(Wrapper, DeliversItsValueWhenTheRecordsTableIsOutside) {
  for (const uint32_t target :
       {91U, 94U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    expectUpdate(
        harness::withU32(update(), 18, target - 18), Layout(),
        {reported(reader, "Table offset(" + std::to_string(target) + ") is out of range(4 - 94)")});
  }
}

TEST(Wrapper, DeliversItsValueWhenTheRecordsVtableIsBad) {
  expectUpdate(harness::withU32(update(), 46, 43), Layout(),
               {reported(reader, "Vtable offset(46) is out of range(4 - 90)")});
  expectUpdate(harness::withU16(update(), 22, 73), Layout(),
               {reported(reader, "Vtable Len(73) is out of range(0 - 72)")});
}

TEST(Wrapper, DeliversWhatWasReadOfADamagedRecord) {
  expectUpdate(harness::withU32(update(), 78, 11),
               Layout().u32(0x22222222).zeros(17).fill(12, 0x88), {});
  expectUpdate(harness::withU32(update(), 62, 13), Layout().u32(0x22222222), {});
  expectUpdate(harness::firstBytes(update(), 93), Layout().u32(0x22222222).zeros(17).fill(12, 0x88),
               {});
  expectUpdate(harness::withU16(update(), 26, 0xFFFF), Layout(), {});
}

// The same bad root: the wrapper is left alone, the record on its own is cleared.
TEST(Wrapper, BadHeadKeepsTheWrapper) {
  const Buffer bytes = harness::withU32(update(), 0, 2);
  const Unpacked<l2vpn_sync_vpls_ac_update> wrapper(bytes);
  EXPECT_EQ(hex(harness::bytesOf(wrapper.record)), hex(harness::marks(sizeof wrapper.record)));
  EXPECT_EQ(wrapper.trace, Trace({reported("l2vpn_sync_vpls_ac_update_unpack",
                                           "Table offset(2) is out of range(4 - 94)")}));
  const Unpacked<l2vpn_sync_vpls_ac> record(bytes);
  EXPECT_EQ(hex(harness::bytesOf(record.record)), hex(Buffer(sizeof record.record, 0)));
  EXPECT_EQ(record.trace, Trace({reported(reader, "Table offset(2) is out of range(4 - 94)")}));
}

}  // namespace
