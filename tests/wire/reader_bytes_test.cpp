// Byte strings that the reader hands out in blocks of their own: where they may lie, how long they
// may be, who is asked for memory and under which name.

#include <gtest/gtest.h>

#include "l2vpn_cfg/schema.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::Layout;
using harness::recorder;
using harness::Trace;
using harness::Unpacked;

// A message with one byte string: one that decodes its root itself, one that leaves it to its table
// reader.
struct KeyString {
  using Record = dbginfo_key_l2vpn;
  static constexpr uint32_t slots = 4;
  static constexpr const char* caller = "dbginfo_key_l2vpn_unpack";
  static constexpr const char* release = "dbginfo_key_l2vpn_free_unpacked";
  static constexpr const char* refusal = "Malloc unpack data unsuccess, size(";
  static uint8_t* text(const Record& record) { return record.f3; }
  static uint32_t length(const Record& record) { return record.f3_len; }
};

struct ParaString {
  using Record = dbginfo_para_l2vpn;
  static constexpr uint32_t slots = 8;
  static constexpr const char* caller = "dbginfo_para_l2vpn_unpack_non_root";
  static constexpr const char* release = "dbginfo_para_l2vpn_free_unpacked";
  static constexpr const char* refusal = "Malloc unpack data unsuccess,                size(";
  static uint8_t* text(const Record& record) { return record.f7; }
  static uint32_t length(const Record& record) { return record.f7_len; }
};

template <typename Message>
class ByteString : public testing::Test {
 protected:
  using Record = typename Message::Record;

  // A 16-bit 0x1111 in slot 0 and the byte string's word in the last slot, then whatever follows.
  static Buffer message(uint32_t word, const Buffer& rest) {
    const uint32_t vtable = 4 + 2 * Message::slots;
    return Layout()
        .u32(4 + vtable)
        .u16(vtable, 0, 4)
        .zeros(2 * (Message::slots - 2))
        .u16(6)
        .u32(vtable)
        .u16(0x1111)
        .u32(word)
        .append(rest);
  }
  // Where the word stands in it.
  static constexpr uint32_t wordAt = 4 + (4 + 2 * Message::slots) + 4 + 2;

  static std::string quoted(const char* caller) {
    return std::string(" owner=12 caller=\"") + caller + "\"";
  }
  static std::string allocated(uint64_t size) {
    return "unpackAlloc size=" + std::to_string(size) + quoted(Message::caller) + " -> #1";
  }

  static void expectRead(const Buffer& bytes, const std::string& text) {
    Unpacked<Record> read(bytes);
    EXPECT_EQ(read.record.f0, 0x1111);
    ASSERT_EQ(Message::length(read.record), text.size());
    EXPECT_EQ(read.trace, Trace({allocated(text.size())}));
    ASSERT_NE(Message::text(read.record), nullptr);
    const uint8_t* const contents = Message::text(read.record);
    EXPECT_EQ(std::string(contents, contents + text.size()), text);
    EXPECT_EQ(read.release(), Trace({"unpackFree #1" + quoted(Message::release)}));
    EXPECT_EQ(Message::text(read.record), nullptr);
    EXPECT_EQ(Message::length(read.record), text.size()) << "the length stays";
    EXPECT_TRUE(recorder().blocks.empty());
  }

  static void expectFailed(const Buffer& bytes, const std::string& why) {
    const harness::GuardedBuffer guarded(bytes);
    const Unpacked<Record> failed(guarded.data(), static_cast<uint32_t>(bytes.size()));
    EXPECT_EQ(failed.record.f0, 0x1111) << why;
    EXPECT_EQ(Message::text(failed.record), nullptr) << why;
    EXPECT_EQ(Message::length(failed.record), 0U) << why;
    EXPECT_EQ(failed.trace, Trace({"unpackFree null" + quoted(Message::release)})) << why;
  }
};

using Messages = testing::Types<KeyString, ParaString>;
TYPED_TEST_SUITE(ByteString, Messages);

TYPED_TEST(ByteString, IsCopiedToABlockOfItsExactLength) {
  this->expectRead(this->message(4, Layout().u32(3).text("abc")), "abc");
  this->expectRead(this->message(4, Layout().u32(1).text("a")), "a");
}

TYPED_TEST(ByteString, MayLieAwayFromItsWord) {
  this->expectRead(this->message(9, Layout().fill(5, 0xFF).u32(3).text("abc").text("beyond")),
                   "abc");
  for (const uint32_t distance : {0xFFFFU, 0x10000U}) {
    this->expectRead(this->message(distance, Layout().zeros(distance - 4).u32(2).text("ab")), "ab");
  }
}

TYPED_TEST(ByteString, MayBeLongerThanSixteenBitsCount) {
  for (const uint32_t length : {0xFFFFU, 0x10000U, 0x10001U}) {
    this->expectRead(this->message(4, Layout().u32(length).fill(length, 'x')),
                     std::string(length, 'x'));
  }
}

TYPED_TEST(ByteString, OfLengthZeroIsNullAndTakesNoMemory) {
  for (const Buffer& bytes : {this->message(4, Layout().u32(0)),
                              // A word of 0 leads to itself, and so to a length of 0.
                              this->message(0, {})}) {
    const Unpacked<typename TypeParam::Record> read(bytes);
    EXPECT_EQ(read.record.f0, 0x1111);
    EXPECT_EQ(TypeParam::text(read.record), nullptr);
    EXPECT_EQ(TypeParam::length(read.record), 0U);
    EXPECT_EQ(read.trace, Trace());
  }
}

TYPED_TEST(ByteString, FailsWhenItsWordPassesTheEnd) {
  const Buffer whole = this->message(4, {});
  for (size_t missing = 1; missing <= 4; ++missing) {
    this->expectFailed(harness::firstBytes(whole, whole.size() - missing),
                       std::to_string(missing) + " bytes of the word missing");
  }
}

TYPED_TEST(ByteString, FailsWhenItsTargetLiesPastTheEnd) {
  // Eight bytes from the word on, so a target of 4 is the last that holds a length.
  for (const uint32_t word : {5U, 7U, 8U, 9U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U}) {
    this->expectFailed(this->message(word, Layout().u32(0)), "word " + std::to_string(word));
  }
}

TYPED_TEST(ByteString, FailsWhenItsTargetWraps) {
  // To 0, to the buffer's start, to the byte before the word.
  for (const uint32_t target : {0U, 4U, this->wordAt - 1}) {
    this->expectFailed(this->message(target - this->wordAt, Layout().u32(0).zeros(64)),
                       "target " + std::to_string(target));
  }
}

TYPED_TEST(ByteString, FailsWhenItsContentsPassTheEnd) {
  // Three bytes follow the length. The last two lengths wrap the contents' end to 0 and to 1.
  const uint32_t contents = this->wordAt + 8;
  for (const uint32_t length : {4U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU,
                                0U - contents, 1U - contents}) {
    this->expectFailed(this->message(4, Layout().u32(length).text("abc")),
                       "length " + std::to_string(length));
  }
}

TYPED_TEST(ByteString, FailsWhenItsLengthPassesTheEnd) {
  const Buffer whole = this->message(4, Layout().u32(0));
  for (size_t missing = 1; missing <= 4; ++missing) {
    this->expectFailed(harness::firstBytes(whole, whole.size() - missing),
                       std::to_string(missing) + " bytes of the length missing");
  }
}

TYPED_TEST(ByteString, FailsWithAReportWhenThereIsNoMemory) {
  const Buffer bytes = this->message(4, Layout().u32(3).text("abc"));
  Unpacked<typename TypeParam::Record> refused(bytes, 1);
  EXPECT_EQ(
      refused.trace,
      Trace({"unpackAlloc size=3" + this->quoted(TypeParam::caller) + " -> null",
             harness::reportedRefusal(TypeParam::caller, std::string(TypeParam::refusal) + "3)"),
             "unpackFree null" + this->quoted(TypeParam::release)}));
  EXPECT_EQ(refused.record.f0, 0x1111) << "scalars before the failure stay";
  EXPECT_EQ(TypeParam::text(refused.record), nullptr);
  EXPECT_EQ(TypeParam::length(refused.record), 3U) << "the length had been read";
}

// Two byte strings: f12 and f14.
Buffer endata(uint32_t secondWord) {
  return Layout()
      .u32(38)
      .u16(34, 0)
      .zeros(24)
      .u16(4, 0, 8)
      .u32(34)
      .u32(8, secondWord)
      .u32(3)
      .text("abc");
}

TEST(Reader, GivesEveryByteStringABlockOfItsOwn) {
  // Both words lead to the same contents.
  Unpacked<dbginfo_endata_l2vpn> both(endata(4));
  const std::string caller = " owner=12 caller=\"dbginfo_endata_l2vpn_unpack\"";
  EXPECT_EQ(both.trace, Trace({"unpackAlloc size=3" + caller + " -> #1",
                               "unpackAlloc size=3" + caller + " -> #2"}));
  EXPECT_NE(both.record.f12, both.record.f14);
  const std::string release = " owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\"";
  EXPECT_EQ(both.release(), Trace({"unpackFree #1" + release, "unpackFree #2" + release}));
}

TEST(Reader, ReleasesItsBlocksOnFailure) {
  const std::string caller = " owner=12 caller=\"dbginfo_endata_l2vpn_unpack\"";
  const std::string release = " owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\"";
  const Unpacked<dbginfo_endata_l2vpn> outside(endata(0xFFFF));
  EXPECT_EQ(outside.trace, Trace({"unpackAlloc size=3" + caller + " -> #1",
                                  "unpackFree #1" + release, "unpackFree null" + release}));
  EXPECT_EQ(outside.record.f12, nullptr);
  EXPECT_EQ(outside.record.f12_len, 3U);
  EXPECT_EQ(outside.record.f14, nullptr);
  EXPECT_EQ(outside.record.f14_len, 0U);

  const Unpacked<dbginfo_endata_l2vpn> refused(endata(4), 2);
  EXPECT_EQ(refused.trace, Trace({"unpackAlloc size=3" + caller + " -> #1",
                                  "unpackAlloc size=3" + caller + " -> null",
                                  harness::reportedRefusal("dbginfo_endata_l2vpn_unpack",
                                                           "Malloc unpack data unsuccess, size(3)"),
                                  "unpackFree #1" + release, "unpackFree null" + release}));
  EXPECT_EQ(refused.record.f12, nullptr);
  EXPECT_EQ(refused.record.f14, nullptr);
  EXPECT_TRUE(recorder().blocks.empty());
}

}  // namespace
