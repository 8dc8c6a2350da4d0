// JSON that does not fit the record fails with the path. Missing members are zero.

#include "inspect/json/record_json.hpp"

#include <gtest/gtest.h>

#include "inspect/json/json_check.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/reading.hpp"
#include "tests/inspect/bytes/failure_of.hpp"

namespace inspect {
namespace {

std::string failureOf(const char* message, const char* json, Cause cause = Cause::BadInput) {
  return failureOf([&] { fromJson(messageNamed(message), parseJson(json)); }, cause);
}

Json throughRecord(const char* message, const char* json) {
  const OwnedRecord record = fromJson(messageNamed(message), parseJson(json));
  return toJson(record.message().schema(), record.data());
}

TEST(RecordJson, MissingMembersAreZero) {
  EXPECT_EQ(throughRecord("dbginfo_key_l2vpn", R"({"f1": 3})").dump(),
            R"({"f0":0,"f1":3,"f2":0,"f3":""})");
}

TEST(RecordJson, Keeps64Bits) {
  EXPECT_EQ(throughRecord("l2vpn_sync_vpls_macping", R"({"f0": 18446744073709551615})")["f0"],
            UINT64_MAX);
  EXPECT_EQ(throughRecord("l2vpn_sync_vpls_macping", R"({"f0": "0xFFFFFFFFFFFFFFFF"})")["f0"],
            UINT64_MAX);
}

TEST(RecordJson, RejectsUnknownMembers) {
  EXPECT_EQ(failureOf("l2vpn_sync_vpls_ac_update", R"({"f1": {"f99": 1}})"),
            "f1.f99: l2vpn_sync_vpls_ac has no such field; it has f0 to f9");
}

TEST(RecordJson, RejectsNumbersOutOfRange) {
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", R"({"f0": 65536})"),
            "f0: expected a whole number from 0 to 65535, not 65536");
  EXPECT_NE(failureOf("dbginfo_key_l2vpn", R"({"f0": -1})"), "");
  EXPECT_NE(failureOf("dbginfo_key_l2vpn", R"({"f0": 1.5})"), "");
  EXPECT_NE(failureOf("dbginfo_key_l2vpn", R"({"f0": "0x10000"})"), "");
  EXPECT_NE(failureOf("dbginfo_key_l2vpn", R"({"f0": "12"})"), "");
  EXPECT_NE(failureOf("dbginfo_key_l2vpn", R"({"f0": null})"), "");
  EXPECT_NE(failureOf("l2vpn_sync_vpls_macping", R"({"f0": 18446744073709551616})"), "");
}

TEST(RecordJson, RejectsWrongLength) {
  EXPECT_EQ(failureOf("l2vpn_sync_vpls_ac", R"({"f8": "0102"})"), "f8: expected 12 bytes, not 2");
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", R"({"f3": "012"})"),
            "f3: an odd number of hexadecimal digits");
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", R"({"f3": 12})"),
            "f3: expected a string of hexadecimal digits, not number");
}

TEST(RecordJson, ErrorsGiveItemNumber) {
  EXPECT_EQ(failureOf("l2vpn_cfg_query_dfx_rec", R"({"f1": [{}, {"f1": -1}]})"),
            "f1[1].f1: expected a whole number from 0 to 4294967295, not -1");
  EXPECT_EQ(failureOf("l2vpn_cfg_query_dfx_rec", R"({"f1": {}})"),
            "f1: expected an array, not object");
}

TEST(RecordJson, RejectsOtherTypes) {
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", "[]"), "the record: expected an object, not array");
  EXPECT_NE(failureOf("dbginfo_key_l2vpn", "{"), "");
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", R"({"f0": 1, "f0": 2})"), "duplicate member 'f0'");
  EXPECT_EQ(
      failureOf("l2vpn_sync_vpls_ac_update", R"({"f0": 1, "f1": {"f0": 1, "f2": 3, "f0": 2}})"),
      "duplicate member 'f1.f0'");
  EXPECT_EQ(failureOf("l2vpn_cfg_query_dfx_rec", R"({"f1": [{}, {"f0": "", "f1": 2, "f1": 3}]})"),
            "duplicate member 'f1[1].f1'");
}

TEST(RecordJson, RejectsNumberOverflow) {
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", R"({"f0": 1e400})"),
            "invalid JSON at byte 12: number overflow parsing '1e400'");
}

TEST(RecordJson, RejectsDeepNesting) {
  const std::string deep(100'000, '[');
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", deep.c_str()), "more than 64 levels of nesting");
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", (deep + std::string(deep.size(), ']')).c_str()),
            "more than 64 levels of nesting");
}

TEST(RecordJson, ErrorsShortenValues) {
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", R"({"f0": [{}, {}, {}]})"),
            "f0: expected a whole number from 0 to 65535, not array");
  const std::string text(100, 'a');
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", ("{\"f0\": \"" + text + "\"}").c_str()),
            "f0: expected a whole number from 0 to 65535, not string");
}

// Three characters ask for an item of 16,572 bytes.
TEST(RecordJson, LimitsMemory) {
  const size_t items = memoryLimit / 16'572 + 1;
  std::string json = R"({"f1": [{})";
  for (size_t item = 1; item < items; ++item) {
    json += ",{}";
  }
  EXPECT_EQ(failureOf("l2vpn_cfg_query_dfx_rec", (json + "]}").c_str(), Cause::Memory),
            "f1: up to here this record needs " + std::to_string(items * 16'572) +
                " bytes of memory; the limit is " + std::to_string(memoryLimit));
}

TEST(RecordJson, LimitsMembersAndValues) {
  std::string members;
  for (int member = 0; member <= 100; ++member) {
    members.append(member == 0 ? "" : ",").append("\"a" + std::to_string(member) + "\":0");
  }
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", ('{' + members + '}').c_str()),
            "an object with more than 100 members");
  std::string values = "[0";
  for (int value = 0; value < 1'000'000; ++value) {
    values += ",0";
  }
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", (values + "]").c_str()), "more than 1000000 values");
}

TEST(RecordJson, AcceptsUpToTheLimits) {
  const std::string levels(64, '[');
  EXPECT_EQ(checkJson(levels + std::string(64, ']')), 64u);
  std::string members;
  for (int member = 0; member < 100; ++member) {
    members.append(member == 0 ? "" : ",").append("\"a" + std::to_string(member) + "\":0");
  }
  EXPECT_EQ(checkJson('{' + members + '}'), 101u);
  // With the array itself a million.
  std::string values = "[0";
  for (int value = 1; value < 999'999; ++value) {
    values += ",0";
  }
  EXPECT_EQ(checkJson(values + "]"), 1'000'000u);
  EXPECT_THROW(checkJson(values + ",0]"), Failure);
  EXPECT_EQ(checkJson(R"([null, true, -1, 1, 1.5, "text", {}, []])"), 9u);
}

TEST(RecordJson, ErrorsShortenReasons) {
  EXPECT_EQ(failureOf("dbginfo_key_l2vpn", "{"),
            "invalid JSON at byte 2: syntax error while parsing object key - unexpected end of "
            "input; expected string literal");
  const std::string text = failureOf("dbginfo_key_l2vpn", ("{\"" + std::string(300, 'a')).c_str());
  const std::string before = "invalid JSON at byte 303: ";
  EXPECT_EQ(text.substr(0, before.size()), before);
  EXPECT_EQ(text.size(), before.size() + 200 + 3);
  EXPECT_TRUE(text.ends_with("..."));
}

// The text, with its names, takes 160 bytes for each value at most.
TEST(RecordJson, CountsTheMemoryOfValues) {
  uint64_t memory = 7;
  parseJson("[1, 2]", memory);
  EXPECT_EQ(memory, 7u + 6 + 3 * 160);
  memory = memoryLimit - 6 - 3 * 160;
  EXPECT_NO_THROW(parseJson("[1, 2]", memory));
  memory = memoryLimit - 6 - 3 * 160 + 1;
  EXPECT_THROW(parseJson("[1, 2]", memory), Failure);
}

TEST(RecordJson, IndentsEachLevel) {
  const KnownMessage& list = messageNamed("l2vpn_cfg_query_dfx_rec");
  const OwnedRecord empty(list);
  Text text;
  writeRecord(text, list.schema(), empty.data(), {.indent = 2});
  EXPECT_EQ(text.view(),
            "{\n  \"f0\": {\n    \"f0\": 0,\n    \"f1\": 0,\n    \"f2\": 0,\n    \"f3\": \"\",\n"
            "    \"f4\": 0\n  },\n  \"f1\": []\n}");
  const OwnedRecord full =
      fromJson(messageNamed("dbginfo_key_l2vpn"), parseJson(R"({"f3": "01"})"));
  Text lines;
  writeRecord(lines, full.message().schema(), full.data(),
              {.byteText = ByteText::Base64, .indent = 0});
  EXPECT_EQ(lines.view(), "{\n\"f0\": 0,\n\"f1\": 0,\n\"f2\": 0,\n\"f3\": \"AQ==\"\n}");
}

TEST(RecordJson, RejectsFixedEncodingOfCompactMessage) {
  const OwnedRecord record = fromJson(messageNamed("dbginfo_key_l2vpn"), Json::object());
  EXPECT_THROW(encodeFixed(record), Failure);
}

TEST(RecordJson, RejectsARecordTooLargeToEncode) {
  OwnedRecord record(messageNamed("dbginfo_key_l2vpn"));
  const mesh::wire::Slot& slot = record.message().schema().slots[3];
  storeAs(record.data() + slot.recordOffset, record.data());
  storeAs(record.data() + slot.countOffset, UINT32_MAX);
  try {
    encodedSize(record.message(), record.data(), Form::Compact);
    ADD_FAILURE();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "this dbginfo_key_l2vpn is too large to encode");
  }
}

}  // namespace
}  // namespace inspect
