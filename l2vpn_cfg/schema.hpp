// The records and messages of the configuration service.
#pragma once

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "msg/message.hpp"
#include "wire/slots.hpp"

namespace mesh::l2vpn_cfg {

inline constexpr msg::Service service{"l2vpn_cfg", msg::Naming::Bare};

inline constexpr wire::Style slotOrder{.inlineOrder = wire::InlineOrder::Slots};

inline constexpr msg::Policy compactByMessage{msg::Arrangement::Compact,
                                              msg::RootDecoding::ByMessage};

}  // namespace mesh::l2vpn_cfg

MESH_SCHEMA(dbginfo_key_l2vpn, mesh::l2vpn_cfg::slotOrder,
            SLOT_U16(f0), SLOT_U16(f1), SLOT_U32(f2), SLOT_BYTES(f3))
MESH_MESSAGE(mesh::l2vpn_cfg::service, dbginfo_key_l2vpn, mesh::l2vpn_cfg::compactByMessage)
