// Writers for rare cases, which walk the schema at run time: a module's first send, and the
// byte-reversed wire.
#pragma once

#include "wire/schema.hpp"

namespace mesh::wire {

// A record's whole fixed image, in the host's byte order, byte for byte as writeFixedImage() writes
// it. `image` has room for fixedLength(schema) bytes.
void writeImageAtRunTime(const Schema& schema, uint8_t* image, const uint8_t* from);

// Reverses every multi-byte value of a message that this library has just written in the host's
// order, in either arrangement; the contents of byte strings stay. Nothing is verified.
void reverseMessage(const Schema& schema, uint8_t* message);

}  // namespace mesh::wire
