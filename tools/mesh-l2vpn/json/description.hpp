// A message described as JSON.
#pragma once

#include "json/record_json.hpp"
#include "messages/messages.hpp"

namespace tool {

// "fixed" or "compact": the arrangement in which the message is sent.
const char* arrangementName(const KnownMessage& message);

// Name, identifier, service, arrangement, sizes, fingerprint.
Json describe(const KnownMessage& message);

// Also the slots.
Json describeWithSlots(const KnownMessage& message);

}  // namespace tool
