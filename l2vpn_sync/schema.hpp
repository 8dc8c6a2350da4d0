// The records and messages of the synchronisation service.
#pragma once

#include "mesh_l2vpn/l2vpn_sync.h"
#include "msg/message.hpp"
#include "wire/slots.hpp"

namespace mesh::l2vpn_sync {

inline constexpr msg::Service service{"l2vpn_sync", msg::Naming::Qualified};

inline constexpr wire::Style scalarsFirst{.inlineOrder = wire::InlineOrder::ScalarsFirst};

// A wrapper whose record is damaged still delivers its own value and what was read of the record.
inline constexpr wire::Style wrapper{.inlineOrder = wire::InlineOrder::ScalarsFirst,
                                     .nestedFailure = wire::NestedFailure::IsIgnored};

inline constexpr msg::Policy ofRecord{msg::Arrangement::Fixed, msg::RootDecoding::ByTableReader};
inline constexpr msg::Policy ofWrapper{msg::Arrangement::Fixed, msg::RootDecoding::ByMessage};

}  // namespace mesh::l2vpn_sync

#define SYNC_MESSAGE(record_type, policy) \
  MESH_MESSAGE(mesh::l2vpn_sync::service, record_type, mesh::l2vpn_sync::policy)
#define SYNC_WRAPPER(record_type)                                                        \
  MESH_SCHEMA(record_type, mesh::l2vpn_sync::wrapper, SLOT_U16(f0), SLOT_TABLE(f1)) \
  SYNC_MESSAGE(record_type, ofWrapper)

// A record, its own message and its two wrappers, from its slots.
#define SYNC_RECORD(record_type, ...)                                 \
  MESH_SCHEMA(record_type, mesh::l2vpn_sync::scalarsFirst, __VA_ARGS__) \
  SYNC_MESSAGE(record_type, ofRecord)                                 \
  SYNC_WRAPPER(record_type##_update)                                  \
  SYNC_WRAPPER(record_type##_delete)

SYNC_RECORD(l2vpn_sync_vpls_ac, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3), SLOT_U8(f4),
            SLOT_U8(f5), SLOT_U16(f6), SLOT_U8(f7), SLOT_ARRAY(12, f8), SLOT_ARRAY(12, f9))
