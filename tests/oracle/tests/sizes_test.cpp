// Offset words and table lengths, written out by hand. The agreement tests compare sizes and
// positions with the schemas.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "oracle/values/value.hpp"

namespace oracle {
namespace {

// The offset words of the present non-scalar slots, in slot order.
std::vector<uint64_t> offsetWords(const Description& type, const Value& value) {
  const std::vector<uint8_t> buffer = packed(type, value);
  const uint64_t table = numberIn(buffer, 0, 4);
  std::vector<uint64_t> words;
  for (uint64_t slot = 0; slot < type.fields.size(); ++slot) {
    const uint64_t entry = numberIn(buffer, 8 + 2 * slot, 2);
    if (!isScalar(type.fields[slot].kind) && entry != 0) {
      words.push_back(numberIn(buffer, table + entry, 4));
    }
  }
  return words;
}

TEST(Oracle, WrapsEveryRecordInTwentyFourMoreBytes) {
  for (const Description& wrapper : descriptions()) {
    if (!wrapper.wrapper) {
      continue;
    }
    const Description& base = *wrapper.fields[1].nested;
    EXPECT_EQ(fixedLength(wrapper), fixedLength(base) + 24) << wrapper.name;
    EXPECT_EQ(wrapper.vtableLength, 8U);
    Value value = zeroValue(wrapper);
    const uint64_t baseSize = compactSize(base, zeroValue(base));
    EXPECT_EQ(compactSize(wrapper, value), baseSize - 4 + 20) << wrapper.name;
    EXPECT_EQ(offsetWords(wrapper, value), (std::vector<uint64_t>{4 + base.vtableLength}));
    value[0].scalar = 1;
    EXPECT_EQ(compactSize(wrapper, value), baseSize - 4 + 22) << wrapper.name;
  }
}

TEST(Oracle, LeadsFromOffsetWordsToTheirStrings) {
  const std::map<std::string, std::vector<uint64_t>> stated = {
      {"l2vpn_stat_pw_stat", {4}},
      {"l2vpn_cfg_query_dfx_item", {16, 48, 72, 200}},
      {"l2vpn_sync_vpls_ac", {8, 20}},
      {"l2vpn_sync_vpls_ac_sub", {8, 20}},
      {"l2vpn_sync_vpls_ac_share", {8, 20}},
      {"l2vpn_sync_vpls_inst", {8, 32}},
      {"l2vpn_sync_vpls_inst_info", {8, 32}},
      {"l2vpn_sync_vpls_pw", {8, 36}},
      {"l2vpn_sync_vpls_pwred_pg", {8, 24}},
      {"l2vpn_sync_vll_ac", {8, 20}},
      {"l2vpn_sync_vll_pw", {8, 36}},
      {"l2vpn_sync_vll_inst", {8, 40}},
      {"l2vpn_sync_subpw", {8, 36}},
      {"l2vpn_sync_glb_en", {8, 36}},
      {"l2vpn_sync_vpls_vsimac", {12, 18, 30}},
      {"l2vpn_sync_oam_staticmac", {12, 18, 42}},
      {"l2vpn_sync_vpls_macping", {4}},
  };
  for (const auto& [name, words] : stated) {
    const Description& type = descriptionOf(name);
    EXPECT_EQ(offsetWords(type, zeroValue(type)), words) << name;
    EXPECT_EQ(offsetWords(type, withScalars(type, 7)), words) << name;
  }
}

TEST(Oracle, CountsArraysIntoTheTableLength) {
  const std::map<std::string, uint64_t> arrayBytes = {
      {"vpls_ac", 40},        {"vpls_ac_sub", 40},    {"vpls_ac_share", 40}, {"vpls_inst", 64},
      {"vpls_exp", 0},        {"vpls_inst_info", 64}, {"vpls_pw", 72},       {"vpls_pwred_pg", 48},
      {"vpls_ac_macdraw", 0}, {"glb_en", 72},         {"vpls_vsimac", 54},   {"oam_staticmac", 78},
      {"vpls_macping", 14}};
  for (const auto& [record, added] : arrayBytes) {
    const Description& type = descriptionOf("l2vpn_sync_" + record);
    EXPECT_EQ(numberIn(packed(type, zeroValue(type)), 6, 2), 4 + added) << record;
  }
  const Description& item = descriptionOf("l2vpn_cfg_query_dfx_item");
  EXPECT_EQ(numberIn(packed(item, zeroValue(item)), 6, 2), 16604U);
  EXPECT_EQ(numberIn(packed(item, withScalars(item, 1)), 6, 2), 16608U);
}

}  // namespace
}  // namespace oracle
