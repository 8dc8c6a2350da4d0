// Encoding and decoding through the library's operations.
#pragma once

#include <span>
#include <vector>

#include "inspect/messages/owned_record.hpp"

namespace inspect {

using Bytes = std::vector<uint8_t>;

// What __pack writes.
Bytes encodeCompact(const OwnedRecord& record);

// What the senders pass to the middleware: the arrangement in which the message is sent.
Bytes encodeAsSent(const OwnedRecord& record);

// The fixed arrangement; fails for a message that is not sent in it.
Bytes encodeFixed(const OwnedRecord& record);

// What __unpack fills in. __unpack does not tell whether it accepted the bytes; judge() does.
OwnedRecord decode(const KnownMessage& message, std::span<const uint8_t> bytes);

// Whether encoding the record gives these bytes, in either arrangement.
bool encodesTo(const OwnedRecord& record, std::span<const uint8_t> bytes);

}  // namespace inspect
