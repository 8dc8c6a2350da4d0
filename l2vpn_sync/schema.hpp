// The records and messages of the synchronisation service.
#pragma once

#include "mesh_l2vpn/l2vpn_sync.h"
#include "msg/message.hpp"
#include "wire/slots.hpp"

namespace mesh::l2vpn_sync {

inline constexpr msg::Service service{"l2vpn_sync", msg::Naming::Qualified};

inline constexpr wire::Style plain{.inlineOrder = wire::InlineOrder::ScalarsFirst};

// These records' table readers guard against a direct call with parameters that __unpack refuses.
inline constexpr wire::Style checked{.inlineOrder = wire::InlineOrder::ScalarsFirst,
                                     .checksParameters = true};

// A wrapper whose record is damaged still delivers its own value and what was read of the record.
inline constexpr wire::Style wrapper{.inlineOrder = wire::InlineOrder::ScalarsFirst,
                                     .nestedFailure = wire::NestedFailure::IsIgnored};

inline constexpr msg::Policy ofRecord{msg::Arrangement::Fixed, msg::RootDecoding::ByTableReader};
inline constexpr msg::Policy ofWrapper{msg::Arrangement::Fixed, msg::RootDecoding::ByMessage};

}  // namespace mesh::l2vpn_sync

#define SYNC_MESSAGE(record_type, policy) \
  MESH_MESSAGE(mesh::l2vpn_sync::service, record_type, mesh::l2vpn_sync::policy)
#define SYNC_WRAPPER(record_type)                                                   \
  MESH_SCHEMA(record_type, mesh::l2vpn_sync::wrapper, SLOT_U16(f0), SLOT_TABLE(f1)) \
  SYNC_MESSAGE(record_type, ofWrapper)

// A record, its own message and its two wrappers, from its style and its slots.
#define SYNC_RECORD(record_type, style, ...)                     \
  MESH_SCHEMA(record_type, mesh::l2vpn_sync::style, __VA_ARGS__) \
  SYNC_MESSAGE(record_type, ofRecord)                            \
  SYNC_WRAPPER(record_type##_update)                             \
  SYNC_WRAPPER(record_type##_delete)

SYNC_RECORD(l2vpn_sync_vpls_ac, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U16(f6), SLOT_U8(f7), SLOT_ARRAY(12, f8),
            SLOT_ARRAY(12, f9))
SYNC_RECORD(l2vpn_sync_vpls_ac_sub, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U16(f2), SLOT_U16(f3),
            SLOT_U32(f4), SLOT_U32(f5), SLOT_U8(f6), SLOT_U8(f7), SLOT_U16(f8), SLOT_U16(f9),
            SLOT_U16(f10), SLOT_U8(f11), SLOT_U8(f12), SLOT_U8(f13), SLOT_U8(f14), SLOT_U32(f15),
            SLOT_U16(f16), SLOT_U16(f17), SLOT_U16(f18), SLOT_U8(f19), SLOT_U8(f20), SLOT_U32(f21),
            SLOT_ARRAY(12, f22), SLOT_ARRAY(12, f23))
SYNC_RECORD(l2vpn_sync_vpls_ac_share, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U16(f4), SLOT_U16(f5), SLOT_U8(f6), SLOT_U8(f7), SLOT_U16(f8), SLOT_U16(f9),
            SLOT_U16(f10), SLOT_U8(f11), SLOT_U8(f12), SLOT_U16(f13), SLOT_ARRAY(12, f14),
            SLOT_ARRAY(12, f15))
SYNC_RECORD(l2vpn_sync_vpls_inst, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U16(f5), SLOT_U8(f6), SLOT_U8(f7), SLOT_U8(f8), SLOT_U8(f9),
            SLOT_U32(f10), SLOT_ARRAY(24, f11), SLOT_ARRAY(24, f12))
SYNC_RECORD(l2vpn_sync_vpls_inst_info, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U16(f5), SLOT_U8(f6), SLOT_U8(f7), SLOT_U8(f8), SLOT_U8(f9),
            SLOT_U32(f10), SLOT_ARRAY(24, f11), SLOT_ARRAY(24, f12))
SYNC_RECORD(l2vpn_sync_vpls_pw, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U16(f6), SLOT_U32(f7), SLOT_U32(f8), SLOT_U8(f9),
            SLOT_U8(f10), SLOT_U16(f11), SLOT_U32(f12), SLOT_U32(f13), SLOT_U32(f14), SLOT_U16(f15),
            SLOT_U16(f16), SLOT_U32(f17), SLOT_U32(f18), SLOT_U32(f19), SLOT_U16(f20), SLOT_U8(f21),
            SLOT_U8(f22), SLOT_ARRAY(28, f23), SLOT_ARRAY(28, f24))
SYNC_RECORD(l2vpn_sync_vpls_pwred_pg, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U32(f4), SLOT_U8(f5), SLOT_U8(f6), SLOT_U16(f7), SLOT_U32(f8), SLOT_ARRAY(16, f9),
            SLOT_ARRAY(16, f10))
SYNC_RECORD(l2vpn_sync_vpls_exp, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U8(f6))
SYNC_RECORD(l2vpn_sync_vpls_ac_macdraw, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2),
            SLOT_U32(f3), SLOT_U8(f4), SLOT_U8(f5), SLOT_U16(f6))
SYNC_RECORD(l2vpn_sync_vpls_pw_macdraw, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U8(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U32(f6), SLOT_U32(f7), SLOT_U32(f8))
SYNC_RECORD(l2vpn_sync_vpls_inst_macdraw, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2),
            SLOT_U8(f3), SLOT_U8(f4), SLOT_U16(f5), SLOT_U32(f6))
SYNC_RECORD(l2vpn_sync_vll_ac, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U16(f6), SLOT_U16(f7), SLOT_U8(f8), SLOT_U8(f9),
            SLOT_U16(f10), SLOT_U8(f11), SLOT_ARRAY(12, f12), SLOT_ARRAY(12, f13))
SYNC_RECORD(l2vpn_sync_extnhp, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U8(f4), SLOT_U32(f5))
SYNC_RECORD(l2vpn_sync_vll_pw, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U16(f5), SLOT_U32(f6), SLOT_U32(f7), SLOT_U32(f8), SLOT_U16(f9),
            SLOT_U16(f10), SLOT_U8(f11), SLOT_U16(f12), SLOT_U8(f13), SLOT_U8(f14), SLOT_U32(f15),
            SLOT_U32(f16), SLOT_U32(f17), SLOT_U8(f18), SLOT_U8(f19), SLOT_U16(f20), SLOT_U32(f21),
            SLOT_U32(f22), SLOT_ARRAY(28, f23), SLOT_ARRAY(28, f24))
SYNC_RECORD(l2vpn_sync_vll_inst, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U8(f6), SLOT_ARRAY(32, f7), SLOT_ARRAY(32, f8))
SYNC_RECORD(l2vpn_sync_glb_en, checked, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2),
            SLOT_ARRAY(28, f3), SLOT_ARRAY(28, f4))
SYNC_RECORD(l2vpn_sync_ifvlan, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U16(f5))
SYNC_RECORD(l2vpn_sync_subpw, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U8(f2), SLOT_U32(f3),
            SLOT_U8(f4), SLOT_ARRAY(28, f5), SLOT_ARRAY(28, f6))
SYNC_RECORD(l2vpn_sync_vllexp, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U8(f5), SLOT_U8(f6))
SYNC_RECORD(l2vpn_sync_vpls_vsimac, plain, SLOT_U32(f0), SLOT_ARRAY(6, f1), SLOT_U16(f2),
            SLOT_U32(f3), SLOT_U8(f4), SLOT_U8(f5), SLOT_U16(f6), SLOT_U32(f7), SLOT_U16(f8),
            SLOT_U16(f9), SLOT_U32(f10), SLOT_U32(f11), SLOT_U32(f12), SLOT_U32(f13), SLOT_U32(f14),
            SLOT_ARRAY(12, f15), SLOT_ARRAY(12, f16))
SYNC_RECORD(l2vpn_sync_oam_staticmac, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_ARRAY(6, f2),
            SLOT_U8(f3), SLOT_U8(f4), SLOT_U32(f5), SLOT_U32(f6), SLOT_U32(f7), SLOT_ARRAY(24, f8),
            SLOT_ARRAY(24, f9))
SYNC_RECORD(l2vpn_sync_pw_pmo, plain, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U8(f3),
            SLOT_U8(f4), SLOT_U16(f5), SLOT_U32(f6))
SYNC_RECORD(l2vpn_sync_vpls_macping, plain, SLOT_U64(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U16(f3),
            SLOT_U16(f4), SLOT_ARRAY(6, f5), SLOT_U8(f6), SLOT_U8(f7), SLOT_U32(f8), SLOT_U32(f9),
            SLOT_U16(f10), SLOT_U8(f11), SLOT_U8(f12))
SYNC_RECORD(l2vpn_sync_stp, checked, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3))

MESH_SERVICE(l2vpn_sync, L2VPN_SYNC_MESSAGES)
