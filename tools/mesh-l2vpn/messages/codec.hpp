// Bytes and records, through the library's own operations.
#pragma once

#include <span>
#include <vector>

#include "messages/owned_record.hpp"

namespace tool {

using Bytes = std::vector<uint8_t>;

// What __pack writes.
Bytes encodeCompact(const OwnedRecord& record);

// What the senders hand to the middleware: the message's own arrangement.
Bytes encodeAsSent(const OwnedRecord& record);

// The fixed arrangement; fails for a message that is not sent in it.
Bytes encodeFixed(const OwnedRecord& record);

// What __unpack makes of the bytes. Whether it accepted them is for table_reader.hpp to say.
OwnedRecord decode(const KnownMessage& message, std::span<const uint8_t> bytes);

// Whether encoding the record gives these bytes, in either arrangement.
bool encodesTo(const OwnedRecord& record, std::span<const uint8_t> bytes);

}  // namespace tool
