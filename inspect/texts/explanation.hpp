// A reading as text, line by line.
#pragma once

#include <iosfwd>
#include <span>

#include "inspect/reader/reading.hpp"
#include "inspect/texts/ink.hpp"

namespace inspect {

// Writes position, bytes, slot, meaning and value of every range, and each fault below its bytes.
// Shortens long contents unless isWhole. Never shows bytes in full twice.
void explain(const Reading& reading, std::span<const uint8_t> bytes, bool isWhole,
             const Colors& colors, std::ostream& out);

}  // namespace inspect
