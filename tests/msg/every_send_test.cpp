// The four send operations of every message: their middleware calls, their allocations with number
// and name, the descriptors, the results.

#include <gtest/gtest.h>

#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"
#include "support/operations.hpp"

namespace {

using harness::Buffer;
using harness::failure;
using harness::hex;
using harness::Operations;
using harness::recorder;
using harness::SentTable;
using harness::Trace;

constexpr uint32_t destination = 0xFEDCBA98;
const std::string toDestination = " destination=4275878552";

class EverySend : public testing::TestWithParam<Operations> {
 protected:
  EverySend() {
    std::mt19937_64 random(5);
    for (int index = 0; index < 3; ++index) {
      values_.push_back(oracle::randomValue(message(), random, oracle::Density::Sparse));
      // Small enough for every batch.
      if (message().name == "l2vpn_cfg_query_dfx_rec") {
        values_.back()[1] = oracle::zeroField(message().fields[1]);
      }
    }
    records_ = std::make_unique<oracle::RecordImage>(message(), values_);
    harness::resetRecorder();
  }

  const std::string name_{GetParam().name};
  const uint32_t fixed_ = oracle::fixedLength(message());

  const oracle::Description& message() const { return oracle::descriptionOf(name_); }
  bool isFixed() const { return fixed_ != 0; }
  const void* records() const { return records_->data(); }
  uint32_t sizeOf(size_t index) const {
    return isFixed() ? fixed_
                     : static_cast<uint32_t>(oracle::compactSize(message(), values_[index]));
  }

  std::string taken(uint64_t size, const std::string& operation, const char* block) const {
    return "memAlloc size=" + std::to_string(size) + " owner=25088 caller=\"" + name_ + operation +
           "\" -> " + block;
  }
  std::string given(const std::string& operation) const {
    return "memFree #1 owner=25088 caller=\"" + name_ + operation + "\"";
  }
  static std::string called(uint32_t count, uint64_t extra = 0) {
    return extra == 0 ? "MESH_SendMsg" + toDestination + " count=" + std::to_string(count)
                      : "MESH_SendToMsg" + toDestination + " count=" + std::to_string(count) +
                            " extra=" + std::to_string(extra);
  }

  // One middleware call, with one allocation around it, except for a single image of at most 1 KiB.
  Trace single(uint64_t extra = 0) const {
    if (isFixed() && fixed_ <= 1024) {
      return {called(1, extra)};
    }
    return {taken(sizeOf(0), "__sendsingle", "#1"), called(1, extra), given("__sendsingle")};
  }
  uint64_t batchSize(uint32_t count) const {
    return isFixed() ? uint64_t{count} * (fixed_ + 16) : 16 * uint64_t{count} + 0x10000;
  }
  Trace batch(uint32_t count, uint64_t extra = 0) const {
    return {taken(batchSize(count), "__sendbatch", "#1"), called(count, extra),
            given("__sendbatch")};
  }

  // All tables, complete and in order.
  void expectSent(size_t count) const {
    ASSERT_EQ(recorder().sent.size(), count);
    uint64_t offset = 0;
    for (size_t index = 0; index < count; ++index) {
      const SentTable& table = recorder().sent[index];
      EXPECT_EQ(table.id, message().id);
      EXPECT_EQ(table.address - recorder().sent[0].address, offset);
      EXPECT_EQ(hex(table.bytes), hex(encoded(index)));
      offset += sizeOf(index);
    }
  }

  void expectCalls(const Trace& trace) const {
    EXPECT_EQ(harness::takeTrace(), trace);
    EXPECT_TRUE(recorder().blocks.empty());
  }

 private:
  // Unwritten bytes keep the fill of the recording host.
  Buffer encoded(size_t index) const {
    if (isFixed()) {
      return oracle::fixedImage(message(), values_[index], false);
    }
    Buffer bytes;
    for (const auto& byte : oracle::compactBytes(message(), values_[index], false)) {
      bytes.push_back(byte.value_or(0xC7));
    }
    return bytes;
  }

  std::vector<oracle::Value> values_;
  std::unique_ptr<oracle::RecordImage> records_;
};

// Some of these have a low half of 0.
constexpr std::initializer_list<uint64_t> extras{1, 0xFFFFFFFF, 0x100000000, 0x8000000000000000,
                                                 0xFFFFFFFFFFFFFFFF};

TEST_P(EverySend, SendsOneRecord) {
  EXPECT_EQ(GetParam().sendSingle(destination, records(), harness::unused, 0), 0U);
  expectCalls(single());
  expectSent(1);
}

TEST_P(EverySend, SendsOneRecordWithExtra) {
  for (const uint64_t extra : extras) {
    harness::resetRecorder();
    EXPECT_EQ(GetParam().sendSingle(destination, records(), harness::unused, extra), 0U);
    expectCalls(single(extra));
    expectSent(1);
  }
}

TEST_P(EverySend, SendsABatch) {
  for (const uint32_t count : {1U, 2U, 3U}) {
    harness::resetRecorder();
    EXPECT_EQ(GetParam().sendBatch(destination, records(), count, 0), 0U);
    expectCalls(batch(count));
    expectSent(count);
  }
}

TEST_P(EverySend, SendsABatchWithExtra) {
  for (const uint64_t extra : extras) {
    harness::resetRecorder();
    EXPECT_EQ(GetParam().sendBatch(destination, records(), 2, extra), 0U);
    expectCalls(batch(2, extra));
    expectSent(2);
  }
}

TEST_P(EverySend, SendsABatchOfNone) {
  for (const void* const none : {records(), static_cast<const void*>(nullptr)}) {
    harness::resetRecorder();
    recorder().middlewareResult = 9;
    EXPECT_EQ(GetParam().sendBatch(destination, none, 0, 0), 9U);
    expectCalls(batch(0));
    EXPECT_EQ(GetParam().sendBatch(destination, none, 0, 7), 9U);
    EXPECT_EQ(harness::takeTrace()[1], called(0, 7));
    expectSent(0);
  }
}

TEST_P(EverySend, ChoosesSingleOrBatchByCount) {
  for (const uint64_t extra : {uint64_t{0}, uint64_t{0x100000000}}) {
    harness::resetRecorder();
    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 0, extra), failure);
    expectCalls({});
    EXPECT_EQ(GetParam().sendToMsg(destination, nullptr, 0, extra), failure);
    expectCalls({});

    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 1, extra), 0U);
    expectCalls(single(extra));
    expectSent(1);

    harness::resetRecorder();
    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 3, extra), 0U);
    expectCalls(batch(3, extra));
    expectSent(3);
  }
  harness::resetRecorder();
  EXPECT_EQ(GetParam().sendMsg(destination, records(), 0), failure);
  EXPECT_EQ(GetParam().sendMsg(destination, nullptr, 0), failure);
  expectCalls({});
  EXPECT_EQ(GetParam().sendMsg(destination, records(), 1), 0U);
  expectCalls(single());
  harness::resetRecorder();
  EXPECT_EQ(GetParam().sendMsg(destination, records(), 2), 0U);
  expectCalls(batch(2));
  expectSent(2);
}

TEST_P(EverySend, ReturnsWhatTheMiddlewareReturns) {
  for (const uint32_t result : {1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
    harness::resetRecorder();
    recorder().middlewareResult = result;
    EXPECT_EQ(GetParam().sendSingle(destination, records(), harness::unused, 0), result);
    EXPECT_EQ(GetParam().sendSingle(destination, records(), harness::unused, 1), result);
    EXPECT_EQ(GetParam().sendBatch(destination, records(), 2, 0), result);
    EXPECT_EQ(GetParam().sendBatch(destination, records(), 2, 1), result);
    EXPECT_EQ(GetParam().sendMsg(destination, records(), 1), result);
    EXPECT_EQ(GetParam().sendMsg(destination, records(), 2), result);
    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 1, 1), result);
    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 2, 1), result);
    EXPECT_TRUE(recorder().blocks.empty()) << "the buffers are given back all the same";
    EXPECT_EQ(recorder().sent.size(), 12U);
  }
}

TEST_P(EverySend, FailsSilentlyWithoutMemory) {
  recorder().everyAllocationFails = true;
  const bool onTheStack = isFixed() && fixed_ <= 1024;
  const Trace refused{taken(sizeOf(0), "__sendsingle", "null")};
  for (const uint64_t extra : {0U, 1U}) {
    EXPECT_EQ(GetParam().sendSingle(destination, records(), harness::unused, extra),
              onTheStack ? 0 : failure);
    expectCalls(onTheStack ? single(extra) : refused);
    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 1, extra), onTheStack ? 0 : failure);
    expectCalls(onTheStack ? single(extra) : refused);
    EXPECT_EQ(GetParam().sendBatch(destination, records(), 2, extra), failure);
    expectCalls({taken(batchSize(2), "__sendbatch", "null")});
    EXPECT_EQ(GetParam().sendToMsg(destination, records(), 2, extra), failure);
    expectCalls({taken(batchSize(2), "__sendbatch", "null")});
  }
  EXPECT_EQ(GetParam().sendBatch(destination, records(), 0, 0), failure);
  expectCalls({taken(batchSize(0), "__sendbatch", "null")});
}

INSTANTIATE_TEST_SUITE_P(All, EverySend, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
