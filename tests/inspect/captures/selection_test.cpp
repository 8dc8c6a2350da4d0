// Selections of tables, and tables from their JSON.

#include "inspect/captures/selection.hpp"

#include <gtest/gtest.h>

#include "inspect/messages/codec.hpp"

namespace inspect {
namespace {

bool holds(const std::string& condition, const char* table) {
  return Condition(condition).holds(Json::parse(table));
}

TEST(Condition, ComparesNumbersAndTexts) {
  const char* const table = R"({"extra": 18446744073709551615, "message": "l2vpn_sync_stp",
                                "record": {"f0": 42, "f1": {"f8": "00ff"}}})";
  for (const char* const condition :
       {"f0 == 42", "f0==0x2a", "f0 != 41", "f0 < 43", "f0 <= 42", "f0 > 41", "f0 >= 42",
        "extra == 18446744073709551615", "extra > 18446744073709551614", "f1.f8 == 00ff",
        "f1.f8 == \"00ff\"", "message == l2vpn_sync_stp", "f0 != text"}) {
    EXPECT_TRUE(holds(condition, table)) << condition;
  }
  for (const char* const condition :
       {"f0 == 43", "f0 != 42", "f0 < 42", "f0 > 42", "extra < 18446744073709551615",
        "f1.f8 == 00fe", "f0 == text", "f2 == 42", "f1 == 42", "f0.f0 == 42", "f1.f8.f0 == 1"}) {
    EXPECT_FALSE(holds(condition, table)) << condition;
  }
}

TEST(Condition, ReachesItems) {
  const char* const table = R"({"record": {"f1": [{"f0": 1}, {"f0": 2}]}})";
  EXPECT_TRUE(holds("f1[].f0 == 2", table));
  EXPECT_TRUE(holds("f1[1].f0 == 2", table));
  EXPECT_FALSE(holds("f1[0].f0 == 2", table));
  EXPECT_FALSE(holds("f1[2].f0 == 2", table));
  EXPECT_FALSE(holds("f1[].f0 == 3", table));
  EXPECT_FALSE(holds("f1[-1].f0 == 2", table));
  EXPECT_FALSE(holds("f1[.f0 == 2", table));
}

TEST(Condition, CountsItemsThatStandForSeveral) {
  const char* const table = R"({"record": {"f1": [{"f0": 1, "times": 3}, {"f0": 2}]}})";
  EXPECT_TRUE(holds("f1[2].f0 == 1", table));
  EXPECT_TRUE(holds("f1[3].f0 == 2", table));
  EXPECT_FALSE(holds("f1[4].f0 == 2", table));
}

TEST(Condition, RejectsWhatIsNoComparison) {
  for (const char* const text : {"", "f0", "f0 = 1", "f0 ! 1", "== 1", "f0 ==", " == "}) {
    EXPECT_THROW(Condition{text}, Failure) << text;
  }
}

TEST(Selection, RejectsPathsThatNoTableHas) {
  Selection selection;
  selection.conditions.emplace_back("f1.f6 == 1");
  selection.check();
  selection.message = &messageNamed("l2vpn_sync_stp");
  EXPECT_THROW(selection.check(), Failure);
  for (const char* const path :
       {"f1.f99 == 1", "f1[].f0 == 1", "f1 == 1", "f1.f6.f0 == 1", "g == 1"}) {
    Selection mistaken;
    mistaken.message = &messageNamed("l2vpn_sync_vpls_ac_update");
    mistaken.conditions.emplace_back(path);
    EXPECT_THROW(mistaken.check(), Failure) << path;
  }
}

TEST(TableJson, IsReadAsItWasWritten) {
  for (const KnownMessage& message : messages()) {
    for (const Form form : {Form::AsSent, Form::Compact}) {
      const Bytes bytes = encode(fromJson(message, Json::object()), form);
      const Table table{UINT64_MAX, 7, UINT32_MAX, message.id(), UINT64_MAX, bytes, 3};
      const JsonStyle style{.byteText = ByteText::Base64, .isBigText = true};
      const OwnedTable again = tableFromJson(tableJson(table, style), ByteText::Base64);
      EXPECT_EQ(again.bytes, bytes) << message.name;
      EXPECT_EQ(tableJson(again.table), tableJson(table)) << message.name;
    }
  }
  const Bytes bytes{1, 2, 3};
  const Table unknown{0, 0, 0, 0xDEAD, 0, bytes};
  EXPECT_EQ(tableFromJson(tableJson(unknown)).bytes, bytes);
}

TEST(TableJson, RejectsWhatIsNoTable) {
  for (const char* const text :
       {"[]", "{}", R"({"message": "l2vpn_sync_stp"})", R"({"message": "no", "record": {}})",
        R"({"message": 5, "record": {}})", R"({"identifier": 5})",
        R"({"identifier": 4294967296, "bytes": ""})",
        R"({"message": "l2vpn_sync_stp", "identifier": 5, "record": {}})",
        R"({"message": "l2vpn_sync_stp", "record": {}, "source": -1})",
        R"({"message": "l2vpn_sync_stp", "record": {}, "tiem": ""})",
        R"({"identifier": 5, "bytes": "0"})"}) {
    EXPECT_THROW(tableFromJson(Json::parse(text)), Failure) << text;
  }
}

TEST(Time, IsReadWithAndWithoutItsEnd) {
  constexpr uint64_t second = 1'000'000'000;
  EXPECT_EQ(timeFromText("1970-01-02"), 86400 * second);
  EXPECT_EQ(timeFromText("1970-01-01T01:00"), 3600 * second);
  EXPECT_EQ(timeFromText("1970-01-01T00:00:01.5Z"), second + second / 2);
  EXPECT_EQ(timeFromText(timeText(UINT64_MAX)), UINT64_MAX);
  for (const char* const text : {"", "now", "1969-12-31", "1970-01-01T", "1970-01-01:30",
                                 "1970-01-01T00:00:01.1234567891", "2555-01-01", "1970-13-01"}) {
    EXPECT_FALSE(timeFromText(text)) << text;
  }
}

}  // namespace
}  // namespace inspect
