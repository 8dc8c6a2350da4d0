// What of a message is read by nobody, or twice.
#pragma once

#include "reader/reading.hpp"

namespace tool {

// Puts the ranges in order, adds those of bytes that are in none, and notes where two overlap.
void coverBytes(std::span<const uint8_t> bytes, Reading& reading);

}  // namespace tool
