// A reading as text, line by line.
#pragma once

#include <iosfwd>
#include <span>

#include "reader/reading.hpp"
#include "texts/ink.hpp"

namespace tool {

// Position, bytes, slot, meaning and value of every range; faults under the bytes to blame. Of long
// contents the beginning, unless all is asked for; bytes that are read again are never shown whole
// a second time.
void explain(const Reading& reading, std::span<const uint8_t> bytes, bool isWhole,
             const Colors& colors, std::ostream& out);

}  // namespace tool
