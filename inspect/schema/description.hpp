// A message described as JSON.
#pragma once

#include "inspect/json/record_json.hpp"
#include "inspect/messages/messages.hpp"

namespace inspect {

// "fixed" or "compact": the arrangement in which the message is sent.
const char* arrangementName(const KnownMessage& message);

// Name, identifier, service, arrangement, sizes, fingerprint.
Json describe(const KnownMessage& message);

// The slots of a record, one object each.
Json describeSlots(const mesh::wire::Schema& schema);

// Also the slots.
Json describeWithSlots(const KnownMessage& message);

}  // namespace inspect
