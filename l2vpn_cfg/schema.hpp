// The records and messages of the configuration service.
#pragma once

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "msg/message.hpp"
#include "wire/slots.hpp"

namespace mesh::l2vpn_cfg {

inline constexpr msg::Service service{"l2vpn_cfg", msg::Naming::Bare};

inline constexpr wire::Style slotOrder{.inlineOrder = wire::InlineOrder::Slots};
inline constexpr wire::Style scalarsFirst{.inlineOrder = wire::InlineOrder::ScalarsFirst};

using msg::Arrangement;
using msg::RootDecoding;

inline constexpr msg::Policy compact{Arrangement::Compact, RootDecoding::ByMessage};
inline constexpr msg::Policy compactByTableReader{Arrangement::Compact,
                                                  RootDecoding::ByTableReader};
inline constexpr msg::Policy fixed{Arrangement::Fixed, RootDecoding::ByMessage};

// Sizes above these limits have never been encoded.
inline constexpr msg::Policy commandKey{Arrangement::Compact, RootDecoding::ByMessage, 0xFFFFFFF7};
inline constexpr msg::Policy queryKey{Arrangement::Compact, RootDecoding::ByMessage, 0xFFFFFFFE};

}  // namespace mesh::l2vpn_cfg

// A record and its message, from its style, its policy and its slots.
#define CFG_RECORD(record_type, style, policy, ...)             \
  MESH_SCHEMA(record_type, mesh::l2vpn_cfg::style, __VA_ARGS__) \
  MESH_MESSAGE(mesh::l2vpn_cfg::service, record_type, mesh::l2vpn_cfg::policy)

CFG_RECORD(dbginfo_key_l2vpn, slotOrder, compact, SLOT_U16(f0), SLOT_U16(f1), SLOT_U32(f2),
           SLOT_BYTES(f3))
CFG_RECORD(dbginfo_para_l2vpn, slotOrder, compactByTableReader, SLOT_U16(f0), SLOT_U32(f1),
           SLOT_U32(f2), SLOT_U32(f3), SLOT_U32(f4), SLOT_U16(f5), SLOT_U32(f6), SLOT_BYTES(f7))
CFG_RECORD(l2vpn_cfg_query_dfx_cond, slotOrder, fixed, SLOT_U32(f0), SLOT_U32(f1),
           SLOT_ARRAY(128, f2))
CFG_RECORD(l2vpn_cfg_query_comm_param, slotOrder, compact, SLOT_U32(f0), SLOT_U32(f1),
           SLOT_BYTES(f2))
CFG_RECORD(l2vpn_cfg_query_comm_rec, slotOrder, compact, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2),
           SLOT_BYTES(f3), SLOT_U32(f4))
CFG_RECORD(dbginfo_cmd_key_l2vpn, slotOrder, commandKey, SLOT_U32(f0), SLOT_U32(f1), SLOT_U16(f2),
           SLOT_TABLE(f3), SLOT_TABLE(f4))
CFG_RECORD(dbginfo_cmd_ipc_l2vpn, slotOrder, fixed, SLOT_U32(f0), SLOT_U32(f1), SLOT_U16(f2),
           SLOT_U16(f3), SLOT_U32(f4), SLOT_U32(f5), SLOT_U32(f6), SLOT_U32(f7), SLOT_U16(f8),
           SLOT_U32(f9), SLOT_U16(f10), SLOT_U16(f11), SLOT_U32(f12))
CFG_RECORD(dbginfo_endata_l2vpn, slotOrder, compact, SLOT_U32(f0), SLOT_U32(f1), SLOT_U16(f2),
           SLOT_U16(f3), SLOT_U16(f4), SLOT_U16(f5), SLOT_U16(f6), SLOT_U16(f7), SLOT_U32(f8),
           SLOT_U32(f9), SLOT_U16(f10), SLOT_U32(f11), SLOT_BYTES(f12), SLOT_U32(f13),
           SLOT_BYTES(f14))
CFG_RECORD(dbginfo_dedata_l2vpn, slotOrder, fixed, SLOT_U32(f0), SLOT_U32(f1), SLOT_U16(f2),
           SLOT_U16(f3), SLOT_U16(f4), SLOT_U16(f5), SLOT_U16(f6), SLOT_U16(f7), SLOT_U32(f8),
           SLOT_U32(f9), SLOT_U16(f10), SLOT_U32(f11), SLOT_U32(f12))
CFG_RECORD(l2vpn_cfg_query_dfx_item, scalarsFirst, fixed, SLOT_ARRAY(32, f0), SLOT_U32(f1),
           SLOT_ARRAY(24, f2), SLOT_ARRAY(128, f3), SLOT_ARRAY(16384, f4))
CFG_RECORD(l2vpn_cfg_query_dfx_key, slotOrder, queryKey, SLOT_TABLE(f0), SLOT_TABLE(f1))
CFG_RECORD(l2vpn_cfg_query_dfx_rec, slotOrder, compactByTableReader, SLOT_TABLE(f0),
           SLOT_VECTOR(f1))

MESH_SERVICE(l2vpn_cfg, L2VPN_CFG_MESSAGES)
