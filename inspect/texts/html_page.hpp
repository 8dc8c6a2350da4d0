// A reading as a self-contained web page.
#pragma once

#include <span>
#include <string>

#include "inspect/messages/messages.hpp"
#include "inspect/reader/reading.hpp"

namespace inspect {

// Shows bytes and meanings side by side. Hovering, a click, keys and the page's address highlight a
// range, its slot and the position that it points to. Shortens long contents unless isWhole. Ends
// early, with a note, before the page becomes too large for a browser.
std::string htmlPage(const KnownMessage& message, const Reading& reading,
                     std::span<const uint8_t> bytes, bool isWhole);

}  // namespace inspect
