// The explaining reader accepts what the library accepts, and explains every byte.

#include "inspect/reader/table_reader.hpp"

#include <gtest/gtest.h>

#include "inspect/bytes/hex.hpp"
#include "inspect/bytes/memory_limit.hpp"
#include "inspect/messages/codec.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "tests/inspect/messages/message_names.hpp"
#include "tests/inspect/reader/hostile.hpp"
#include "tests/inspect/reader/library_reader.hpp"

namespace inspect {
namespace {

constexpr int mutationsOfEach = 1500;

std::vector<std::string> faultTexts(const Verdict& verdict) {
  std::vector<std::string> texts;
  for (const Fault& fault : verdict.faults) {
    texts.push_back(faultText(fault));
  }
  return texts;
}

class ReaderAgreement : public testing::TestWithParam<const char*> {};

TEST_P(ReaderAgreement, DamagedAndTruncated) {
  const KnownMessage& message = messageNamed(GetParam());
  const oracle::Description& type = oracle::descriptionOf(GetParam());
  std::mt19937_64 random(message.id());
  const int rounds = message.schema().size > 4096 ? mutationsOfEach / 10 : mutationsOfEach;
  int accepted = 0;
  for (int round = 0; round < rounds; ++round) {
    const auto density = static_cast<oracle::Density>(round % 3);
    const oracle::RecordImage image(type, oracle::randomValue(type, random, density));
    OwnedRecord record(message);
    std::memcpy(record.data(), image.data(), message.schema().size);
    Bytes bytes = round % 2 == 0 ? encodeCompact(record) : encode(record, Form::AsSent);
    if (round % 5 == 4) {
      bytes.resize(random() % (bytes.size() + 1));
    } else {
      bytes = oracle::mutate(bytes, random);
    }
    const Reading reading = readTable(message, bytes);
    const Verdict verdict = judge(message, bytes);
    ASSERT_EQ(faultTexts(verdict), faultTexts(reading)) << toHex(bytes);
    ASSERT_EQ(verdict.memory, reading.memory) << toHex(bytes);
    ASSERT_EQ(verdict.isAccepted(), reading.isAccepted()) << toHex(bytes);
    if (reading.memory > memoryLimit) {
      continue;
    }
    ASSERT_EQ(reading.isAccepted(), libraryAccepts(message, bytes)) << toHex(bytes);
    ASSERT_EQ(unsoundness(reading, bytes), "") << toHex(bytes);
    accepted += reading.isAccepted() ? 1 : 0;
  }
  // The test needs both accepted and rejected buffers.
  EXPECT_GT(accepted, 0);
  EXPECT_LT(accepted, rounds);
}

INSTANTIATE_TEST_SUITE_P(Of, ReaderAgreement, testing::ValuesIn(messageNames()),
                         [](const auto& each) { return std::string(each.param); });

Bytes sampleCircuit() {
  return encodeCompact(OwnedRecord(messageNamed("l2vpn_sync_vpls_ac")));
}

TEST(TableReader, ReportsEveryFault) {
  // Vtable of 24 bytes at 4, table at 28, the offset words of f8 and f9 at 32 and 36.
  Bytes bytes = sampleCircuit();
  ASSERT_EQ(bytes.size(), 72u);
  bytes[40] = 13;    // f8's length
  bytes[36] = 0xFF;  // f9's offset word
  const Reading reading = readTable(messageNamed("l2vpn_sync_vpls_ac"), bytes);
  ASSERT_EQ(reading.faults.size(), 2u);
  EXPECT_EQ(faultText(reading.faults[0]), "byte 40, f8: 13 bytes instead of 12");
  EXPECT_EQ(faultText(reading.faults[1]),
            "byte 36, f9: points to a length at 291, past the end of a buffer of 72 bytes");
  EXPECT_FALSE(reading.isAccepted());
}

TEST(TableReader, ToleratesFaultInWrapper) {
  Bytes bytes = encodeCompact(OwnedRecord(messageNamed("l2vpn_sync_vpls_ac_update")));
  bytes.pop_back();
  const Reading reading = readTable(messageNamed("l2vpn_sync_vpls_ac_update"), bytes);
  ASSERT_EQ(reading.faults.size(), 1u);
  EXPECT_TRUE(reading.faults[0].isTolerated);
  EXPECT_TRUE(reading.isAccepted());
}

TEST(TableReader, ShortensContents) {
  EXPECT_EQ(contentsText(Bytes(16'384)), "zeros");
  EXPECT_EQ(contentsText(Bytes(16'385)), "starts with zeros");
  EXPECT_EQ(contentsText(Bytes(40, 'a')), '"' + std::string(40, 'a') + '"');
  EXPECT_EQ(contentsText(Bytes(41, 'a')), '"' + std::string(40, 'a') + "\"...");
  EXPECT_EQ(contentsText(Bytes{1, 0xAB}), "01ab");
  EXPECT_EQ(contentsText(Bytes(21, 1)), toHex(Bytes(20, 1)) + "...");
}

// Schemas of no message, so that the tests do not depend on the messages.
struct Schema {
  mesh::wire::Schema record;
  mesh::msg::Message data{&record, 1, {}};

  [[nodiscard]] KnownMessage message() const {
    KnownMessage message{};
    message.message = &data;
    return message;
  }
};

mesh::wire::Schema recordOf(uint32_t size, mesh::wire::NestedFailure failure,
                            std::span<const mesh::wire::Slot> slots) {
  return {"record", "", "", "", size, {mesh::wire::InlineOrder::Slots, failure}, slots};
}

TEST(TableReader, CountsSharedTableMemoryPerItem) {
  using enum mesh::wire::NestedFailure;
  const mesh::wire::Slot ofItem{{"f0"}, mesh::wire::Kind::Bytes, 1, 8, 0, nullptr};
  const mesh::wire::Schema item = recordOf(16, FailsTheTable, {&ofItem, 1});
  const mesh::wire::Slot ofList{{"f0"}, mesh::wire::Kind::Vector, 16, 8, 0, &item};
  const Schema schema{recordOf(16, FailsTheTable, {&ofList, 1})};
  Bytes bytes;
  put<uint32_t>(bytes, 12);
  putAll<uint16_t>(bytes, {6, 8, 4, 0});      // at 4, the vtable of both tables
  putAll<uint32_t>(bytes, {8, 4, 2, 8, 4});   // at 12, the list: two items at 32
  putAll<uint32_t>(bytes, {32 - 4, 4, 100});  // at 32, the item, and how many bytes follow
  bytes.resize(bytes.size() + 100);
  EXPECT_EQ(judge(schema.message(), bytes).memory, 2 * (16 + 100));
}

TEST(TableReader, RereadsTableWhenNotTolerant) {
  using enum mesh::wire::NestedFailure;
  const mesh::wire::Slot array{{"f0"}, mesh::wire::Kind::Array, 4, 0, 0, nullptr};
  const mesh::wire::Schema inner = recordOf(4, FailsTheTable, {&array, 1});
  const mesh::wire::Slot held{{"f0"}, mesh::wire::Kind::Table, 4, 0, 0, &inner};
  const mesh::wire::Schema holder = recordOf(4, IsIgnored, {&held, 1});
  const mesh::wire::Slot both[] = {{{"f0"}, mesh::wire::Kind::Table, 4, 0, 0, &holder},
                                   {{"f1"}, mesh::wire::Kind::Table, 4, 4, 0, &inner}};
  const Schema schema{recordOf(8, FailsTheTable, both)};
  Bytes bytes;
  put<uint32_t>(bytes, 12);
  putAll<uint16_t>(bytes, {8, 12, 4, 8});               // at 4, the vtable of all
  putAll<uint32_t>(bytes, {12 - 4, 24 - 16, 36 - 20});  // at 12, the root
  putAll<uint32_t>(bytes, {24 - 4, 36 - 28, 0});        // at 24, the tolerant holder
  putAll<uint32_t>(bytes, {36 - 4, 4, 3, 0});           // at 36, 3 bytes where 4 belong
  const Verdict verdict = judge(schema.message(), bytes);
  EXPECT_EQ(libraryAccepts(schema.message(), bytes), verdict.isAccepted());
  EXPECT_FALSE(verdict.isAccepted());
  ASSERT_EQ(verdict.faults.size(), 2u);
  EXPECT_TRUE(verdict.faults[0].isTolerated);
  EXPECT_EQ(verdict.faults[1].path, "f1.f0");
}

}  // namespace
}  // namespace inspect
