// Bytes of a message that are not read, or read twice.
#pragma once

#include "inspect/reader/reading.hpp"

namespace inspect {

// Sorts the ranges, adds ranges for unread bytes, and notes where ranges overlap.
void coverBytes(std::span<const uint8_t> bytes, Reading& reading);

}  // namespace inspect
