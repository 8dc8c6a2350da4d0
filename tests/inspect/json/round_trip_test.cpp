// decode(encode(x)) = x through JSON text, for random records of every message in both
// arrangements. The bytes equal those of the reference model.

#include <gtest/gtest.h>

#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "tests/inspect/messages/message_names.hpp"

namespace inspect {
namespace {

constexpr int recordsOfEach = 1000;

class RoundTrip : public testing::TestWithParam<const char*> {};

std::string jsonOf(const KnownMessage& message, const uint8_t* record) {
  return toJson(message.schema(), record).dump();
}

Bytes written(const oracle::WrittenBytes& bytes) {
  Bytes all;
  for (const auto& byte : bytes) {
    all.push_back(byte.value_or(0));
  }
  return all;
}

TEST_P(RoundTrip, ThroughJson) {
  const KnownMessage& message = messageNamed(GetParam());
  const oracle::Description& type = oracle::descriptionOf(GetParam());
  std::mt19937_64 random(message.id());
  for (int round = 0; round < recordsOfEach; ++round) {
    const auto density = static_cast<oracle::Density>(round % 3);
    // Byte strings of length 0 have no pointer in JSON.
    const oracle::Value value = oracle::asReceived(oracle::randomValue(type, random, density));
    const oracle::RecordImage image(type, value);
    const std::string text = jsonOf(message, static_cast<const uint8_t*>(image.data()));

    const OwnedRecord record = fromJson(message, parseJson(text));
    const Bytes compact = encodeCompact(record);
    ASSERT_EQ(compact, written(oracle::compactBytes(type, value, false))) << text;
    ASSERT_EQ(jsonOf(message, decode(message, compact).data()), text);
    ASSERT_TRUE(readTable(message, compact).faults.empty()) << text;
    if (message.isSentFixed()) {
      const Bytes fixed = encodeFixed(record);
      ASSERT_EQ(fixed, oracle::fixedImage(type, value, false)) << text;
      ASSERT_EQ(jsonOf(message, decode(message, fixed).data()), text);
      ASSERT_TRUE(readTable(message, fixed).faults.empty()) << text;
    } else {
      ASSERT_EQ(encode(record, Form::AsSent), compact);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, RoundTrip, testing::ValuesIn(messageNames()),
                         [](const auto& each) { return std::string(each.param); });

}  // namespace
}  // namespace inspect
