// Buffers of the largest length there is. Almost all of their pages are never touched.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "l2vpn_cfg/schema.hpp"
#include "support/bytes.hpp"

namespace {

using harness::Buffer;
using harness::Layout;
using harness::reported;
using harness::Trace;
using harness::Unpacked;

constexpr uint32_t largest = 0x7FFFFFFF;

// Zeros, with some places written. Pages that are only read share one page of zeros.
class LargeBuffer : public testing::Test {
 protected:
  LargeBuffer()
      : map_(mmap(nullptr, size_t{largest} + 1, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
  ~LargeBuffer() override { munmap(map_, size_t{largest} + 1); }
  void SetUp() override { ASSERT_NE(map_, MAP_FAILED); }

  void put(size_t at, const Buffer& bytes) {
    std::memcpy(static_cast<uint8_t*>(map_) + at, bytes.data(), bytes.size());
  }
  const uint8_t* data() const { return static_cast<const uint8_t*>(map_); }

  // A key whose table is at 16 and whose byte string's word, at 20, holds `word`.
  void putKey(uint32_t word) { put(0, Layout().u32(16).u16(12, 0, 0, 0, 0, 4).u32(12).u32(word)); }
  static Trace refused(const std::string& size) {
    return {"unpackAlloc size=" + size + " owner=12 caller=\"dbginfo_key_l2vpn_unpack\" -> null",
            harness::reportedRefusal("dbginfo_key_l2vpn_unpack",
                                     "Malloc unpack data unsuccess, size(" + size + ")"),
            "unpackFree null owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""};
  }
  static Trace failed() {
    return {"unpackFree null owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""};
  }

 private:
  void* map_;
};

TEST_F(LargeBuffer, IsRefusedWhenItsLengthIsNegative) {
  putKey(4);
  const Unpacked<dbginfo_key_l2vpn> key(data(), largest + 1);
  EXPECT_EQ(key.trace, Trace({reported("dbginfo_key_l2vpn_unpack",
                                       "Param invalid(nonNull, -2147483648, nonNull)")}));
}

TEST_F(LargeBuffer, MayHoldItsTableAtTheVeryEnd) {
  put(0, Layout().u32(largest - 4).u16(6, 4, 4));
  put(largest - 4, Layout().u32(largest - 8));
  // The field would begin where the buffer ends.
  EXPECT_EQ(Unpacked<dbginfo_key_l2vpn>(data(), largest).trace, failed());
  put(8, Layout().u16(2));
  const Unpacked<dbginfo_key_l2vpn> key(data(), largest);
  EXPECT_EQ(key.record.f0, 0x7FFF) << "the upper half of the table's first word";
  EXPECT_EQ(key.trace, Trace());
}

TEST_F(LargeBuffer, MayHoldItsVtableAtTheVeryEnd) {
  put(0, Layout().u32(4, 0U - (largest - 10)).u16(0x1111));
  put(largest - 6, Layout().u16(6, 0, 4));
  EXPECT_EQ(Unpacked<dbginfo_key_l2vpn>(data(), largest).record.f0, 0x1111);
  put(largest - 6, Layout().u16(7));
  const Unpacked<dbginfo_key_l2vpn> key(data(), largest);
  EXPECT_EQ(key.trace,
            Trace({reported("dbginfo_key_l2vpn_unpack", "Vtable Len(7) is out of range(0 - 6)")}));
}

TEST_F(LargeBuffer, AsksForTheWholeOfAByteStringThatFillsIt) {
  putKey(4);
  put(24, Layout().u32(largest - 28));
  const Unpacked<dbginfo_key_l2vpn> key(data(), largest, 1);
  EXPECT_EQ(key.trace, refused("2147483619"));
  EXPECT_EQ(key.record.f3, nullptr);
  EXPECT_EQ(key.record.f3_len, largest - 28);
}

TEST_F(LargeBuffer, FailsOnAByteStringOneByteLongerThanItself) {
  putKey(4);
  for (const uint32_t length : {largest - 27, largest, largest + 1, 0xFFFFFFFFU}) {
    put(24, Layout().u32(length));
    const Unpacked<dbginfo_key_l2vpn> key(data(), largest);
    EXPECT_EQ(key.trace, failed()) << "length " << length;
    EXPECT_EQ(key.record.f3_len, 0U);
  }
}

TEST_F(LargeBuffer, MayHoldAByteStringAnywhere) {
  for (const uint32_t word : {0xFFFFU, 0x10000U, 0x40000000U, largest - 20 - 5}) {
    putKey(word);
    put(size_t{20} + word, Layout().u32(1).u8('z'));
    Unpacked<dbginfo_key_l2vpn> key(data(), largest);
    ASSERT_EQ(key.record.f3_len, 1U) << "word " << word;
    EXPECT_EQ(*key.record.f3, 'z');
    key.release();
  }
}

TEST_F(LargeBuffer, HoldsNoByteStringWhoseLengthPassesItsEnd) {
  // The last is 2^31 on from the word, inside 32 bits and outside the buffer.
  for (const uint32_t word : {largest - 20 - 3, largest - 20, largest, 0x80000000U}) {
    putKey(word);
    EXPECT_EQ(Unpacked<dbginfo_key_l2vpn>(data(), largest).trace, failed()) << "word " << word;
  }
}

}  // namespace
