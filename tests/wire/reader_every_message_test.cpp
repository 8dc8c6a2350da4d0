// What the reader does with a bad head, for every message: what it logs, under which name, and what
// it leaves in the record.

#include <gtest/gtest.h>

#include "oracle/messages/description.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Layout;
using harness::Operations;
using harness::recorder;
using harness::reported;
using harness::Trace;

// Root at 8 | vtable without slots | table: back to its vtable. Any message, all zero.
const Buffer emptyTable = Layout().u32(8).u16(4, 4).u32(4);

class EveryReader : public testing::TestWithParam<Operations> {
 protected:
  const std::string name_{GetParam().name};
  const uint32_t size_ = GetParam().schema().size;

  // Messages that verify their root table themselves leave the record alone when the head is bad.
  // The others hand a cleared record to their table reader.
  bool verifiesItsRoot() const { return oracle::descriptionOf(name_).ownRoot; }

  // One call on a record full of marks; the bytes end where nothing may be read.
  void unpack(const Buffer& bytes) {
    const harness::GuardedBuffer guarded(bytes);
    unpack(guarded.data(), static_cast<uint32_t>(bytes.size()));
  }
  void unpack(const uint8_t* data, uint32_t length) {
    harness::resetRecorder();
    record_ = harness::marks(size_);
    EXPECT_EQ(GetParam().unpack(data, length, record_.data()), size_);
    trace_ = harness::takeTrace();
  }

  void expectUntouched() const { EXPECT_EQ(hex(record_), hex(harness::marks(size_))); }
  void expectCleared() const { EXPECT_EQ(hex(record_), hex(Buffer(size_, 0))); }

  void expectBadHead(const std::string& text) const {
    if (verifiesItsRoot()) {
      expectUntouched();
      EXPECT_EQ(trace_, Trace({reported(name_ + "_unpack", text)}));
      return;
    }
    expectCleared();
    Trace expected{reported(name_ + "_unpack_non_root", text)};
    const std::string release = "unpackFree null owner=12 caller=\"" + name_ + "_free_unpacked\"";
    expected.insert(expected.end(), oracle::outOfLineParts(oracle::descriptionOf(name_)), release);
    EXPECT_EQ(trace_, expected);
  }

  Buffer record_;
  Trace trace_;
};

TEST_P(EveryReader, RefusesANullBuffer) {
  for (const uint32_t length : {0U, 4U, 0x7FFFFFFFU}) {
    unpack(nullptr, length);
    EXPECT_EQ(trace_,
              Trace({reported(name_ + "_unpack",
                              "Param invalid(null, " + std::to_string(length) + ", nonNull)")}));
    expectUntouched();
  }
}

TEST_P(EveryReader, RefusesANullRecord) {
  for (const uint8_t* const data : {emptyTable.data(), static_cast<const uint8_t*>(nullptr)}) {
    harness::resetRecorder();
    EXPECT_EQ(GetParam().unpack(data, 12, nullptr), size_);
    EXPECT_EQ(harness::takeTrace(),
              Trace({reported(name_ + "_unpack", std::string("Param invalid(") +
                                                     (data == nullptr ? "null" : "nonNull") +
                                                     ", 12, null)")}));
  }
}

TEST_P(EveryReader, RefusesALengthBelowFourAsASignedNumber) {
  const harness::GuardedBuffer nothing({});
  for (const auto& [length, text] :
       std::initializer_list<std::pair<uint32_t, const char*>>{{0, "0"},
                                                               {1, "1"},
                                                               {3, "3"},
                                                               {0x80000000, "-2147483648"},
                                                               {0x80000001, "-2147483647"},
                                                               {0xFFFFFFFF, "-1"}}) {
    unpack(nothing.data(), length);
    EXPECT_EQ(trace_, Trace({reported(name_ + "_unpack", std::string("Param invalid(nonNull, ") +
                                                             text + ", nonNull)")}));
    expectUntouched();
  }
}

TEST_P(EveryReader, RefusesABufferOfARootAlone) {
  unpack(Layout().u32(4));
  expectBadHead("Table offset(4) is out of range(4 - 4)");
}

TEST_P(EveryReader, RefusesATableOutsideTheBuffer) {
  for (const uint32_t root : {0U, 1U, 3U, 9U, 12U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U,
                              0xFFFFFFFCU, 0xFFFFFFFFU}) {
    unpack(harness::withU32(emptyTable, 0, root));
    expectBadHead("Table offset(" + std::to_string(root) + ") is out of range(4 - 12)");
  }
}

TEST_P(EveryReader, ComparesTheRootWithTheWholeLength) {
  // Of a buffer that is said to be larger than any, only the root word is looked at.
  const harness::GuardedBuffer rootAlone(Buffer(Layout().u32(0x7FFFFFFC)));
  unpack(rootAlone.data(), 0x7FFFFFFF);
  expectBadHead("Table offset(2147483644) is out of range(4 - 2147483647)");
}

TEST_P(EveryReader, RefusesAVtableOutsideTheBuffer) {
  // From the table at 8: to 3, 0, before the buffer, past the last word, far behind.
  for (const uint32_t distance : {5U, 8U, 9U, 0xFFFFFFFFU, 0xFFFFU, 0x10000U, 0x7FFFFFFFU,
                                  0x80000000U, static_cast<uint32_t>(-68)}) {
    unpack(harness::withU32(emptyTable, 8, distance));
    expectBadHead("Vtable offset(8) is out of range(4 - 8)");
  }
}

TEST_P(EveryReader, RefusesAVtablePastTheEnd) {
  for (const uint32_t length : {9U, 0x7FFFU, 0x8000U, 0xFFFFU}) {
    unpack(harness::withU16(emptyTable, 4, length));
    expectBadHead("Vtable Len(" + std::to_string(length) + ") is out of range(0 - 8)");
  }
}

TEST_P(EveryReader, AcceptsAVtableThatEndsWithTheBuffer) {
  // Behind the table: four bytes, or one more than there are.
  const Buffer behind = Layout().u32(4, static_cast<uint32_t>(-4)).u16(4, 4);
  unpack(behind);
  EXPECT_EQ(trace_, Trace());
  expectCleared();
  unpack(harness::withU16(behind, 8, 5));
  expectBadHead("Vtable Len(5) is out of range(0 - 4)");
}

TEST_P(EveryReader, ClearsTheWholeRecordPaddingIncluded) {
  unpack(emptyTable);
  EXPECT_EQ(trace_, Trace());
  expectCleared();
}

TEST_P(EveryReader, ReadsATooShortVtableAsEmpty) {
  for (const uint32_t length : {0U, 1U, 3U, 5U}) {
    unpack(harness::withU16(emptyTable, 4, length));
    EXPECT_EQ(trace_, Trace());
    expectCleared();
  }
}

TEST_P(EveryReader, ReportsAsItsOwnModule) {
  unpack(nullptr, 0);
  unpack(harness::withU32(emptyTable, 0, 0));
  ASSERT_EQ(recorder().logOrigins.size(), 1U);
  const void* const env = recorder().logOrigins[0].first;
  EXPECT_EQ(env, &harness::modulesOf(GetParam()).receive->env);
  const char* identity = nullptr;
  std::memcpy(&identity, env, sizeof identity);
  EXPECT_STREQ(identity, "VELTA");
}

INSTANTIATE_TEST_SUITE_P(All, EveryReader, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
