// Writes the compact arrangement by a schema that is known at run time, byte for byte as
// wire/compact_writer.hpp does for one that the compiler knows.
#pragma once

#include <cstdint>

#include "msg/message.hpp"

namespace inspect {

// The exact size of a record's compact message, or 0 for one that cannot be encoded.
uint32_t compactSize(const mesh::msg::Message& message, const uint8_t* record);

// `buffer` has room for compactSize() bytes, and is cleared.
void writeCompact(const mesh::wire::Schema& schema, uint8_t* buffer, const uint8_t* record);

}  // namespace inspect
