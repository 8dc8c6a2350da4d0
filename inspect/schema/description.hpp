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

// A record in which everything is zero, as JSON. Vectors have one item.
Json templateOf(const mesh::wire::Schema& schema);

// Also the slots, and in these the slots of nested tables, with their places in the whole record
// and the whole image. An item of a vector begins at 0 and has no place in an image.
Json describeWithSlots(const KnownMessage& message);

}  // namespace inspect
