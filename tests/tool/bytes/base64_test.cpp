// Base64 as RFC 4648 has it, and not otherwise.

#include "bytes/base64.hpp"

#include <gtest/gtest.h>

#include "bytes/failure.hpp"
#include "json/record_json.hpp"

namespace tool {
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

TEST(Base64, IsThatOfTheStandard) {
  for (const Vector& vector : vectors) {
    const Bytes plain(vector.plain.begin(), vector.plain.end());
    EXPECT_EQ(toBase64(plain), vector.text);
    EXPECT_EQ(fromBase64(vector.text), plain);
  }
}

TEST(Base64, HasEveryDigit) {
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

TEST(Base64, ReadsWhatItWrites) {
  Bytes bytes;
  for (int length = 0; length < 600; ++length) {
    EXPECT_EQ(fromBase64(toBase64(bytes)), bytes);
    bytes.push_back(static_cast<uint8_t>(length * 151));
  }
}

std::string failureOf(std::string_view text) {
  try {
    fromBase64(text);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

TEST(Base64, RefusesWhatIsNoneAndSaysWhere) {
  EXPECT_EQ(failureOf("Zg"), "base64 comes in fours, not in 2 characters");
  EXPECT_EQ(failureOf("Zm9vY"), "base64 comes in fours, not in 5 characters");
  EXPECT_EQ(failureOf("Zm9-"), "no base64 digit at character 3");
  EXPECT_EQ(failureOf("Zm8\n"), "no base64 digit at character 3");
  EXPECT_EQ(failureOf("Zg==Zg=="), "no base64 digit at character 2");
  EXPECT_EQ(failureOf("Z==="), "no base64 digit at character 1");
  EXPECT_EQ(failureOf("===="), "no base64 digit at character 0");
  EXPECT_EQ(failureOf(std::string_view("Zm9\0", 4)), "no base64 digit at character 3");
  EXPECT_EQ(failureOf("Zh=="), "bits behind the last byte, at character 1");
  EXPECT_EQ(failureOf("Zm9="), "bits behind the last byte, at character 2");
}

TEST(Base64, IsAnotherTextOfTheSameRecord) {
  const KnownMessage& message = messageNamed("dbginfo_key_l2vpn");
  const Json json = parseJson(R"({"f0":0,"f1":0,"f2":0,"f3":"Zm9vYg=="})");
  const OwnedRecord record = fromJson(message, json, ByteText::Base64);
  EXPECT_EQ(toJson(message.record(), record.data())["f3"], "666f6f62");
  EXPECT_EQ(toJson(message.record(), record.data(), ByteText::Base64), json);
}

TEST(Base64, FailuresNameThePath) {
  const auto failure = [](const char* json) -> std::string {
    try {
      fromJson(messageNamed("l2vpn_sync_vpls_ac_update"), parseJson(json), ByteText::Base64);
    } catch (const Failure& failed) {
      return failed.what();
    }
    return "";
  };
  EXPECT_EQ(failure(R"({"f1": {"f8": "0?=="}})"), "f1.f8: no base64 digit at character 1");
  EXPECT_EQ(failure(R"({"f1": {"f8": "Zg=="}})"), "f1.f8: 12 bytes were expected, not 1");
  EXPECT_EQ(failure(R"({"f1": {"f8": 1}})"),
            "f1.f8: a text of base64 digits was expected, not number");
}

}  // namespace
}  // namespace tool
