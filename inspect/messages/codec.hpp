// Encoding and decoding by schemas that are known at run time: the messages' own, and those of a
// schema document. The results are those of the library's operations.
#pragma once

#include <span>
#include <vector>

#include "inspect/messages/owned_record.hpp"

namespace inspect {

using Bytes = std::vector<uint8_t>;

// What __pack writes.
Bytes encodeCompact(const KnownMessage& message, const uint8_t* record);
Bytes encodeCompact(const OwnedRecord& record);

// What the senders pass to the middleware: the arrangement in which the message is sent.
Bytes encodeAsSent(const KnownMessage& message, const uint8_t* record);
Bytes encodeAsSent(const OwnedRecord& record);

// The fixed arrangement; fails for a message that is not sent in it.
Bytes encodeFixed(const KnownMessage& message, const uint8_t* record);
Bytes encodeFixed(const OwnedRecord& record);

// Fills the record, which holds zeros, as __unpack does. It owns its blocks. Returns the size of
// these blocks; fails if they exceed the memory limit.
uint64_t decodeInto(const KnownMessage& message, std::span<const uint8_t> bytes, uint8_t* record);

// The same into a record of its own. __unpack does not tell whether it accepted the bytes; judge()
// does.
OwnedRecord decode(const KnownMessage& message, std::span<const uint8_t> bytes);

// Whether encoding the record gives these bytes, in either arrangement.
bool encodesTo(const OwnedRecord& record, std::span<const uint8_t> bytes);

}  // namespace inspect
