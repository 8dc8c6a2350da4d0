// The byte-reversed wire: what was written in the host's order is turned round where it lies.
#pragma once

#include "wire/schema.hpp"

namespace mesh::wire {

// Reverses every multi-byte value of a message that this library has just written in the host's
// order, in either arrangement; the contents of byte strings stay. Nothing is verified.
void reverseMessage(const Schema& schema, uint8_t* message);

}  // namespace mesh::wire
