// Encoding and decoding by schemas that are known at run time: the messages' own, and those of a
// schema document. The results are those of the library's operations.
#pragma once

#include <span>
#include <vector>

#include "inspect/messages/owned_record.hpp"

namespace inspect {

using Bytes = std::vector<uint8_t>;

enum class Form {
  AsSent,   // what the senders pass to the middleware
  Fixed,    // the fixed arrangement; fails for a message that is not sent in it
  Compact,  // what __pack writes
};

// The size of a record's message; fails for a record that cannot be encoded in this form.
uint32_t encodedSize(const KnownMessage& message, const uint8_t* record, Form form);

// `buffer` has room for encodedSize() bytes, and holds zeros.
void encodeInto(uint8_t* buffer, const KnownMessage& message, const uint8_t* record, Form form);

// `taken`: what the call has taken of its memory before.
Bytes encode(const OwnedRecord& record, Form form, uint64_t taken = 0);
inline Bytes encodeCompact(const OwnedRecord& record) {
  return encode(record, Form::Compact);
}
inline Bytes encodeFixed(const OwnedRecord& record) {
  return encode(record, Form::Fixed);
}

// Fills the record, which holds zeros, as __unpack does. It owns its blocks. Returns the size of
// these blocks; fails if they exceed the memory limit.
uint64_t decodeInto(const KnownMessage& message, std::span<const uint8_t> bytes, uint8_t* record);

// The same into a record of its own. __unpack does not tell whether it accepted the bytes; judge()
// does.
OwnedRecord decode(const KnownMessage& message, std::span<const uint8_t> bytes);

// Whether encoding the record gives these bytes, in either arrangement.
bool encodesTo(const OwnedRecord& record, std::span<const uint8_t> bytes);

}  // namespace inspect
