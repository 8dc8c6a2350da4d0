// How byte strings are written in JSON.
#pragma once

#include <cstdint>

#include "inspect/bytes/base64.hpp"
#include "inspect/bytes/hex.hpp"

namespace inspect {

enum class ByteText : uint8_t { Hex, Base64 };

inline std::vector<uint8_t> fromText(ByteText form, std::string_view text) {
  return form == ByteText::Base64 ? fromBase64(text) : fromHex(text);
}

}  // namespace inspect
