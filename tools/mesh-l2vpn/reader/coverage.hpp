// Bytes of a message that are not read, or read twice.
#pragma once

#include "reader/reading.hpp"

namespace tool {

// Sorts the ranges, adds ranges for unread bytes, and notes where ranges overlap.
void coverBytes(std::span<const uint8_t> bytes, Reading& reading);

}  // namespace tool
