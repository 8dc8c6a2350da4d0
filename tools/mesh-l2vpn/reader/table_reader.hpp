// Reads a message as the library does, but goes on behind a fault to find the others, and says of
// every byte what it is where that is wanted.
//
// The library remains the judge. That both accept and reject the same buffers is tested.
#pragma once

#include "messages/messages.hpp"
#include "reader/reading.hpp"

namespace tool {

// What is wrong with it, in time that grows with the bytes and items alone.
Verdict judge(const KnownMessage& message, std::span<const uint8_t> bytes);

// The same, explained.
Reading readTable(const KnownMessage& message, std::span<const uint8_t> bytes);

}  // namespace tool
