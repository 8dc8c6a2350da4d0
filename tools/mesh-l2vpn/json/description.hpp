// A message's facts, for people and for programs.
#pragma once

#include "json/record_json.hpp"
#include "messages/messages.hpp"

namespace tool {

// "fixed" or "compact": the arrangement that it is sent in.
const char* arrangementName(const KnownMessage& message);

// Name, identifier, service, arrangement, sizes, fingerprint.
Json describe(const KnownMessage& message);

// The same and its slots.
Json describeWithSlots(const KnownMessage& message);

}  // namespace tool
