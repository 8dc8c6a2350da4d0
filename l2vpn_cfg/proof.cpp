#include "msg/proof.hpp"

#include "l2vpn_cfg/schema.hpp"

namespace mesh::msg::proof {
namespace {

// Each record: identifier, record size, field offsets, vtable length, smallest compact message;
// what is not the usual. Then, where there is a fixed arrangement: largest compact message, the
// image's table length, its vtable's place, its length, the slot entries.
constexpr bool records[] = {
    compactMessage<dbginfo_key_l2vpn>({0xFEB5D38D, 24, {0, 2, 4, 16}, 12, 20}),
    compactMessage<dbginfo_para_l2vpn>(
        {0xF5550D12, 40, {0, 4, 8, 12, 16, 20, 24, 32}, 20, 28, 0xFFFFFFFF, byTableReader}),
    fixedMessage<l2vpn_cfg_query_dfx_cond>({0xE11ADDEF, 136, {0, 4, 8}, 10, 154},
                                           {162, 148, 152, 168, {4, 8, 12}}),
    compactMessage<l2vpn_cfg_query_comm_param>({0xDC5527DE, 24, {0, 4, 16}, 10, 18}),
    compactMessage<l2vpn_cfg_query_comm_rec>({0x345542C5, 32, {0, 4, 8, 16, 24}, 14, 22}),
    compactMessage<dbginfo_cmd_key_l2vpn>({0x8B614502, 80, {0, 4, 8, 16, 56}, 14, 70, 0xFFFFFFF7}),
    fixedMessage<dbginfo_cmd_ipc_l2vpn>(
        {0x110045FB, 44, {0, 4, 8, 10, 12, 16, 20, 24, 28, 32, 36, 38, 40}, 30, 38},
        {80, 46, 52, 88, {4, 8, 12, 14, 16, 20, 24, 28, 32, 34, 38, 40, 42}}),
    compactMessage<dbginfo_endata_l2vpn>(
        {0x494B03FB, 64, {0, 4, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 40, 48, 56}, 34, 42}),
    fixedMessage<dbginfo_dedata_l2vpn>(
        {0x3CF15A13, 40, {0, 4, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 36}, 30, 38},
        {76, 42, 48, 80, {4, 8, 12, 14, 16, 18, 20, 22, 24, 28, 32, 34, 38}}),
    fixedMessage<l2vpn_cfg_query_dfx_item>({0x77B787DC, 16572, {0, 32, 36, 60, 188}, 14, 16622},
                                           {16626, 16608, 16612, 16632, {4, 44, 48, 80, 216}}),
    compactMessage<l2vpn_cfg_query_dfx_key>({0xD5542082, 160, {0, 24}, 8, 188, 0xFFFFFFFE}),
    compactMessage<l2vpn_cfg_query_dfx_rec>(
        {0xC900380B, 48, {0, 40}, 8, 38, 0xFFFFFFFF, byTableReader}),
};

template <typename Record>
constexpr uint32_t countOffset(size_t index) {
  return wire::schemaOf<Record>.slots[index].countOffset;
}

static_assert(countOffset<dbginfo_key_l2vpn>(3) == 8);
static_assert(countOffset<dbginfo_para_l2vpn>(7) == 28);
static_assert(countOffset<l2vpn_cfg_query_comm_param>(2) == 8);
static_assert(countOffset<l2vpn_cfg_query_comm_rec>(3) == 12);
static_assert(countOffset<dbginfo_endata_l2vpn>(12) == 36);
static_assert(countOffset<dbginfo_endata_l2vpn>(14) == 52);
static_assert(countOffset<l2vpn_cfg_query_dfx_rec>(1) == 32);

static_assert(0 L2VPN_CFG_MESSAGES(MESH_COUNT_MESSAGE) == 12 && std::size(records) == 12);

}  // namespace
}  // namespace mesh::msg::proof
