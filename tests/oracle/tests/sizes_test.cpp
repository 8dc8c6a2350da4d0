// Every size and position of both arrangements, written out by hand.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "oracle/values/value.hpp"

namespace oracle {
namespace {

struct Sizes {
  const char* name;
  uint32_t slots;
  uint32_t vtable;
  uint32_t smallest;  // compact, all zero
  uint32_t largest;   // compact, every scalar set and every pointer null
};

constexpr Sizes sizes[] = {
    {"dbginfo_key_l2vpn", 4, 12, 20, 28},
    {"dbginfo_para_l2vpn", 8, 20, 28, 52},
    {"l2vpn_cfg_query_dfx_cond", 3, 10, 154, 162},
    {"l2vpn_cfg_query_comm_param", 3, 10, 18, 26},
    {"l2vpn_cfg_query_comm_rec", 5, 14, 22, 38},
    {"dbginfo_cmd_key_l2vpn", 5, 14, 70, 112},
    {"dbginfo_cmd_ipc_l2vpn", 13, 30, 38, 80},
    {"dbginfo_endata_l2vpn", 15, 34, 42, 80},
    {"dbginfo_dedata_l2vpn", 13, 30, 38, 76},
    {"l2vpn_cfg_query_dfx_item", 5, 14, 16622, 16626},
    {"l2vpn_cfg_query_dfx_key", 2, 8, 188, 204},
    {"l2vpn_cfg_query_dfx_rec", 2, 8, 38, 54},
    {"l2vpn_stat_pw_stat", 13, 30, 49, 126},
    {"l2vpn_sync_vpls_ac", 10, 24, 72, 93},
    {"l2vpn_sync_vpls_ac_sub", 24, 52, 100, 148},
    {"l2vpn_sync_vpls_ac_share", 16, 36, 84, 116},
    {"l2vpn_sync_vpls_inst", 13, 30, 102, 126},
    {"l2vpn_sync_vpls_inst_info", 13, 30, 102, 126},
    {"l2vpn_sync_vpls_exp", 7, 18, 26, 42},
    {"l2vpn_sync_vpls_pw", 25, 54, 134, 198},
    {"l2vpn_sync_vpls_pwred_pg", 11, 26, 82, 110},
    {"l2vpn_sync_vpls_ac_macdraw", 7, 18, 26, 46},
    {"l2vpn_sync_vpls_pw_macdraw", 9, 22, 30, 54},
    {"l2vpn_sync_vpls_inst_macdraw", 7, 18, 26, 46},
    {"l2vpn_sync_vll_ac", 14, 32, 80, 107},
    {"l2vpn_sync_extnhp", 6, 16, 24, 45},
    {"l2vpn_sync_vll_pw", 25, 54, 134, 195},
    {"l2vpn_sync_vll_inst", 9, 22, 110, 126},
    {"l2vpn_sync_vllexp", 7, 18, 26, 42},
    {"l2vpn_sync_subpw", 7, 18, 98, 112},
    {"l2vpn_sync_pw_pmo", 7, 18, 26, 46},
    {"l2vpn_sync_glb_en", 5, 14, 94, 106},
    {"l2vpn_sync_ifvlan", 6, 16, 24, 40},
    {"l2vpn_sync_stp", 4, 12, 20, 36},
    {"l2vpn_sync_vpls_vsimac", 17, 38, 100, 142},
    {"l2vpn_sync_oam_staticmac", 10, 24, 110, 132},
    {"l2vpn_sync_vpls_macping", 13, 30, 52, 86},
};

struct Fixed {
  const char* name;
  uint32_t tableLength;
  uint32_t vtablePosition;
  uint32_t length;
};

constexpr Fixed fixedForms[] = {
    {"l2vpn_cfg_query_dfx_cond", 148, 152, 168}, {"dbginfo_cmd_ipc_l2vpn", 46, 52, 88},
    {"dbginfo_dedata_l2vpn", 42, 48, 80},        {"l2vpn_cfg_query_dfx_item", 16608, 16612, 16632},
    {"l2vpn_stat_pw_stat", 92, 96, 128},         {"l2vpn_sync_vpls_ac", 65, 72, 96},
    {"l2vpn_sync_vpls_ac_sub", 92, 96, 152},     {"l2vpn_sync_vpls_ac_share", 76, 80, 120},
    {"l2vpn_sync_vpls_inst", 92, 96, 128},       {"l2vpn_sync_vpls_inst_info", 92, 96, 128},
    {"l2vpn_sync_vpls_exp", 20, 24, 48},         {"l2vpn_sync_vpls_pw", 140, 144, 200},
    {"l2vpn_sync_vpls_pwred_pg", 80, 84, 112},   {"l2vpn_sync_vpls_ac_macdraw", 24, 28, 48},
    {"l2vpn_sync_vpls_pw_macdraw", 28, 32, 56},  {"l2vpn_sync_vpls_inst_macdraw", 24, 28, 48},
    {"l2vpn_sync_vll_ac", 71, 76, 112},          {"l2vpn_sync_extnhp", 25, 32, 48},
    {"l2vpn_sync_vll_pw", 137, 144, 200},        {"l2vpn_sync_vll_inst", 100, 104, 128},
    {"l2vpn_sync_vllexp", 20, 24, 48},           {"l2vpn_sync_subpw", 90, 96, 120},
    {"l2vpn_sync_pw_pmo", 24, 28, 48},           {"l2vpn_sync_glb_en", 88, 92, 112},
    {"l2vpn_sync_ifvlan", 20, 24, 40},           {"l2vpn_sync_stp", 20, 24, 40},
    {"l2vpn_sync_vpls_vsimac", 100, 104, 144},   {"l2vpn_sync_oam_staticmac", 104, 108, 136},
    {"l2vpn_sync_vpls_macping", 52, 56, 88},
};

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

TEST(Oracle, StatesCompactSizesOfEveryRecord) {
  EXPECT_EQ(std::size(sizes), 37U);
  for (const Sizes& row : sizes) {
    const Description& type = descriptionOf(row.name);
    EXPECT_EQ(type.fields.size(), row.slots) << row.name;
    EXPECT_EQ(type.vtableLength, row.vtable) << row.name;
    EXPECT_EQ(compactSize(type, zeroValue(type)), row.smallest) << row.name;
    EXPECT_EQ(compactSize(type, withScalars(type, UINT64_MAX)), row.largest) << row.name;
    EXPECT_EQ(numberIn(packed(type, zeroValue(type)), 0, 4), 4 + row.vtable) << row.name;
  }
}

TEST(Oracle, StatesFixedSizesOfEveryRecordSentSo) {
  std::set<std::string> sentFixed;
  for (const Fixed& row : fixedForms) {
    const FixedLayout layout = fixedLayout(descriptionOf(row.name));
    EXPECT_EQ(layout.tableLength, row.tableLength) << row.name;
    EXPECT_EQ(layout.vtablePosition, row.vtablePosition) << row.name;
    EXPECT_EQ(layout.length, row.length) << row.name;
    EXPECT_EQ(fixedLength(descriptionOf(row.name)), row.length) << row.name;
    sentFixed.insert(row.name);
  }
  for (const Description& type : descriptions()) {
    EXPECT_EQ(type.sentFixed, type.wrapper || sentFixed.count(type.name) == 1) << type.name;
    EXPECT_EQ(fixedLength(type) == 0, !type.sentFixed) << type.name;
  }
}

TEST(Oracle, WrapsEveryRecordInTwentyFourMoreBytes) {
  const std::map<std::string, uint32_t> stated = {{"vpls_ac", 120},
                                                  {"vpls_ac_sub", 176},
                                                  {"vpls_ac_share", 144},
                                                  {"vpls_inst", 152},
                                                  {"vpls_inst_info", 152},
                                                  {"vpls_exp", 72},
                                                  {"vpls_pw", 224},
                                                  {"vpls_pwred_pg", 136},
                                                  {"vpls_ac_macdraw", 72},
                                                  {"vpls_pw_macdraw", 80},
                                                  {"vpls_inst_macdraw", 72},
                                                  {"vll_ac", 136},
                                                  {"extnhp", 72},
                                                  {"vll_pw", 224},
                                                  {"vll_inst", 152},
                                                  {"vllexp", 72},
                                                  {"subpw", 144},
                                                  {"pw_pmo", 72},
                                                  {"glb_en", 136},
                                                  {"ifvlan", 64},
                                                  {"stp", 64},
                                                  {"vpls_vsimac", 168},
                                                  {"oam_staticmac", 160},
                                                  {"vpls_macping", 112}};
  EXPECT_EQ(stated.size(), 24U);
  for (const auto& [record, length] : stated) {
    const Description& base = descriptionOf("l2vpn_sync_" + record);
    for (const char* change : {"_update", "_delete"}) {
      const Description& wrapper = descriptionOf(base.name + change);
      EXPECT_EQ(fixedLength(wrapper), length) << wrapper.name;
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
  EXPECT_EQ(compactSize(descriptionOf("l2vpn_sync_vll_ac_update"),
                        zeroValue(descriptionOf("l2vpn_sync_vll_ac_update"))),
            96U);
}

TEST(Oracle, KeepsSlotEntriesOfFixedImagesConstant) {
  const std::map<std::string, std::vector<uint32_t>> stated = {
      {"dbginfo_cmd_ipc_l2vpn", {4, 8, 12, 14, 16, 20, 24, 28, 32, 34, 38, 40, 42}},
      {"dbginfo_dedata_l2vpn", {4, 8, 12, 14, 16, 18, 20, 22, 24, 28, 32, 34, 38}},
      {"l2vpn_cfg_query_dfx_cond", {4, 8, 12}},
      {"l2vpn_stat_pw_stat", {4, 8, 12, 13, 24, 28, 36, 44, 52, 60, 68, 76, 84}},
      {"l2vpn_sync_vpls_ac", {4, 8, 12, 16, 20, 21, 22, 24, 25, 45}},
      {"l2vpn_sync_vpls_ac_sub", {4,  8,  12, 14, 16, 20, 24, 25, 26, 28, 30, 32,
                                  33, 34, 35, 36, 40, 42, 44, 46, 47, 48, 52, 72}},
      {"l2vpn_sync_vpls_ac_share", {4, 8, 12, 16, 20, 22, 24, 25, 26, 28, 30, 32, 33, 34, 36, 56}},
      {"l2vpn_sync_vpls_inst", {4, 8, 12, 16, 17, 18, 20, 21, 22, 23, 24, 28, 60}},
      {"l2vpn_sync_vpls_inst_info", {4, 8, 12, 16, 17, 18, 20, 21, 22, 23, 24, 28, 60}},
      {"l2vpn_sync_vpls_exp", {4, 8, 12, 16, 17, 18, 19}},
      {"l2vpn_sync_vpls_pw", {4,  8,  12, 16, 20, 21, 22, 24, 28, 32, 33, 34, 36,
                              40, 44, 48, 50, 52, 56, 60, 64, 66, 67, 68, 104}},
      {"l2vpn_sync_vpls_pwred_pg", {4, 8, 12, 16, 20, 24, 25, 26, 28, 32, 56}},
      {"l2vpn_sync_vpls_ac_macdraw", {4, 8, 12, 16, 20, 21, 22}},
      {"l2vpn_sync_vpls_pw_macdraw", {4, 8, 12, 13, 14, 15, 16, 20, 24}},
      {"l2vpn_sync_vpls_inst_macdraw", {4, 8, 12, 16, 17, 18, 20}},
      {"l2vpn_sync_vll_ac", {4, 8, 12, 16, 20, 21, 22, 24, 26, 27, 28, 30, 31, 51}},
      {"l2vpn_sync_vll_ac_update", {4, 6}},
  };
  for (const auto& [name, entries] : stated) {
    EXPECT_EQ(fixedLayout(descriptionOf(name)).slotEntries, entries) << name;
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
