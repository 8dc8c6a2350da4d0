// A reading as one self-contained page.
#pragma once

#include <span>
#include <string>

#include "messages/messages.hpp"
#include "reader/reading.hpp"

namespace tool {

// Bytes and their meanings side by side; what is pointed at lights up, with the rest of its slot
// and the place that it leads to. Of long contents the beginning, unless all is asked for; a page
// that a browser would be long about ends early, and says so.
std::string htmlPage(const KnownMessage& message, const Reading& reading,
                     std::span<const uint8_t> bytes, bool isWhole);

}  // namespace tool
