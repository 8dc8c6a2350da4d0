// The run of items in a query's result: one block for all of them, or none.

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "l2vpn_cfg/schema.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::Layout;
using harness::recorder;
using harness::reported;
using harness::Trace;
using harness::Unpacked;

const std::string taken = " owner=12 caller=\"l2vpn_cfg_query_dfx_rec_unpack_non_root\"";
const std::string given = " owner=12 caller=\"l2vpn_cfg_query_dfx_rec_free_unpacked\"";
const Trace released{"unpackFree null" + given, "unpackFree null" + given};
constexpr const char* itemReader = "l2vpn_cfg_query_dfx_item_unpack_non_root";

// A result without its common part: table at 12, the word at 16, the vector at 20.
Buffer resultWith(const Buffer& vector) {
  return Layout().u32(12).u16(8, 0, 0, 4).u32(8).u32(4).append(vector);
}

// An item that carries f1 alone: a vtable of two slots, then the table; sixteen bytes, the table
// eight bytes in.
Buffer item(uint32_t f1) {
  return Layout().u16(8, 8, 0, 4).u32(8).u32(f1);
}

class Items : public testing::Test {
 protected:
  static void expectFailed(const Buffer& bytes, const Trace& trace, uint32_t count = 0,
                           int failing = 0) {
    const harness::GuardedBuffer guarded(bytes);
    const Unpacked<l2vpn_cfg_query_dfx_rec> failed(guarded.data(),
                                                   static_cast<uint32_t>(bytes.size()), failing);
    EXPECT_EQ(failed.record.f1, nullptr);
    EXPECT_EQ(failed.record.f1_count, count);
    EXPECT_EQ(failed.trace, trace);
    EXPECT_TRUE(recorder().blocks.empty());
  }
};

TEST_F(Items, AreDecodedIntoOneBlock) {
  // Three words, at 24, 28 and 32; the items' tables at 44, 60 and again 44.
  const Buffer bytes =
      resultWith(Layout().u32(3).u32(20, 32, 12).append(item(0x11111111)).append(item(0x22222222)));
  Unpacked<l2vpn_cfg_query_dfx_rec> read(bytes);
  EXPECT_EQ(read.trace, Trace({"unpackAlloc size=49716" + taken + " -> #1"}));
  ASSERT_EQ(read.record.f1_count, 3U);
  ASSERT_NE(read.record.f1, nullptr);
  const std::array<uint32_t, 3> f1{0x11111111, 0x22222222, 0x11111111};
  for (size_t index = 0; index < f1.size(); ++index) {
    const auto expected = std::make_unique<l2vpn_cfg_query_dfx_item>();
    expected->f1 = f1[index];
    EXPECT_EQ(harness::bytesOf(read.record.f1[index]), harness::bytesOf(*expected))
        << "item " << index << " is cleared beside its f1";
  }
  EXPECT_EQ(read.release(), Trace({"unpackFree null" + given, "unpackFree #1" + given}));
  EXPECT_EQ(read.record.f1, nullptr);
  EXPECT_EQ(read.record.f1_count, 3U);
  EXPECT_EQ(read.release(), released);
}

TEST_F(Items, TakeNoMemoryWhenThereAreNone) {
  for (const Buffer& bytes :
       {resultWith(Layout().u32(0)), harness::withU16(resultWith(Layout().u32(9)), 10, 0),
        harness::withU16(resultWith(Layout().u32(9)), 4, 6)}) {
    const Unpacked<l2vpn_cfg_query_dfx_rec> read(bytes);
    EXPECT_EQ(read.record.f1, nullptr);
    EXPECT_EQ(read.record.f1_count, 0U);
    EXPECT_EQ(read.trace, Trace());
  }
}

TEST_F(Items, FailWhenTheirVectorIsOutside) {
  const Buffer bytes = resultWith(Layout().u32(0));
  for (const uint32_t word :
       {5U, 8U, 9U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU, 0U - 16U}) {
    expectFailed(harness::withU32(bytes, 16, word), released);
  }
  for (const uint32_t entry : {9U, 12U, 0xFFFFU}) {
    expectFailed(harness::withU16(bytes, 10, entry), released);
  }
  for (const size_t size : {23U, 20U, 19U, 16U}) {
    expectFailed(harness::firstBytes(bytes, size), released);
  }
}

TEST_F(Items, FailWhenTheirWordsPassTheEnd) {
  // Two words follow. One more than the largest count would end where they begin, modulo 32 bits.
  for (const uint32_t count :
       {3U, 0xFFFFU, 0x10000U, harness::largestVectorCount, harness::largestVectorCount + 1,
        harness::largestVectorCount + 2, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    expectFailed(resultWith(Layout().u32(count).u32(8, 8)), released);
  }
}

TEST_F(Items, FailSilentlyWhenTheirBlockPasses32Bits) {
  constexpr uint32_t count = 259171;  // of 16572 bytes: 2^32 and a little
  expectFailed(resultWith(Layout().u32(count).zeros(size_t{4} * count)), released);
}

TEST_F(Items, TakeOneBlockOfUpTo32Bits) {
  constexpr uint32_t count = 259170;  // of 16572 bytes: 4294965240
  expectFailed(resultWith(Layout().u32(count).zeros(size_t{4} * count)),
               {"unpackAlloc size=4294965240" + taken + " -> null",
                harness::reportedRefusal("l2vpn_cfg_query_dfx_rec_unpack_non_root",
                                         "Malloc unpack data unsuccess,                "
                                         "size(4294965240)"),
                released[0], released[1]},
               0, 1);
}

TEST_F(Items, AreReleasedWhenOneFails) {
  // The second word leads outside, before itself, to a table whose f1 passes the end.
  const Buffer good = resultWith(Layout().u32(2).u32(16, 12).append(item(0x11111111)));
  const uint32_t size = static_cast<uint32_t>(good.size());
  ASSERT_EQ(size, 48U);
  const std::string outside = "Table offset(45) is out of range(4 - 48)";
  const std::string block = "unpackAlloc size=33144" + taken + " -> #1";
  expectFailed(
      harness::withU32(good, 28, 45 - 28),
      {block, reported(itemReader, outside), "unpackFree null" + given, "unpackFree #1" + given},
      2);
  expectFailed(harness::withU32(good, 28, 4U - 28U),
               {block, "unpackFree null" + given, "unpackFree #1" + given}, 2);
  expectFailed(harness::withU16(good, 38, 5),
               {block, "unpackFree null" + given, "unpackFree #1" + given}, 2);
}

TEST_F(Items, AreReleasedAfterTheCommonParts) {
  // A common part with a byte string (table at 38), and a vector whose only word leads outside.
  const Buffer bytes = Layout()
                           .u32(12)
                           .u16(8, 0, 4, 8)
                           .u32(8)
                           .u32(22, 32)
                           .u16(14, 0, 0, 0, 0, 4, 0)
                           .u32(14)
                           .u32(4, 2)
                           .text("ab")
                           .u32(1, 0xFFFF);
  ASSERT_EQ(bytes.size(), 60U);
  expectFailed(bytes,
               {"unpackAlloc size=2 owner=12 caller=\"l2vpn_cfg_query_comm_rec_unpack_non_root\""
                " -> #1",
                "unpackAlloc size=16572" + taken + " -> #2",
                reported(itemReader, "Table offset(65591) is out of range(4 - 60)"),
                "unpackFree #1" + given, "unpackFree #2" + given},
               1);
}

}  // namespace
