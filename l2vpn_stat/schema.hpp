// The record and the message of the statistics service.
#pragma once

#include "mesh_l2vpn/l2vpn_stat.h"
#include "msg/message.hpp"
#include "wire/slots.hpp"

namespace mesh::l2vpn_stat {

inline constexpr msg::Service service{"l2vpn_stat", msg::Naming::Qualified};

inline constexpr wire::Style scalarsFirst{.inlineOrder = wire::InlineOrder::ScalarsFirst};

inline constexpr msg::Policy fixedByTableReader{msg::Arrangement::Fixed,
                                                msg::RootDecoding::ByTableReader};

}  // namespace mesh::l2vpn_stat

MESH_SCHEMA(l2vpn_stat_pw_stat, mesh::l2vpn_stat::scalarsFirst, SLOT_U32(f0), SLOT_U32(f1),
            SLOT_U8(f2), SLOT_ARRAY(3, f3), SLOT_U32(f4), SLOT_U64(f5), SLOT_U64(f6), SLOT_U64(f7),
            SLOT_U64(f8), SLOT_U64(f9), SLOT_U64(f10), SLOT_U64(f11), SLOT_U64(f12))
MESH_MESSAGE(mesh::l2vpn_stat::service, l2vpn_stat_pw_stat, mesh::l2vpn_stat::fixedByTableReader)

MESH_SERVICE(l2vpn_stat, L2VPN_STAT_MESSAGES)
