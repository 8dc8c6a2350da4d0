// What __pack does with the room it is given, for every message.

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
using harness::Trace;

// A record of zeros, and one without a zero scalar.
class EveryWriter : public testing::TestWithParam<Operations> {
 protected:
  const oracle::Description& message() const { return oracle::descriptionOf(GetParam().name); }

  template <typename Check>
  void forEachRecord(const Check& check) const {
    std::mt19937_64 random(1);
    for (const oracle::Value& value :
         {oracle::zeroValue(message()),
          oracle::randomValue(message(), random, oracle::Density::Full)}) {
      const oracle::RecordImage record(message(), value);
      harness::resetRecorder();
      check(record.data(), static_cast<uint32_t>(oracle::compactSize(message(), value)));
    }
  }

  uint32_t pack(const void* record, uint8_t* buffer, uint32_t* length) const {
    return GetParam().pack(record, buffer, length);
  }
};

TEST_P(EveryWriter, FillsExactlyTheRoomItNeeds) {
  forEachRecord([&](const void* record, uint32_t size) {
    Buffer buffer = harness::marks(size + 16);
    uint32_t length = size;
    EXPECT_EQ(pack(record, buffer.data(), &length), 0U);
    EXPECT_EQ(length, size);
    EXPECT_EQ(hex(std::span(buffer).subspan(size)), hex(harness::marks(16)));
    EXPECT_EQ(harness::takeTrace(), Trace());
  });
}

TEST_P(EveryWriter, StatesTheSizeWhateverTheRoom) {
  forEachRecord([&](const void* record, uint32_t size) {
    for (const uint32_t room : {size, size + 1, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
      Buffer buffer = harness::marks(size + 16);
      uint32_t length = room;
      EXPECT_EQ(pack(record, buffer.data(), &length), 0U);
      EXPECT_EQ(length, size) << "room " << room;
      EXPECT_EQ(hex(std::span(buffer).subspan(size)), hex(harness::marks(16)));
    }
  });
}

TEST_P(EveryWriter, FailsWithLessRoomAndTouchesNothing) {
  forEachRecord([&](const void* record, uint32_t size) {
    for (const uint32_t room : {size - 1, size / 2, 4U, 3U, 0U}) {
      Buffer buffer = harness::marks(size);
      uint32_t length = room;
      EXPECT_EQ(pack(record, buffer.data(), &length), failure);
      EXPECT_EQ(length, room);
      EXPECT_EQ(hex(buffer), hex(harness::marks(size)));
      EXPECT_EQ(harness::takeTrace(), Trace());
    }
  });
}

TEST_P(EveryWriter, TellsTheSizeForANullBufferWithRoom) {
  forEachRecord([&](const void* record, uint32_t size) {
    for (const uint32_t room : {size, 0xFFFFFFFFU}) {
      uint32_t length = room;
      EXPECT_EQ(pack(record, nullptr, &length), 0U);
      EXPECT_EQ(length, size);
      EXPECT_EQ(
          harness::takeTrace(),
          Trace({harness::reported(std::string(GetParam().name) + "_pack",
                                   "Param invalid(null, " + std::to_string(room) + ", nonNull)")}));
    }
  });
}

TEST_P(EveryWriter, FailsForANullBufferWithoutRoom) {
  forEachRecord([&](const void* record, uint32_t size) {
    for (const uint32_t room : {size - 1, 0U}) {
      uint32_t length = room;
      EXPECT_EQ(pack(record, nullptr, &length), failure);
      EXPECT_EQ(length, room);
      EXPECT_EQ(harness::takeTrace(), Trace());
    }
  });
}

TEST_P(EveryWriter, FailsForANullRecordOrLength) {
  forEachRecord([&](const void* record, uint32_t size) {
    Buffer buffer = harness::marks(size);
    uint32_t length = size;
    EXPECT_EQ(pack(nullptr, buffer.data(), &length), failure);
    EXPECT_EQ(length, size);
    EXPECT_EQ(pack(record, buffer.data(), nullptr), failure);
    EXPECT_EQ(pack(nullptr, nullptr, nullptr), failure);
    EXPECT_EQ(hex(buffer), hex(harness::marks(size)));
    EXPECT_EQ(harness::takeTrace(), Trace());
  });
}

TEST_P(EveryWriter, WritesTheSameBytesTwiceWhereverTheyLie) {
  forEachRecord([&](const void* record, uint32_t size) {
    Buffer first = harness::marks(size);
    uint32_t length = size;
    EXPECT_EQ(pack(record, first.data(), &length), 0U);
    for (size_t shift = 1; shift < 8; ++shift) {
      Buffer second = harness::marks(size + shift);
      EXPECT_EQ(pack(record, second.data() + shift, &length), 0U);
      EXPECT_EQ(hex(std::span(second).subspan(shift)), hex(first)) << "shifted by " << shift;
    }
  });
}

TEST_P(EveryWriter, ReportsAsItsOwnModule) {
  forEachRecord([&](const void* record, uint32_t size) {
    uint32_t length = size;
    EXPECT_EQ(pack(record, nullptr, &length), 0U);
    ASSERT_EQ(harness::recorder().logOrigins.size(), 1U);
    EXPECT_EQ(harness::recorder().logOrigins[0].first, &harness::modulesOf(GetParam()).send->env);
    EXPECT_STREQ(harness::modulesOf(GetParam()).send->env.frameworkName, "VELTA");
  });
}

INSTANTIATE_TEST_SUITE_P(All, EveryWriter, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
