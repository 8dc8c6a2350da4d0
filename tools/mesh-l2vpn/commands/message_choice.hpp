// Which message bytes are, when nobody says.
#pragma once

#include <span>

#include "messages/messages.hpp"
#include "session.hpp"

namespace tool {

// The message that was named, or the first of those that fit best; says so when there are several.
// Fails when none fits.
const Message& chooseMessage(const std::string& named, std::span<const uint8_t> bytes,
                             const Session& session);

}  // namespace tool
