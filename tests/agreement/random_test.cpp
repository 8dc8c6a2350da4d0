// The engine against the reference model, on every message.

#include <gtest/gtest.h>

#include <array>

#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "support/comparison.hpp"

namespace {

using harness::allOperations;
using harness::Operations;
using oracle::Density;
using oracle::Operation;
using oracle::Value;

constexpr std::array densities{Density::Full, Density::Sparse, Density::Edge};

class Agreement : public testing::TestWithParam<Operations> {
 protected:
  const Operations& operations() const { return GetParam(); }
  const oracle::Description& message() const { return oracle::descriptionOf(operations().name); }
  Value randomRecord() {
    return oracle::randomValue(message(), random_, densities[random_() % densities.size()]);
  }
  uint64_t random() { return random_(); }
  std::vector<uint8_t> damaged(std::vector<uint8_t> bytes) {
    return oracle::mutate(std::move(bytes), random_);
  }
  // A valid message of a random record, in either arrangement where there are two.
  std::vector<uint8_t> randomMessage(bool reversed) {
    const Value value = randomRecord();
    if (!message().hasOutOfLineParts && random_() % 2 == 0) {
      return oracle::fixedImage(message(), value, reversed);
    }
    return harness::packed(operations(), value, reversed);
  }
  int scaled(int usual) const {
    // A record of 16 KiB takes the oracle about as long as a hundred small ones.
    return harness::rounds(message().recordSize > 4096 ? usual / 50 : usual);
  }

 private:
  std::mt19937_64 random_{20260101};
};

TEST_P(Agreement, OnPackedBytesOfRandomRecords) {
  for (int round = 0; round < harness::rounds(10000); ++round) {
    const Value value = randomRecord();
    const auto size = static_cast<uint32_t>(oracle::compactSize(message(), value));
    const uint32_t room = size + static_cast<uint32_t>(random() % 3) - 1;
    ASSERT_EQ(harness::comparePack(operations(), value, room, round % 2 != 0), "");
  }
}

TEST_P(Agreement, OnSendingRandomRecords) {
  for (int round = 0; round < scaled(2000); ++round) {
    const auto operation = static_cast<Operation>(round % 4);
    std::vector<Value> values(operation == Operation::Single ? 1 : random() % 4);
    for (Value& value : values) {
      value = randomRecord();
    }
    const uint64_t extra = random() % 2 == 0 ? 0 : random();
    const bool allocationFails = random() % 8 == 0;
    const uint32_t middlewareResult = random() % 4 == 0 ? 77 : 0;
    ASSERT_EQ(harness::compareSend(operations(), operation, values, extra, random() % 2 != 0,
                                   allocationFails, middlewareResult),
              "");
  }
}

TEST_P(Agreement, OnUnpackingRandomMessages) {
  for (int round = 0; round < scaled(4000); ++round) {
    const bool reversed = round % 2 != 0;
    const int failing = random() % 4 == 0 ? 1 + static_cast<int>(random() % 4) : 0;
    ASSERT_EQ(harness::compareUnpack(operations(), randomMessage(reversed), reversed, failing), "");
  }
}

TEST_P(Agreement, OnEveryTruncation) {
  for (int round = 0; round < 4; ++round) {
    for (const bool reversed : {false, true}) {
      const std::vector<uint8_t> bytes = randomMessage(reversed);
      // Every length of a message of many KiB is tried once, later on some of them.
      const size_t step = bytes.size() > 4096 && (round > 0 || reversed) ? 61 : 1;
      for (size_t length = 0; length <= bytes.size(); length += step) {
        ASSERT_EQ(harness::compareUnpack(operations(), {bytes.data(), length}, reversed, 0,
                                         length % 16 == 0),
                  "");
      }
    }
  }
}

TEST_P(Agreement, OnEveryVtableLength) {
  const std::vector<uint8_t> packed = harness::packed(operations(), randomRecord());
  const auto schema = static_cast<uint16_t>(message().vtableLength);
  for (uint32_t length = 0; length < schema + 12U; ++length) {
    std::vector<uint8_t> bytes = packed;
    bytes[4] = static_cast<uint8_t>(length);
    bytes[5] = static_cast<uint8_t>(length >> 8);
    ASSERT_EQ(harness::compareUnpack(operations(), bytes, false), "");
  }
}

TEST_P(Agreement, OnMutatedMessages) {
  for (int round = 0; round < scaled(60000); ++round) {
    const bool reversed = round % 4 == 3;
    const int failing = random() % 16 == 0 ? 1 + static_cast<int>(random() % 3) : 0;
    ASSERT_EQ(harness::compareUnpack(operations(), damaged(randomMessage(reversed)), reversed,
                                     failing, random() % 64 == 0),
              "");
  }
}

TEST_P(Agreement, OnRandomBytes) {
  for (int round = 0; round < scaled(4000); ++round) {
    std::vector<uint8_t> bytes(random() % 160);
    for (uint8_t& byte : bytes) {
      // Small numbers lead somewhere more often.
      byte = static_cast<uint8_t>(random() % 2 == 0 ? random() : random() % 9);
    }
    ASSERT_EQ(harness::compareUnpack(operations(), bytes, round % 2 != 0), "");
  }
}

TEST_P(Agreement, OnEveryAlignment) {
  const std::vector<uint8_t> bytes = randomMessage(false);
  for (size_t shift = 0; shift < 8; ++shift) {
    std::vector<uint8_t> shifted(shift + bytes.size());
    std::copy(bytes.begin(), bytes.end(), shifted.begin() + static_cast<std::ptrdiff_t>(shift));
    ASSERT_EQ(harness::compareUnpack(operations(), std::span(shifted).subspan(shift), false), "");
  }
}

INSTANTIATE_TEST_SUITE_P(All, Agreement, testing::ValuesIn(allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
