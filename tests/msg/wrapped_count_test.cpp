// Counts whose batch size wraps 32 bits: the library releases the block of the wrapped size. It
// does not read the records, which are in inaccessible memory.

#include <gtest/gtest.h>

#include "oracle/operations/writer.hpp"
#include "support/bytes.hpp"
#include "support/guarded_buffer.hpp"

namespace {

using harness::Operations;
using harness::recorder;
using harness::Trace;

class WrappedCount : public testing::TestWithParam<Operations> {
 protected:
  const std::string name_{GetParam().name};
  const uint32_t fixed_ = oracle::fixedLength(oracle::descriptionOf(name_));
  // Past the end of an empty buffer.
  const harness::GuardedBuffer nothing_{{}};

  void expectGivenBack(uint32_t count, uint32_t wrapped) {
    const std::string operation = " owner=25088 caller=\"" + name_ + "__sendbatch\"";
    const Trace expected{"memAlloc size=" + std::to_string(wrapped) + operation + " -> #1",
                         "memFree #1" + operation};
    for (const uint64_t extra : {0U, 1U}) {
      harness::resetRecorder();
      EXPECT_EQ(GetParam().sendBatch(1, nothing_.data(), count, extra), 0xFFFFFFFF);
      EXPECT_EQ(harness::takeTrace(), expected) << count << " records";
      harness::resetRecorder();
      EXPECT_EQ(GetParam().sendToMsg(1, nothing_.data(), count, extra), 0xFFFFFFFF);
      EXPECT_EQ(harness::takeTrace(), expected) << count << " records";
    }
    harness::resetRecorder();
    EXPECT_EQ(GetParam().sendMsg(1, nothing_.data(), count), 0xFFFFFFFF);
    EXPECT_EQ(harness::takeTrace(), expected) << count << " records";
    EXPECT_TRUE(recorder().blocks.empty());
    EXPECT_TRUE(recorder().sent.empty());
  }

  void expectRefused(uint32_t count, uint64_t size) {
    harness::resetRecorder();
    recorder().everyAllocationFails = true;
    EXPECT_EQ(GetParam().sendBatch(1, nothing_.data(), count, 0), 0xFFFFFFFF);
    EXPECT_EQ(harness::takeTrace(),
              Trace({"memAlloc size=" + std::to_string(size) + " owner=25088 caller=\"" + name_ +
                     "__sendbatch\" -> null"}))
        << count << " records";
  }
};

TEST_P(WrappedCount, FailsAfterTheWrappedAllocation) {
  if (fixed_ == 0) {
    expectGivenBack(0x0FFFF000, 0);
    expectGivenBack(0x0FFFF001, 16);
    expectGivenBack(0x10000000, 0x10000);
    expectGivenBack(0x10000002, 0x10020);
    expectGivenBack(0xF0000001, 0x10010);
    return;
  }
  // Images and descriptors take a multiple of eight bytes per record.
  const uint32_t each = fixed_ + 16;
  expectGivenBack(0x20000000, 0);
  expectGivenBack(0x20000001, each);
  expectGivenBack(0xE0000003, 3 * each);
  // The first count that wraps. The images alone would not wrap.
  const auto first = static_cast<uint32_t>(0x100000000 / each + 1);
  ASSERT_LT(uint64_t{first} * fixed_, uint64_t{0x100000000});
  expectGivenBack(first, first * each);
}

TEST_P(WrappedCount, DoesNotOccurBelow32Bits) {
  if (fixed_ == 0) {
    expectRefused(0x0FFFEFFF, 0xFFFFFFF0);
    expectRefused(0xFFFFFFFF, 0xFFF0);
    return;
  }
  const uint32_t each = fixed_ + 16;
  const auto largest = static_cast<uint32_t>(0xFFFFFFFF / each);
  expectRefused(largest, uint64_t{largest} * each);
  expectRefused(0xFFFFFFFF, 0U - each);
}

INSTANTIATE_TEST_SUITE_P(All, WrappedCount, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
