// A message's JSON, written straight from its bytes, is that of its record.

#include "inspect/json/message_text.hpp"

#include <gtest/gtest.h>

#include "inspect/bytes/failure.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/acceptance.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace inspect {
namespace {

std::string textOf(const KnownMessage& message, const Bytes& bytes, const JsonStyle& style) {
  Text text;
  writeMessage(text, message.schema(), bytes, style);
  return std::string(text.view());
}

std::string recordTextOf(const KnownMessage& message, const Bytes& bytes, const JsonStyle& style) {
  Text text;
  writeRecord(text, message.schema(), decode(message, bytes).data(), style);
  return std::string(text.view());
}

// Messages that receivers accept: random ones, in both arrangements, and damaged ones.
template <typename Check>
void forAcceptedMessages(Check check) {
  size_t tolerated = 0;
  for (const KnownMessage& message : messages()) {
    std::mt19937_64 random(message.id());
    const oracle::Description& type = oracle::descriptionOf(std::string(message.name));
    for (int round = 0; round < 60; ++round) {
      const oracle::RecordImage image(
          type, oracle::randomValue(type, random, static_cast<oracle::Density>(round % 3)));
      OwnedRecord record(message);
      std::memcpy(record.data(), image.data(), message.schema().size);
      Bytes bytes = round % 2 == 0 ? encodeCompact(record) : encode(record, Form::AsSent);
      for (int damage = 0; damage < 4; ++damage) {
        const Acceptance acceptance = acceptanceOf(message.schema(), bytes);
        tolerated += acceptance == Acceptance::Tolerated ? 1 : 0;
        if (acceptance != Acceptance::Rejected) {
          check(message, bytes);
        }
        bytes = oracle::mutate(bytes, random);
      }
    }
  }
  EXPECT_GT(tolerated, 100u);
}

TEST(MessageText, IsThatOfTheDecodedRecord) {
  forAcceptedMessages([](const KnownMessage& message, const Bytes& bytes) {
    for (const JsonStyle& style :
         {JsonStyle{}, JsonStyle{.indent = 2}, JsonStyle{.byteText = ByteText::Base64},
          JsonStyle{.isBigText = true}}) {
      ASSERT_EQ(textOf(message, bytes, style), recordTextOf(message, bytes, style))
          << message.name << ' ' << toHex(bytes);
    }
  });
}

TEST(MessageText, IsReadBackFromItsShortForm) {
  forAcceptedMessages([](const KnownMessage& message, const Bytes& bytes) {
    const std::string text = textOf(message, bytes, {.isWhole = false});
    const OwnedRecord again = fromJson(message, parseJson(text));
    ASSERT_EQ(toJson(message.schema(), again.data()),
              toJson(message.schema(), decode(message, bytes).data()))
        << message.name << ' ' << text;
  });
}

TEST(MessageText, WritesRepeatedItemsOnce) {
  const std::string text = textOf(list(), itemsOfOneVtable(4040, 4), {.isWhole = false});
  const std::string items = text.substr(text.find("\"f1\":["));
  EXPECT_NE(items.find(R"("f4":"00*16384","times":4040}]})"), std::string::npos) << items;
  EXPECT_LT(text.size(), 400u);
  const OwnedRecord record =
      fromJson(list(), parseJson(textOf(list(), itemsOfOneVtable(40, 4), {.isWhole = false})));
  EXPECT_EQ(toJson(list().schema(), record.data()),
            toJson(list().schema(), decode(list(), itemsOfOneVtable(40, 4)).data()));
}

// Items that differ from the one before them, and hold the same long bytes.
TEST(MessageText, RefusesLongTextOfSharedBytes) {
  const Bytes bytes = itemsOfOneTextInTurn(2000);
  ASSERT_EQ(acceptanceOf(list().schema(), bytes), Acceptance::Accepted);
  try {
    refuseLongText(list().schema(), bytes, {.isWhole = false});
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.what(), "shared tables or bytes make its JSON longer than " +
                                  std::to_string(1'048'576 + 16 * bytes.size()) +
                                  " bytes; --all writes it");
  }
  EXPECT_NO_THROW(refuseLongText(list().schema(), bytes, {.isWhole = true}));
  EXPECT_NO_THROW(refuseLongText(list().schema(), itemsOfOneVtable(4040, 4), {.isWhole = false}));
}

TEST(MessageText, RefusesCountsThatAreWrong) {
  for (const char* json :
       {R"({"f1":[{"times":0}]})", R"({"f1":[{"times":-1}]})", R"({"f1":[{"times":"2"}]})",
        R"({"f1":[{"times":4294967295},{}]})", R"({"f1":[{"times":5000}]})",
        R"({"f1":[{"f4":"00*16383"}]})", R"({"f1":[{"f0":"00*99999999999999999999"}]})",
        R"({"f1":[{"f0":"00*4294967295"}]})", R"({"times":1})"}) {
    EXPECT_THROW(fromJson(list(), parseJson(json)), Failure) << json;
  }
  EXPECT_NO_THROW(fromJson(list(), parseJson(R"({"f1":[{"f4":"Ab*16384","times":3}]})")));
}

}  // namespace
}  // namespace inspect
