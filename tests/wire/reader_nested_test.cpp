// Tables inside tables, in the configuration service: what fails inside fails the whole message.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::Layout;
using harness::recorder;
using harness::reported;
using harness::reportedRefusal;
using harness::Trace;
using harness::Unpacked;

const std::string paraTaken = " owner=12 caller=\"dbginfo_para_l2vpn_unpack_non_root\"";
const std::string keyTaken = " owner=12 caller=\"dbginfo_key_l2vpn_unpack_non_root\"";
const std::string given = " owner=12 caller=\"dbginfo_cmd_key_l2vpn_free_unpacked\"";

// A command: table at 18 (f2, the words of f3 at 24 and f4 at 28), f3's vtable at 32 and table at
// 52 (f0, a word at 58, its length at 62), f4's vtable at 68 and table at 80 (f1, a word at 86, its
// length at 90).
Buffer command() {
  return Layout()
      .u32(18)
      .u16(14, 0, 0, 0, 4, 6, 10)
      .u32(14)
      .u16(0x2222)
      .u32(28, 52)
      .u16(20, 0, 4, 0, 0, 0, 0, 0, 0, 6)
      .u32(20)
      .u16(0x3333)
      .u32(4, 2)
      .text("ab")
      .u16(12, 0, 0, 4, 0, 6)
      .u32(12)
      .u16(0x4444)
      .u32(4, 3)
      .text("xyz");
}

class NestedTables : public testing::Test {
 protected:
  static void unpackBoth(const Buffer& bytes, const Trace& expected, int failing = 0) {
    const harness::GuardedBuffer guarded(bytes);
    const Unpacked<dbginfo_cmd_key_l2vpn> failed(guarded.data(),
                                                 static_cast<uint32_t>(bytes.size()), failing);
    EXPECT_EQ(failed.trace, expected);
    EXPECT_EQ(failed.record.f2, 0x2222) << "scalars before the failure stay";
    EXPECT_EQ(failed.record.f3.f7, nullptr);
    EXPECT_EQ(failed.record.f4.f3, nullptr);
    EXPECT_TRUE(recorder().blocks.empty());
  }
};

TEST_F(NestedTables, AllocateUnderTheirOwnNamesAndAreReleasedUnderTheMessages) {
  const Buffer bytes = command();
  ASSERT_EQ(bytes.size(), 97U);
  Unpacked<dbginfo_cmd_key_l2vpn> read(bytes);
  EXPECT_EQ(read.trace, Trace({"unpackAlloc size=2" + paraTaken + " -> #1",
                               "unpackAlloc size=3" + keyTaken + " -> #2"}));
  EXPECT_EQ(read.record.f0, 0U);
  EXPECT_EQ(read.record.f2, 0x2222);
  EXPECT_EQ(read.record.f3.f0, 0x3333);
  ASSERT_EQ(read.record.f3.f7_len, 2U);
  EXPECT_EQ(std::string(read.record.f3.f7, read.record.f3.f7 + 2), "ab");
  EXPECT_EQ(read.record.f4.f1, 0x4444);
  ASSERT_EQ(read.record.f4.f3_len, 3U);
  EXPECT_EQ(std::string(read.record.f4.f3, read.record.f4.f3 + 3), "xyz");
  EXPECT_EQ(read.release(), Trace({"unpackFree #1" + given, "unpackFree #2" + given}));
  EXPECT_EQ(read.release(), Trace({"unpackFree null" + given, "unpackFree null" + given}));
}

TEST_F(NestedTables, AreZeroWhereTheyAreAbsent) {
  const Buffer noEntries = harness::withU16(harness::withU16(command(), 14, 0), 16, 0);
  const Buffer shortVtable = harness::withU16(command(), 4, 10);  // ends before both
  for (const Buffer& bytes : {noEntries, shortVtable}) {
    const Unpacked<dbginfo_cmd_key_l2vpn> read(bytes);
    EXPECT_EQ(read.trace, Trace());
    dbginfo_cmd_key_l2vpn expected;
    std::memset(&expected, 0, sizeof expected);
    expected.f2 = 0x2222;
    EXPECT_EQ(harness::hex(harness::bytesOf(read.record)),
              harness::hex(harness::bytesOf(expected)));
  }
}

TEST_F(NestedTables, FailTheMessageWhenTheirWordPassesTheEnd) {
  const Trace noBlocks{"unpackFree null" + given, "unpackFree null" + given};
  const Trace oneBlock{"unpackAlloc size=2" + paraTaken + " -> #1", "unpackFree #1" + given,
                       "unpackFree null" + given};
  // The table is at 18 of 97: an entry of 76 leaves three bytes for the word.
  for (const uint32_t entry : {76U, 79U, 0x8000U, 0xFFFFU}) {
    unpackBoth(harness::withU16(command(), 14, entry), noBlocks);
    unpackBoth(harness::withU16(command(), 16, entry), oneBlock);
  }
  // Words that lead round to the start; nothing is reported of them.
  for (const uint32_t target : {0U, 4U, 18U}) {
    unpackBoth(harness::withU32(command(), 24, target - 24), noBlocks);
    unpackBoth(harness::withU32(command(), 28, target - 28), oneBlock);
  }
}

TEST_F(NestedTables, FailTheMessageWhenTheirTableIsOutside) {
  for (const uint32_t target :
       {94U, 97U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    const std::string text = "Table offset(" + std::to_string(target) + ") is out of range(4 - 97)";
    unpackBoth(harness::withU32(command(), 24, target - 24),
               {reported("dbginfo_para_l2vpn_unpack_non_root", text), "unpackFree null" + given,
                "unpackFree null" + given});
    unpackBoth(harness::withU32(command(), 28, target - 28),
               {"unpackAlloc size=2" + paraTaken + " -> #1",
                reported("dbginfo_key_l2vpn_unpack_non_root", text), "unpackFree #1" + given,
                "unpackFree null" + given});
  }
}

TEST_F(NestedTables, FailTheMessageWhenTheirVtableIsOutside) {
  unpackBoth(
      harness::withU32(command(), 52, 49),
      {reported("dbginfo_para_l2vpn_unpack_non_root", "Vtable offset(52) is out of range(4 - 93)"),
       "unpackFree null" + given, "unpackFree null" + given});
  unpackBoth(
      harness::withU16(command(), 32, 66),
      {reported("dbginfo_para_l2vpn_unpack_non_root", "Vtable Len(66) is out of range(0 - 65)"),
       "unpackFree null" + given, "unpackFree null" + given});
}

TEST_F(NestedTables, FailTheMessageWhenAFieldOfTheirsFails) {
  // f4's byte string, one byte longer than the message.
  unpackBoth(harness::withU32(command(), 90, 4),
             {"unpackAlloc size=2" + paraTaken + " -> #1", "unpackFree #1" + given,
              "unpackFree null" + given});
  // f3's scalar.
  unpackBoth(harness::withU16(command(), 36, 0xFFFF),
             {"unpackFree null" + given, "unpackFree null" + given});
}

TEST_F(NestedTables, ReportARefusedAllocationAsTableReaders) {
  const std::string text = "Malloc unpack data unsuccess,                size(";
  unpackBoth(command(),
             {"unpackAlloc size=2" + paraTaken + " -> null",
              reportedRefusal("dbginfo_para_l2vpn_unpack_non_root", text + "2)"),
              "unpackFree null" + given, "unpackFree null" + given},
             1);
  unpackBoth(
      command(),
      {"unpackAlloc size=2" + paraTaken + " -> #1", "unpackAlloc size=3" + keyTaken + " -> null",
       reportedRefusal("dbginfo_key_l2vpn_unpack_non_root", text + "3)"), "unpackFree #1" + given,
       "unpackFree null" + given},
      2);
}

// A query: parameters with a byte string, then a condition whose array has the given length.
Buffer query(uint32_t arrayLength) {
  return Layout()
      .u32(12)
      .u16(8, 0, 4, 8)
      .u32(8)
      .u32(18, 42)
      .u16(10, 0, 4, 0, 8)
      .u32(10)
      .u32(0x11111111)
      .u32(4, 2)
      .text("ab")
      .u16(10, 0, 0, 4, 8)
      .u32(10)
      .u32(0x22222222)
      .u32(4, arrayLength)
      .fill(128, 0x77);
}

TEST_F(NestedTables, ReleaseTheBlocksOfEarlierTables) {
  const std::string taken = " owner=12 caller=\"l2vpn_cfg_query_comm_param_unpack_non_root\"";
  const std::string released = " owner=12 caller=\"l2vpn_cfg_query_dfx_key_free_unpacked\"";
  Unpacked<l2vpn_cfg_query_dfx_key> read(query(128));
  EXPECT_EQ(read.trace, Trace({"unpackAlloc size=2" + taken + " -> #1"}));
  EXPECT_EQ(read.record.f1.f1, 0x22222222U);
  EXPECT_EQ(read.record.f1.f2[127], 0x77);
  EXPECT_EQ(read.release(), Trace({"unpackFree #1" + released}));

  const Unpacked<l2vpn_cfg_query_dfx_key> failed(query(127));
  EXPECT_EQ(failed.trace,
            Trace({"unpackAlloc size=2" + taken + " -> #1", "unpackFree #1" + released}));
  EXPECT_EQ(failed.record.f0.f0, 0x11111111U);
  EXPECT_EQ(failed.record.f0.f2, nullptr);
  EXPECT_EQ(failed.record.f0.f2_len, 2U);
  EXPECT_EQ(failed.record.f1.f1, 0x22222222U);
  EXPECT_EQ(failed.record.f1.f2[0], 0);
}

}  // namespace
