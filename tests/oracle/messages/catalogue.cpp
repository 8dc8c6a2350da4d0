#include "oracle/messages/catalogue.hpp"

#include "oracle/messages/description.hpp"

namespace oracle {
namespace {

constexpr bool compact = false;
constexpr bool fixed = true;
constexpr bool byTableReader = false;
constexpr bool byItself = true;
constexpr bool scalarsFirst = false;
constexpr bool inSlotOrder = true;
constexpr uint64_t unlimited = UINT64_MAX;

CatalogueEntry configuration(const char* name, const char* fields, bool sentFixed, bool ownRoot,
                             bool slotOrder = inSlotOrder, uint64_t largestSize = largestU32) {
  return {name, fields, sentFixed, ownRoot, slotOrder, largestSize};
}

CatalogueEntry synchronisation(const char* name, const char* fields) {
  return {name, fields, fixed, byTableReader, scalarsFirst, unlimited};
}

}  // namespace

const std::vector<CatalogueEntry>& configurationCatalogue() {
  static const std::vector<CatalogueEntry> entries = {
      configuration("dbginfo_key_l2vpn", "u16 u16 u32 bytes", compact, byItself),
      configuration("dbginfo_para_l2vpn", "u16 u32 u32 u32 u32 u16 u32 bytes", compact,
                    byTableReader),
      configuration("l2vpn_cfg_query_dfx_cond", "u32 u32 bytes[128]", fixed, byItself),
      configuration("l2vpn_cfg_query_comm_param", "u32 u32 bytes", compact, byItself),
      configuration("l2vpn_cfg_query_comm_rec", "u32 u32 u32 bytes u32", compact, byItself),
      configuration("dbginfo_cmd_key_l2vpn",
                    "u32 u32 u16 table:dbginfo_para_l2vpn table:dbginfo_key_l2vpn", compact,
                    byItself, inSlotOrder, 0xFFFFFFF7),
      configuration("dbginfo_cmd_ipc_l2vpn", "u32 u32 u16 u16 u32 u32 u32 u32 u16 u32 u16 u16 u32",
                    fixed, byItself),
      configuration("dbginfo_endata_l2vpn",
                    "u32 u32 u16 u16 u16 u16 u16 u16 u32 u32 u16 u32 bytes u32 bytes", compact,
                    byItself),
      configuration("dbginfo_dedata_l2vpn", "u32 u32 u16 u16 u16 u16 u16 u16 u32 u32 u16 u32 u32",
                    fixed, byItself),
      configuration("l2vpn_cfg_query_dfx_item", "bytes[32] u32 bytes[24] bytes[128] bytes[16384]",
                    fixed, byItself, scalarsFirst),
      configuration("l2vpn_cfg_query_dfx_key",
                    "table:l2vpn_cfg_query_comm_param table:l2vpn_cfg_query_dfx_cond", compact,
                    byItself, inSlotOrder, 0xFFFFFFFE),
      configuration("l2vpn_cfg_query_dfx_rec",
                    "table:l2vpn_cfg_query_comm_rec vector:l2vpn_cfg_query_dfx_item", compact,
                    byTableReader),
  };
  return entries;
}

const std::vector<CatalogueEntry>& statisticsCatalogue() {
  static const std::vector<CatalogueEntry> entries = {
      {"l2vpn_stat_pw_stat", "u32 u32 u8 bytes[3] u32 u64 u64 u64 u64 u64 u64 u64 u64", fixed,
       byTableReader, scalarsFirst, unlimited},
  };
  return entries;
}

const std::vector<CatalogueEntry>& synchronisationCatalogue() {
  static const std::vector<CatalogueEntry> entries = {
      synchronisation("vpls_ac", "u32 u32 u32 u32 u8 u8 u16 u8 bytes[12] bytes[12]"),
      synchronisation("vpls_ac_sub",
                      "u32 u32 u16 u16 u32 u32 u8 u8 u16 u16 u16 u8 u8 u8 u8 u32 u16 u16 u16 u8 u8 "
                      "u32 bytes[12] bytes[12]"),
      synchronisation("vpls_ac_share",
                      "u32 u32 u32 u32 u16 u16 u8 u8 u16 u16 u16 u8 u8 u16 bytes[12] bytes[12]"),
      synchronisation("vpls_inst", "u32 u32 u32 u8 u8 u16 u8 u8 u8 u8 u32 bytes[24] bytes[24]"),
      synchronisation("vpls_inst_info",
                      "u32 u32 u32 u8 u8 u16 u8 u8 u8 u8 u32 bytes[24] bytes[24]"),
      synchronisation("vpls_pw",
                      "u32 u32 u32 u32 u8 u8 u16 u32 u32 u8 u8 u16 u32 u32 u32 u16 u16 u32 u32 u32 "
                      "u16 u8 u8 bytes[28] bytes[28]"),
      synchronisation("vpls_pwred_pg", "u32 u32 u32 u32 u32 u8 u8 u16 u32 bytes[16] bytes[16]"),
      synchronisation("vpls_exp", "u32 u32 u32 u8 u8 u8 u8"),
      synchronisation("vpls_ac_macdraw", "u32 u32 u32 u32 u8 u8 u16"),
      synchronisation("vpls_pw_macdraw", "u32 u32 u8 u8 u8 u8 u32 u32 u32"),
      synchronisation("vpls_inst_macdraw", "u32 u32 u32 u8 u8 u16 u32"),
      synchronisation("vll_ac", "u32 u32 u32 u32 u8 u8 u16 u16 u8 u8 u16 u8 bytes[12] bytes[12]"),
      synchronisation("extnhp", "u32 u32 u32 u32 u8 u32"),
      synchronisation("vll_pw",
                      "u32 u32 u32 u8 u8 u16 u32 u32 u32 u16 u16 u8 u16 u8 u8 u32 u32 u32 u8 u8 "
                      "u16 u32 u32 bytes[28] bytes[28]"),
      synchronisation("vll_inst", "u32 u32 u32 u8 u8 u8 u8 bytes[32] bytes[32]"),
      synchronisation("glb_en", "u32 u32 u32 bytes[28] bytes[28]"),
      synchronisation("ifvlan", "u32 u32 u32 u8 u8 u16"),
      synchronisation("subpw", "u32 u32 u8 u32 u8 bytes[28] bytes[28]"),
      synchronisation("vllexp", "u32 u32 u32 u8 u8 u8 u8"),
      synchronisation("vpls_vsimac",
                      "u32 bytes[6] u16 u32 u8 u8 u16 u32 u16 u16 u32 u32 u32 u32 u32 bytes[12] "
                      "bytes[12]"),
      synchronisation("oam_staticmac", "u32 u32 bytes[6] u8 u8 u32 u32 u32 bytes[24] bytes[24]"),
      synchronisation("pw_pmo", "u32 u32 u32 u8 u8 u16 u32"),
      synchronisation("vpls_macping", "u64 u32 u32 u16 u16 bytes[6] u8 u8 u32 u32 u16 u8 u8"),
      synchronisation("stp", "u32 u32 u32 u32"),
  };
  return entries;
}

}  // namespace oracle
