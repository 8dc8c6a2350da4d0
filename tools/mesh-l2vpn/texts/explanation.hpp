// A reading as text, line by line.
#pragma once

#include <iosfwd>
#include <span>

#include "reader/reading.hpp"
#include "texts/ink.hpp"

namespace tool {

// Writes position, bytes, slot, meaning and value of every range, and each fault below its bytes.
// Shortens long contents unless isWhole. Never shows bytes in full twice.
void explain(const Reading& reading, std::span<const uint8_t> bytes, bool isWhole,
             const Colors& colors, std::ostream& out);

}  // namespace tool
