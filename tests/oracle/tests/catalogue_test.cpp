// Which messages there are, their identifiers and their C records, written out by hand.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "oracle/messages/description.hpp"

namespace oracle {
namespace {

const std::vector<std::string> syncRecords = {"vpls_ac",
                                              "vpls_ac_sub",
                                              "vpls_ac_share",
                                              "vpls_inst",
                                              "vpls_inst_info",
                                              "vpls_pw",
                                              "vpls_pwred_pg",
                                              "vpls_exp",
                                              "vpls_ac_macdraw",
                                              "vpls_pw_macdraw",
                                              "vpls_inst_macdraw",
                                              "vll_ac",
                                              "extnhp",
                                              "vll_pw",
                                              "vll_inst",
                                              "glb_en",
                                              "ifvlan",
                                              "subpw",
                                              "vllexp",
                                              "vpls_vsimac",
                                              "oam_staticmac",
                                              "pw_pmo",
                                              "vpls_macping",
                                              "stp"};

TEST(Oracle, KnowsEightyFiveMessagesInRegistrationOrder) {
  std::vector<std::string> expected = {
      "dbginfo_key_l2vpn",          "dbginfo_para_l2vpn",       "l2vpn_cfg_query_dfx_cond",
      "l2vpn_cfg_query_comm_param", "l2vpn_cfg_query_comm_rec", "dbginfo_cmd_key_l2vpn",
      "dbginfo_cmd_ipc_l2vpn",      "dbginfo_endata_l2vpn",     "dbginfo_dedata_l2vpn",
      "l2vpn_cfg_query_dfx_item",   "l2vpn_cfg_query_dfx_key",  "l2vpn_cfg_query_dfx_rec",
      "l2vpn_stat_pw_stat"};
  for (const std::string& record : syncRecords) {
    expected.push_back("l2vpn_sync_" + record);
  }
  for (const std::string& record : syncRecords) {
    expected.push_back("l2vpn_sync_" + record + "_update");
    expected.push_back("l2vpn_sync_" + record + "_delete");
  }
  std::vector<std::string> names;
  for (const Description& type : descriptions()) {
    names.push_back(type.name);
  }
  EXPECT_EQ(names.size(), 85U);
  EXPECT_EQ(names, expected);
}

TEST(Oracle, CountsTwelveOneAndSeventyTwoMessagesByService) {
  std::map<std::string, int> counts;
  for (const Description& type : descriptions()) {
    ++counts[type.service];
  }
  EXPECT_EQ(counts,
            (std::map<std::string, int>{{"l2vpn_cfg", 12}, {"l2vpn_stat", 1}, {"l2vpn_sync", 72}}));
}

TEST(Oracle, GivesEveryMessageItsOwnIdentifier) {
  std::set<uint32_t> ids;
  for (const Description& type : descriptions()) {
    ids.insert(type.id);
  }
  EXPECT_EQ(ids.size(), 85U);
}

TEST(Oracle, HashesNamesToTheIdentifiersPeersUse) {
  const std::map<std::string, std::pair<std::string, uint32_t>> stated = {
      {"dbginfo_key_l2vpn", {"dbginfo_key_l2vpn", 0xFEB5D38D}},
      {"dbginfo_para_l2vpn", {"dbginfo_para_l2vpn", 0xF5550D12}},
      {"l2vpn_cfg_query_dfx_cond", {"l2vpn_cfg_query_dfx_cond", 0xE11ADDEF}},
      {"l2vpn_cfg_query_comm_param", {"l2vpn_cfg_query_comm_param", 0xDC5527DE}},
      {"l2vpn_cfg_query_comm_rec", {"l2vpn_cfg_query_comm_rec", 0x345542C5}},
      {"dbginfo_cmd_key_l2vpn", {"dbginfo_cmd_key_l2vpn", 0x8B614502}},
      {"dbginfo_cmd_ipc_l2vpn", {"dbginfo_cmd_ipc_l2vpn", 0x110045FB}},
      {"dbginfo_endata_l2vpn", {"dbginfo_endata_l2vpn", 0x494B03FB}},
      {"dbginfo_dedata_l2vpn", {"dbginfo_dedata_l2vpn", 0x3CF15A13}},
      {"l2vpn_cfg_query_dfx_item", {"l2vpn_cfg_query_dfx_item", 0x77B787DC}},
      {"l2vpn_cfg_query_dfx_key", {"l2vpn_cfg_query_dfx_key", 0xD5542082}},
      {"l2vpn_cfg_query_dfx_rec", {"l2vpn_cfg_query_dfx_rec", 0xC900380B}},
      {"l2vpn_stat_pw_stat", {"l2vpn_stat.pw_stat", 0x98DB4DAE}},
      {"l2vpn_sync_vpls_ac", {"l2vpn_sync.vpls_ac", 0xC0E63FBB}},
      {"l2vpn_sync_vpls_ac_update", {"l2vpn_sync.vpls_ac_update", 0x5EED5F0D}},
      {"l2vpn_sync_vpls_ac_delete", {"l2vpn_sync.vpls_ac_delete", 0x37A63707}},
  };
  for (const auto& [name, identity] : stated) {
    EXPECT_EQ(descriptionOf(name).hashedName, identity.first);
    EXPECT_EQ(descriptionOf(name).id, identity.second) << name;
  }
}

TEST(Oracle, LaysRecordsOutAsCompilersDo) {
  const std::map<std::string, uint32_t> stated = {
      {"dbginfo_key_l2vpn", 24},          {"dbginfo_para_l2vpn", 40},
      {"l2vpn_cfg_query_dfx_cond", 136},  {"l2vpn_cfg_query_comm_param", 24},
      {"l2vpn_cfg_query_comm_rec", 32},   {"dbginfo_cmd_key_l2vpn", 80},
      {"dbginfo_cmd_ipc_l2vpn", 44},      {"dbginfo_endata_l2vpn", 64},
      {"dbginfo_dedata_l2vpn", 40},       {"l2vpn_cfg_query_dfx_item", 16572},
      {"l2vpn_cfg_query_dfx_key", 160},   {"l2vpn_cfg_query_dfx_rec", 48},
      {"l2vpn_stat_pw_stat", 80},         {"l2vpn_sync_vpls_ac", 48},
      {"l2vpn_sync_vpls_ac_sub", 72},     {"l2vpn_sync_vpls_ac_share", 56},
      {"l2vpn_sync_vpls_inst", 72},       {"l2vpn_sync_vpls_inst_info", 72},
      {"l2vpn_sync_vpls_exp", 16},        {"l2vpn_sync_vpls_pw", 120},
      {"l2vpn_sync_vpls_pwred_pg", 60},   {"l2vpn_sync_vpls_ac_macdraw", 20},
      {"l2vpn_sync_vpls_pw_macdraw", 24}, {"l2vpn_sync_vpls_inst_macdraw", 20},
      {"l2vpn_sync_vpls_ac_update", 52},
  };
  for (const auto& [name, size] : stated) {
    EXPECT_EQ(descriptionOf(name).recordSize, size) << name;
  }
}

std::vector<uint32_t> fieldOffsets(const std::string& name) {
  std::vector<uint32_t> offsets;
  for (const Field& field : descriptionOf(name).fields) {
    if (field.kind == Kind::Bytes || field.kind == Kind::Vector) {
      offsets.push_back(field.lengthOffset);
    }
    offsets.push_back(field.offset);
  }
  return offsets;
}

TEST(Oracle, PlacesFieldsAtTheirRecordOffsets) {
  using Offsets = std::vector<uint32_t>;
  EXPECT_EQ(fieldOffsets("dbginfo_key_l2vpn"), (Offsets{0, 2, 4, 8, 16}));
  EXPECT_EQ(fieldOffsets("dbginfo_para_l2vpn"), (Offsets{0, 4, 8, 12, 16, 20, 24, 28, 32}));
  EXPECT_EQ(fieldOffsets("dbginfo_cmd_key_l2vpn"), (Offsets{0, 4, 8, 16, 56}));
  EXPECT_EQ(fieldOffsets("dbginfo_cmd_ipc_l2vpn"),
            (Offsets{0, 4, 8, 10, 12, 16, 20, 24, 28, 32, 36, 38, 40}));
  EXPECT_EQ(fieldOffsets("dbginfo_endata_l2vpn"),
            (Offsets{0, 4, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 36, 40, 48, 52, 56}));
  EXPECT_EQ(fieldOffsets("dbginfo_dedata_l2vpn"),
            (Offsets{0, 4, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 36}));
  EXPECT_EQ(fieldOffsets("l2vpn_cfg_query_dfx_key"), (Offsets{0, 24}));
  EXPECT_EQ(fieldOffsets("l2vpn_cfg_query_dfx_rec"), (Offsets{0, 32, 40}));
  EXPECT_EQ(fieldOffsets("l2vpn_cfg_query_dfx_item"), (Offsets{0, 32, 36, 60, 188}));
  EXPECT_EQ(fieldOffsets("l2vpn_stat_pw_stat"),
            (Offsets{0, 4, 8, 9, 12, 16, 24, 32, 40, 48, 56, 64, 72}));
}

}  // namespace
}  // namespace oracle
