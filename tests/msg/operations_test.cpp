// Unpacking and releasing, for every message: results, sizes, ownership.

#include <gtest/gtest.h>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Operations;
using harness::recorder;
using harness::Trace;

class EveryMessage : public testing::TestWithParam<Operations> {
 protected:
  size_t outOfLineParts() const {
    return oracle::outOfLineParts(oracle::descriptionOf(GetParam().name));
  }
  uint32_t size() const { return GetParam().schema().size; }

  // A message with every byte string present.
  Buffer fullMessage() const {
    const oracle::Description& message = oracle::descriptionOf(GetParam().name);
    std::mt19937_64 random(3);
    for (;;) {
      const oracle::Value value = oracle::randomValue(message, random, oracle::Density::Full);
      if (isFull(value)) {
        return harness::packed(GetParam(), value);
      }
    }
  }

 private:
  static bool isFull(const oracle::Value& value) {
    for (const oracle::FieldValue& field : value.fields) {
      const bool outOfLine =
          field.kind == oracle::Kind::Bytes || field.kind == oracle::Kind::Vector;
      if ((outOfLine && field.length == 0) ||
          (field.kind == oracle::Kind::Table && !isFull(field.items.at(0)))) {
        return false;
      }
    }
    return true;
  }
};

TEST_P(EveryMessage, AlwaysReturnsItsRecordSize) {
  const Buffer whole = fullMessage();
  const size_t step = whole.size() > 4096 ? 127 : 1;
  for (size_t length = 0; length <= whole.size(); length += step) {
    harness::resetRecorder();
    Buffer record = harness::marks(size());
    const auto given = static_cast<uint32_t>(length);
    EXPECT_EQ(GetParam().unpack(whole.data(), given, record.data()), size());
    // An unchanged record holds nothing to release.
    if (record != harness::marks(size())) {
      GetParam().freeUnpacked(record.data());
    }
    EXPECT_TRUE(recorder().blocks.empty()) << "of " << length << " bytes";
  }
}

TEST_P(EveryMessage, ReleasesEachBlockOnce) {
  const Buffer bytes = fullMessage();
  harness::resetRecorder();
  Buffer record = harness::marks(size());
  EXPECT_EQ(GetParam().unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data()),
            size());
  EXPECT_EQ(recorder().blocks.size(), outOfLineParts());
  EXPECT_EQ(harness::takeTrace().size(), outOfLineParts()) << "one allocation a block";

  const std::string release =
      " owner=12 caller=\"" + std::string(GetParam().name) + "_free_unpacked\"";
  Trace first;
  Trace second;
  for (size_t block = 1; block <= outOfLineParts(); ++block) {
    first.push_back("unpackFree #" + std::to_string(block) + release);
    second.push_back("unpackFree null" + release);
  }
  GetParam().freeUnpacked(record.data());
  EXPECT_EQ(harness::takeTrace(), first);
  EXPECT_TRUE(recorder().blocks.empty());
  GetParam().freeUnpacked(record.data());
  EXPECT_EQ(harness::takeTrace(), second);
}

TEST_P(EveryMessage, ReleasesNothingOfANullRecord) {
  harness::resetRecorder();
  GetParam().freeUnpacked(nullptr);
  EXPECT_EQ(harness::takeTrace(), Trace());
}

TEST_P(EveryMessage, IsOnlyReadByPackAndSend) {
  std::mt19937_64 random(4);
  const oracle::Description& message = oracle::descriptionOf(GetParam().name);
  const oracle::RecordImage records(
      message,
      std::vector<oracle::Value>{oracle::randomValue(message, random, oracle::Density::Full),
                                 oracle::randomValue(message, random, oracle::Density::Sparse)});
  const Buffer before = records.bytes();
  Buffer buffer(size_t{1} << 17);
  auto length = static_cast<uint32_t>(buffer.size());
  harness::resetRecorder();
  EXPECT_EQ(GetParam().pack(records.data(), buffer.data(), &length), 0U);
  EXPECT_EQ(GetParam().sendSingle(1, records.data(), harness::unused, 0), 0U);
  EXPECT_EQ(GetParam().sendMsg(1, records.data(), 1), 0U);
  GetParam().sendBatch(1, records.data(), 2, 0);
  EXPECT_EQ(hex(records.bytes()), hex(before));
  EXPECT_TRUE(recorder().blocks.empty());
}

INSTANTIATE_TEST_SUITE_P(All, EveryMessage, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Messages, WithoutBlocksAreIgnoredByRelease) {
  size_t count = 0;
  for (const Operations& operations : harness::allOperations()) {
    if (!oracle::descriptionOf(operations.name).hasOutOfLineParts) {
      Buffer record = harness::marks(operations.schema().size);
      harness::resetRecorder();
      operations.freeUnpacked(record.data());
      EXPECT_EQ(hex(record), hex(harness::marks(record.size()))) << operations.name;
      EXPECT_EQ(harness::takeTrace(), Trace()) << operations.name;
      ++count;
    }
  }
  EXPECT_GT(count, 0U);
}

}  // namespace
