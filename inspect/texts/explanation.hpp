// A reading as text, line by line.
#pragma once

#include <span>

#include "inspect/bytes/text.hpp"
#include "inspect/messages/messages.hpp"
#include "inspect/reader/reading.hpp"
#include "inspect/texts/ink.hpp"

namespace inspect {

// Writes position, bytes, slot, meaning and value of every range, and each fault below its bytes;
// then the notes and the verdict. Shortens long contents unless isWhole. Never shows bytes in full
// twice.
void explain(const KnownMessage& message, const Reading& reading, std::span<const uint8_t> bytes,
             bool isWhole, const Colors& colors, Text& out);

}  // namespace inspect
