// Bytes as this library writes them.
#pragma once

#include "inspect/messages/messages.hpp"

namespace inspect {

// Whether decoding and encoding gives the same bytes: then they have no fault. Other bytes may be
// valid too.
bool isOwnEncoding(const KnownMessage& message, std::span<const uint8_t> bytes);

}  // namespace inspect
