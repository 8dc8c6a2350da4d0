// What a page contains. browser.py tests what it shows.

#include "inspect/texts/html_page.hpp"

#include <gtest/gtest.h>

#include "inspect/json/record_json.hpp"
#include "inspect/reader/table_reader.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace inspect {
namespace {

const KnownMessage& list() {
  return messageNamed("l2vpn_cfg_query_dfx_rec");
}

Json dataOf(const Bytes& bytes, bool isWhole) {
  const std::string page = htmlPage(list(), readTable(list(), bytes), bytes, isWhole);
  const std::string_view before = "id=\"data\">";
  const size_t begin = page.find(before) + before.size();
  return Json::parse(page.substr(begin, page.find('<', begin) - begin));
}

bool isShown(const Json& data, uint32_t at) {
  return std::ranges::any_of(data["pieces"], [at](const Json& piece) {
    const auto first = piece["at"].get<uint32_t>();
    return first <= at && at - first < piece["hex"].get_ref<const std::string&>().size() / 2;
  });
}

TEST(HtmlPage, ShortensLongContents) {
  const Bytes bytes = itemsOfOneText(1, 10'000, '<');
  const Json shortened = dataOf(bytes, false);
  const auto last = static_cast<uint32_t>(bytes.size()) - 1;
  EXPECT_TRUE(isShown(shortened, last - 9999));
  EXPECT_FALSE(isShown(shortened, last));
  EXPECT_NE(shortened["notes"].dump().find("long contents are shortened"), std::string::npos);
  const Json whole = dataOf(bytes, true);
  EXPECT_TRUE(isShown(whole, last));
  EXPECT_EQ(whole["notes"].dump().find("long contents"), std::string::npos);
}

// Zeros around a table of zeros: equal rows with different meanings.
TEST(HtmlPage, ShowsNewRangeAmongEqualBytes) {
  Bytes bytes = listOf(1);
  put<uint32_t>(bytes, 4);
  put<uint32_t>(bytes, static_cast<uint32_t>(-8));  // at 28, the item; its vtable follows
  put<uint32_t>(bytes, 0);
  putAll<uint16_t>(bytes, {8, 4, 0, 300});
  bytes.resize(600);
  const Json data = dataOf(bytes, false);
  EXPECT_TRUE(isShown(data, 28 + 300));
  EXPECT_FALSE(isShown(data, 28 + 200));
}

TEST(HtmlPage, LimitsSize) {
  const Bytes bytes = itemsOfOneText(4000, 16'384, '<');
  const Json data = dataOf(bytes, true);
  EXPECT_LE(data["ranges"].size(), 10'000u);
  size_t digits = 0;
  for (const Json& piece : data["pieces"]) {
    digits += piece["hex"].get_ref<const std::string&>().size();
  }
  EXPECT_LE(digits, 2u * 65'536);
  EXPECT_EQ(data["length"], bytes.size());
  EXPECT_NE(data["notes"].dump().find("the page ends early"), std::string::npos);
}

}  // namespace
}  // namespace inspect
