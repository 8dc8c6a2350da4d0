// Reads a message as the library does, but continues after a fault to find the others, and explains
// every byte on request.
//
// The library defines what is accepted. A test checks that both agree.
#pragma once

#include "inspect/messages/messages.hpp"
#include "inspect/reader/reading.hpp"

namespace inspect {

// Finds the faults, in time that grows only with the number of bytes and items.
Verdict judge(const KnownMessage& message, std::span<const uint8_t> bytes);

// Also explains every byte.
Reading readTable(const KnownMessage& message, std::span<const uint8_t> bytes);

}  // namespace inspect
