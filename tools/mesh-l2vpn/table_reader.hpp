// Reads a message as the library does, but to explain it: says of every byte what it is, and goes
// on behind a fault to find the others.
//
// The library remains the judge. That both accept and reject the same buffers is tested.
#pragma once

#include "messages.hpp"
#include "reading.hpp"

namespace tool {

Reading readTable(const Message& message, std::span<const uint8_t> bytes);

}  // namespace tool
