// A host that runs out of memory: in a row of operations the n-th allocation fails, for every n,
// either alone or with all later ones. Each operation then does what the oracle says, and nothing
// leaks.

#include <gtest/gtest.h>

#include "oracle/operations/reader.hpp"
#include "oracle/operations/sender.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"

namespace {

using harness::Buffer;
using harness::Operations;
using harness::recorder;
using harness::Trace;
using oracle::Operation;
using oracle::Value;

enum class Failing { Once, ForGood };

class FailingAllocations : public testing::TestWithParam<Operations> {
 protected:
  void SetUp() override { harness::useByteOrder(operations(), false); }

  const Operations& operations() const { return GetParam(); }
  const oracle::Description& message() const { return oracle::descriptionOf(operations().name); }

  // Runs the row; its n-th allocation fails. Returns the number of requests.
  int run(const std::vector<Value>& values, int failing, Failing manner) {
    failing_ = failing;
    manner_ = manner;
    asked_ = 0;
    const Buffer bytes = harness::packed(operations(), values[0]);
    oracle::RecordImage received(message(), uint8_t{0});
    const Value decoded = unpack(bytes, received);
    for (const uint32_t middlewareResult : {0U, 77U}) {
      send(Operation::Single, {values[0]}, 0, middlewareResult);
      send(Operation::Batch, values, 0, middlewareResult);
      send(Operation::Batch, {}, 9, middlewareResult);
      send(Operation::Msg, {values[1]}, 0, middlewareResult);
      send(Operation::Msg, values, 0, middlewareResult);
      send(Operation::ToMsg, {values[1]}, 9, middlewareResult);
      send(Operation::ToMsg, values, 9, middlewareResult);
      pack(values[1]);
    }
    release(decoded, received);
    EXPECT_TRUE(recorder().blocks.empty()) << "something is still out";
    return asked_;
  }

 private:
  // Prepares the host for the next operation: the number of its failing allocation, from 1.
  int nextFailing() const {
    const int next = failing_ - asked_;
    if (failing_ == 0 || (next < 1 && manner_ == Failing::Once)) {
      return 0;
    }
    return std::max(next, 1);
  }
  int prepare(uint32_t middlewareResult = 0) {
    const int next = nextFailing();
    harness::resetRecorder();
    recorder().middlewareResult = middlewareResult;
    (manner_ == Failing::Once ? recorder().failingAllocation : recorder().failingFrom) = next;
    return next;
  }
  void expectCalls(const Trace& expected, const char* what) {
    EXPECT_EQ(harness::takeTrace(), expected)
        << what << ", of all allocations the " << failing_ << "th fails";
    asked_ += recorder().allocations;
  }

  Value unpack(const Buffer& bytes, oracle::RecordImage& record) {
    const int next = prepare();
    const auto length = static_cast<uint32_t>(bytes.size());
    const auto expected = oracle::unpack(message(), bytes.data(), length, false, false, next);
    EXPECT_EQ(operations().unpack(bytes.data(), length, record.data()), expected.returned);
    expectCalls(expected.trace, "unpack");
    const Value decoded = oracle::load(message(), record.data());
    EXPECT_EQ(oracle::difference(decoded, expected.record), "");
    return expected.record;
  }

  void send(Operation operation, const std::vector<Value>& values, uint64_t extra,
            uint32_t middlewareResult) {
    const auto count = static_cast<uint32_t>(values.size());
    // No send operation allocates more than once.
    const bool fails = prepare(middlewareResult) == 1;
    const oracle::RecordImage records(message(), values);
    const uint32_t result = call(operation, records.data(), count, extra);
    const oracle::Sent expected =
        oracle::send(message(), operation, 5, values, count, extra, false, fails, middlewareResult);
    EXPECT_EQ(result, expected.result);
    EXPECT_EQ(recorder().sent.size(), expected.descriptors.size()) << "all or none";
    expectCalls(expected.trace, "send");
  }

  uint32_t call(Operation operation, const void* records, uint32_t count, uint64_t extra) const {
    switch (operation) {
      case Operation::Single:
        return operations().sendSingle(5, records, harness::unused, extra);
      case Operation::Batch:
        return operations().sendBatch(5, records, count, extra);
      case Operation::Msg:
        return operations().sendMsg(5, records, count);
      case Operation::ToMsg:
        return operations().sendToMsg(5, records, count, extra);
    }
    return 0;
  }

  void pack(const Value& value) {
    static_cast<void>(prepare());
    const oracle::RecordImage record(message(), value);
    Buffer buffer(oracle::compactSize(message(), value));
    auto length = static_cast<uint32_t>(buffer.size());
    EXPECT_EQ(operations().pack(record.data(), buffer.data(), &length), 0U);
    expectCalls({}, "pack");
  }

  void release(Value decoded, oracle::RecordImage& record) {
    for (const char* what : {"free", "second free"}) {
      static_cast<void>(prepare());
      const Trace expected = oracle::release(message(), decoded);
      operations().freeUnpacked(record.data());
      expectCalls(expected, what);
    }
  }

  int failing_ = 0;
  int asked_ = 0;
  Failing manner_ = Failing::Once;
};

TEST_P(FailingAllocations, AreSurvivedInTurn) {
  std::mt19937_64 random(11);
  const oracle::Density densities[] = {oracle::Density::Full, oracle::Density::Sparse,
                                       oracle::Density::Edge};
  const bool large = message().recordSize > 4096 || message().name == "l2vpn_cfg_query_dfx_rec";
  for (int round = 0; round < harness::rounds(large ? 2 : 6); ++round) {
    std::vector<Value> values;
    for (int index = 0; index < 2; ++index) {
      values.push_back(oracle::randomValue(message(), random, densities[round % 3]));
    }
    const int all = run(values, 0, Failing::Once);
    // At least the six batches.
    EXPECT_GE(all, 6);
    for (const Failing manner : {Failing::Once, Failing::ForGood}) {
      for (int failing = 1; failing <= all; ++failing) {
        const int asked = run(values, failing, manner);
        EXPECT_GE(asked, failing) << "the one that fails was asked for";
        EXPECT_LE(asked, all) << "nothing is tried again";
      }
    }
    if (HasFailure()) {
      return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, FailingAllocations, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
