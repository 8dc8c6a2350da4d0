// Every message as its peers know it: name, identifier, length when sent. Written down, not worked
// out: a change here is a change of the interface between processes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace harness {

struct ListedMessage {
  std::string name;
  uint32_t id;
  uint32_t fixedLength;  // 0 for a message that is sent in the compact arrangement
};

// Each list is in registration order.
inline const std::vector<ListedMessage> listedConfiguration{
    {"dbginfo_key_l2vpn", 0xFEB5D38D, 0},          {"dbginfo_para_l2vpn", 0xF5550D12, 0},
    {"l2vpn_cfg_query_dfx_cond", 0xE11ADDEF, 168}, {"l2vpn_cfg_query_comm_param", 0xDC5527DE, 0},
    {"l2vpn_cfg_query_comm_rec", 0x345542C5, 0},   {"dbginfo_cmd_key_l2vpn", 0x8B614502, 0},
    {"dbginfo_cmd_ipc_l2vpn", 0x110045FB, 88},     {"dbginfo_endata_l2vpn", 0x494B03FB, 0},
    {"dbginfo_dedata_l2vpn", 0x3CF15A13, 80},      {"l2vpn_cfg_query_dfx_item", 0x77B787DC, 16632},
    {"l2vpn_cfg_query_dfx_key", 0xD5542082, 0},    {"l2vpn_cfg_query_dfx_rec", 0xC900380B, 0},
};

inline const std::vector<ListedMessage> listedStatistics{
    {"l2vpn_stat_pw_stat", 0x98DB4DAE, 128},
};

inline const std::vector<ListedMessage> listedSynchronisation{
    {"l2vpn_sync_vpls_ac", 0xC0E63FBB, 96},
    {"l2vpn_sync_vpls_ac_sub", 0xCC9B977E, 152},
    {"l2vpn_sync_vpls_ac_share", 0xBCE882C7, 120},
    {"l2vpn_sync_vpls_inst", 0xAAAD3DB3, 128},
    {"l2vpn_sync_vpls_inst_info", 0x1DA460D8, 128},
    {"l2vpn_sync_vpls_pw", 0xB4C15BFE, 200},
    {"l2vpn_sync_vpls_pwred_pg", 0x690AF357, 112},
    {"l2vpn_sync_vpls_exp", 0xB12EEF36, 48},
    {"l2vpn_sync_vpls_ac_macdraw", 0x31B1FDED, 48},
    {"l2vpn_sync_vpls_pw_macdraw", 0x0DCBD750, 56},
    {"l2vpn_sync_vpls_inst_macdraw", 0x63243AC5, 48},
    {"l2vpn_sync_vll_ac", 0x193041B6, 112},
    {"l2vpn_sync_extnhp", 0x51561DCE, 48},
    {"l2vpn_sync_vll_pw", 0x1D5518DB, 200},
    {"l2vpn_sync_vll_inst", 0x700AB272, 128},
    {"l2vpn_sync_glb_en", 0x273F1BFE, 112},
    {"l2vpn_sync_ifvlan", 0x11459A9B, 40},
    {"l2vpn_sync_subpw", 0x56D12CA0, 120},
    {"l2vpn_sync_vllexp", 0x0E842F74, 48},
    {"l2vpn_sync_vpls_vsimac", 0x3A8BDEE6, 144},
    {"l2vpn_sync_oam_staticmac", 0xF359BAFE, 136},
    {"l2vpn_sync_pw_pmo", 0x6841D5E3, 48},
    {"l2vpn_sync_vpls_macping", 0x3F72633A, 88},
    {"l2vpn_sync_stp", 0x408A311E, 40},
    {"l2vpn_sync_vpls_ac_update", 0x5EED5F0D, 120},
    {"l2vpn_sync_vpls_ac_delete", 0x37A63707, 120},
    {"l2vpn_sync_vpls_ac_sub_update", 0x284D7DF2, 176},
    {"l2vpn_sync_vpls_ac_sub_delete", 0x8B1FC170, 176},
    {"l2vpn_sync_vpls_ac_share_update", 0xD0C2DEC9, 144},
    {"l2vpn_sync_vpls_ac_share_delete", 0xEF2FE093, 144},
    {"l2vpn_sync_vpls_inst_update", 0x2DFC6305, 152},
    {"l2vpn_sync_vpls_inst_delete", 0x8E52846F, 152},
    {"l2vpn_sync_vpls_inst_info_update", 0x10E8B734, 152},
    {"l2vpn_sync_vpls_inst_info_delete", 0xE10F4B0A, 152},
    {"l2vpn_sync_vpls_pw_update", 0x96732772, 224},
    {"l2vpn_sync_vpls_pw_delete", 0xF9456AF0, 224},
    {"l2vpn_sync_vpls_pwred_pg_update", 0x29C3D5B9, 136},
    {"l2vpn_sync_vpls_pwred_pg_delete", 0x9C625083, 136},
    {"l2vpn_sync_vpls_exp_update", 0xB28C784A, 72},
    {"l2vpn_sync_vpls_exp_delete", 0x5BB1E878, 72},
    {"l2vpn_sync_vpls_ac_macdraw_update", 0x5254D0FF, 72},
    {"l2vpn_sync_vpls_ac_macdraw_delete", 0x7C070DD1, 72},
    {"l2vpn_sync_vpls_pw_macdraw_update", 0xA35CCE8C, 80},
    {"l2vpn_sync_vpls_pw_macdraw_delete", 0x55208772, 80},
    {"l2vpn_sync_vpls_inst_macdraw_update", 0x03EC5657, 72},
    {"l2vpn_sync_vpls_inst_macdraw_delete", 0x70655AB9, 72},
    {"l2vpn_sync_vll_ac_update", 0x89FE5BCA, 136},
    {"l2vpn_sync_vll_ac_delete", 0x3323CBF8, 136},
    {"l2vpn_sync_extnhp_update", 0x8C8A1C62, 72},
    {"l2vpn_sync_extnhp_delete", 0xFD78BD60, 72},
    {"l2vpn_sync_vll_pw_update", 0x8740C8ED, 224},
    {"l2vpn_sync_vll_pw_delete", 0xB8B1DDE7, 224},
    {"l2vpn_sync_vll_inst_update", 0xDAF52346, 152},
    {"l2vpn_sync_vll_inst_delete", 0x0D007DA4, 152},
    {"l2vpn_sync_glb_en_update", 0xC8BE6772, 136},
    {"l2vpn_sync_glb_en_delete", 0x2B90AAF0, 136},
    {"l2vpn_sync_ifvlan_update", 0x313AD5AD, 64},
    {"l2vpn_sync_ifvlan_delete", 0x077944A7, 64},
    {"l2vpn_sync_subpw_update", 0x229FAFFC, 144},
    {"l2vpn_sync_subpw_delete", 0xA2667B62, 144},
    {"l2vpn_sync_vllexp_update", 0xC582AF50, 72},
    {"l2vpn_sync_vllexp_delete", 0x354F61E6, 72},
    {"l2vpn_sync_vpls_vsimac_update", 0x7BE87F9A, 168},
    {"l2vpn_sync_vpls_vsimac_delete", 0x44F1C708, 168},
    {"l2vpn_sync_oam_staticmac_update", 0x42FC4C72, 160},
    {"l2vpn_sync_oam_staticmac_delete", 0xA5CE8FF0, 160},
    {"l2vpn_sync_pw_pmo_update", 0x330693D5, 72},
    {"l2vpn_sync_pw_pmo_delete", 0xE61AB2BF, 72},
    {"l2vpn_sync_vpls_macping_update", 0x62B2992E, 112},
    {"l2vpn_sync_vpls_macping_delete", 0x3EBF1F5C, 112},
    {"l2vpn_sync_stp_update", 0x81733752, 64},
    {"l2vpn_sync_stp_delete", 0x000C98D0, 64},
};

inline const ListedMessage& listed(const std::string& name) {
  for (const auto* const list : {&listedConfiguration, &listedStatistics, &listedSynchronisation}) {
    for (const ListedMessage& message : *list) {
      if (message.name == name) {
        return message;
      }
    }
  }
  static const ListedMessage none{};
  return none;
}

}  // namespace harness
