// Base64 as defined by RFC 4648, and nothing else.

#include "inspect/bytes/base64.hpp"

#include <gtest/gtest.h>

#include "inspect/json/record_json.hpp"
#include "tests/inspect/bytes/failure_of.hpp"

namespace inspect {
namespace {

using Bytes = std::vector<uint8_t>;

struct Vector {
  std::string_view plain;
  std::string_view text;
};

// Section 10.
constexpr Vector vectors[] = {{"", ""},
                              {"f", "Zg=="},
                              {"fo", "Zm8="},
                              {"foo", "Zm9v"},
                              {"foob", "Zm9vYg=="},
                              {"fooba", "Zm9vYmE="},
                              {"foobar", "Zm9vYmFy"}};

TEST(Base64, MatchesRfc4648) {
  for (const Vector& vector : vectors) {
    const Bytes plain(vector.plain.begin(), vector.plain.end());
    EXPECT_EQ(toBase64(plain), vector.text);
    EXPECT_EQ(fromBase64(vector.text), plain);
  }
}

TEST(Base64, UsesEveryDigit) {
  Bytes bytes(48);
  for (size_t group = 0; group < 16; ++group) {
    const auto first = static_cast<uint32_t>(4 * group);
    const uint32_t word = first << 18 | (first + 1) << 12 | (first + 2) << 6 | (first + 3);
    bytes[3 * group] = static_cast<uint8_t>(word >> 16);
    bytes[3 * group + 1] = static_cast<uint8_t>(word >> 8);
    bytes[3 * group + 2] = static_cast<uint8_t>(word);
  }
  const std::string text = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  EXPECT_EQ(toBase64(bytes), text);
  EXPECT_EQ(fromBase64(text), bytes);
}

TEST(Base64, RoundTrip) {
  Bytes bytes;
  for (int length = 0; length < 600; ++length) {
    EXPECT_EQ(fromBase64(toBase64(bytes)), bytes);
    bytes.push_back(static_cast<uint8_t>(length * 151));
  }
}

std::string base64FailureOf(std::string_view text) {
  return failureOf([&] { fromBase64(text); });
}

TEST(Base64, RejectsInvalidText) {
  EXPECT_EQ(base64FailureOf("Zg"), "the length of base64 is a multiple of 4, not 2");
  EXPECT_EQ(base64FailureOf("Zm9vY"), "the length of base64 is a multiple of 4, not 5");
  EXPECT_EQ(base64FailureOf("Zm9-"), "not a base64 digit at character 3");
  EXPECT_EQ(base64FailureOf("Zm8\n"), "not a base64 digit at character 3");
  EXPECT_EQ(base64FailureOf("Zg==Zg=="), "not a base64 digit at character 2");
  EXPECT_EQ(base64FailureOf("Z==="), "not a base64 digit at character 1");
  EXPECT_EQ(base64FailureOf("===="), "not a base64 digit at character 0");
  EXPECT_EQ(base64FailureOf(std::string_view("Zm9\0", 4)), "not a base64 digit at character 3");
  EXPECT_EQ(base64FailureOf("Zh=="), "unused bits are not zero at character 1");
  EXPECT_EQ(base64FailureOf("Zm9="), "unused bits are not zero at character 2");
}

TEST(Base64, EncodesRecordBytes) {
  const KnownMessage& message = messageNamed("dbginfo_key_l2vpn");
  const Json json = parseJson(R"({"f0":0,"f1":0,"f2":0,"f3":"Zm9vYg=="})");
  uint64_t memory = 0;
  const OwnedRecord record = fromJson(message, json, ByteText::Base64, memory);
  EXPECT_EQ(toJson(message.schema(), record.data())["f3"], "666f6f62");
  EXPECT_EQ(toJson(message.schema(), record.data(), {.byteText = ByteText::Base64}), json);
}

TEST(Base64, ErrorsGivePath) {
  const auto failure = [](const char* json) -> std::string {
    try {
      uint64_t memory = 0;
      fromJson(messageNamed("l2vpn_sync_vpls_ac_update"), parseJson(json), ByteText::Base64,
               memory);
    } catch (const Failure& failed) {
      return failed.what();
    }
    return "";
  };
  EXPECT_EQ(failure(R"({"f1": {"f8": "0?=="}})"), "f1.f8: not a base64 digit at character 1");
  EXPECT_EQ(failure(R"({"f1": {"f8": "Zg=="}})"), "f1.f8: expected 12 bytes, not 1");
  EXPECT_EQ(failure(R"({"f1": {"f8": 1}})"),
            "f1.f8: expected a string of base64 digits, not number");
}

}  // namespace
}  // namespace inspect
