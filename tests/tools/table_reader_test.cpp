// The reader that explains agrees with the library's about what is accepted, and leaves no byte
// out.

#include "table_reader.hpp"

#include <gtest/gtest.h>

#include "codec.hpp"
#include "hex.hpp"
#include "library_reader.hpp"
#include "model/generate.hpp"
#include "model/record_image.hpp"

namespace tool {
namespace {

constexpr int mutationsOfEach = 1500;

class ReaderAgreement : public testing::TestWithParam<const char*> {};

TEST_P(ReaderAgreement, OnDamagedAndCutBuffers) {
  const Message& message = messageNamed(GetParam());
  const model::Message& type = model::message(GetParam());
  std::mt19937_64 random(message.data->id);
  const int rounds = message.record().size > 4096 ? mutationsOfEach / 10 : mutationsOfEach;
  int accepted = 0;
  for (int round = 0; round < rounds; ++round) {
    const auto density = static_cast<model::Density>(round % 3);
    const model::RecordImage image(type, model::randomValue(type, random, density));
    OwnedRecord record(message);
    std::memcpy(record.data(), image.data(), message.record().size);
    Bytes bytes = round % 2 == 0 ? encodeCompact(record) : encodeAsSent(record);
    if (round % 5 == 4) {
      bytes.resize(random() % (bytes.size() + 1));
    } else {
      bytes = model::mutate(bytes, random);
    }
    const Reading reading = readTable(message, bytes);
    if (reading.memory > largestMemory) {
      continue;
    }
    ASSERT_EQ(reading.isAccepted(), libraryAccepts(message, bytes)) << toHex(bytes);
    ASSERT_EQ(unsoundness(reading, bytes), "") << toHex(bytes);
    accepted += reading.isAccepted() ? 1 : 0;
  }
  // Neither all nor none, or this test would say little.
  EXPECT_GT(accepted, 0);
  EXPECT_LT(accepted, rounds);
}

std::vector<const char*> names() {
  std::vector<const char*> all;
  for (const Message& message : messages()) {
    all.push_back(message.name.data());
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(Of, ReaderAgreement, testing::ValuesIn(names()),
                         [](const auto& each) { return std::string(each.param); });

Bytes sampleCircuit() {
  return encodeCompact(OwnedRecord(messageNamed("l2vpn_sync_vpls_ac")));
}

TEST(TableReader, NamesEveryFaultAndItsByte) {
  // Vtable of 24 bytes at 4, table at 28, the offset words of f8 and f9 at 32 and 36.
  Bytes bytes = sampleCircuit();
  ASSERT_EQ(bytes.size(), 72u);
  bytes[40] = 13;    // f8's length
  bytes[36] = 0xFF;  // f9's offset word
  const Reading reading = readTable(messageNamed("l2vpn_sync_vpls_ac"), bytes);
  ASSERT_EQ(reading.faults.size(), 2u);
  EXPECT_EQ(faultText(reading.faults[0]), "byte 40, f8: 13 bytes where 12 belong");
  EXPECT_EQ(faultText(reading.faults[1]),
            "byte 36, f9: leads to a length at 291, past the end of a buffer of 72 bytes");
  EXPECT_FALSE(reading.isAccepted());
}

TEST(TableReader, AFaultInWhatAWrapperHoldsIsTolerated) {
  Bytes bytes = encodeCompact(OwnedRecord(messageNamed("l2vpn_sync_vpls_ac_update")));
  bytes.pop_back();
  const Reading reading = readTable(messageNamed("l2vpn_sync_vpls_ac_update"), bytes);
  ASSERT_EQ(reading.faults.size(), 1u);
  EXPECT_TRUE(reading.faults[0].isTolerated);
  EXPECT_TRUE(reading.isAccepted());
}

}  // namespace
}  // namespace tool
