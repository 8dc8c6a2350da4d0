// Compares any bytes with the encoding of their record.

#include "inspect/reader/own_encoding.hpp"

#include <gtest/gtest.h>

#include "inspect/bytes/failure.hpp"
#include "inspect/captures/traffic.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace inspect {
namespace {

Bytes listOfTwo() {
  return encodeCompact(fromJson(list(), parseJson(R"({"f1": [{"f1": 7}, {"f1": 8}]})")));
}

// Damages every byte of the head and the first bytes of the items.
std::vector<Bytes> hostileLists() {
  std::vector<Bytes> all;
  const Bytes sound = listOfTwo();
  for (size_t at = 0; at < 120; ++at) {
    for (const int mask : {0x01, 0x10, 0xFF}) {
      all.push_back(sound);
      all.back()[at] = static_cast<uint8_t>(sound[at] ^ mask);
    }
  }
  for (size_t cut = 1; cut < sound.size(); cut += cut) {
    all.emplace_back(sound.begin(), sound.end() - static_cast<ptrdiff_t>(cut));
  }
  return all;
}

TEST(OwnEncoding, AcceptsEncodedRecord) {
  EXPECT_TRUE(isOwnEncoding(list(), listOfTwo()));
}

TEST(OwnEncoding, RejectsDamage) {
  size_t rejected = 0;
  for (const Bytes& bytes : hostileLists()) {
    const Table table{0, 1, 2, list().id(), 0, bytes};
    Text line;
    writeTable(line, table);
    const Json json = parseJson(line.view());
    EXPECT_EQ(json.contains("record"), isAccepted(table));
    if (!isAccepted(table)) {
      ++rejected;
      EXPECT_FALSE(isOwnEncoding(list(), bytes));
      EXPECT_TRUE(json.contains("faults"));
    }
  }
  EXPECT_GT(rejected, 50u);
}

// A failing item leaves the count of a released vector in the record.
TEST(OwnEncoding, RejectsRecordWithoutEncoding) {
  Bytes bytes = listOfTwo();
  bytes[48] = 0xFF;  // in the first item's word
  const OwnedRecord record = decode(list(), bytes);
  EXPECT_THROW(encodeCompact(record), Failure);
  EXPECT_FALSE(isOwnEncoding(list(), bytes));
}

}  // namespace
}  // namespace inspect
