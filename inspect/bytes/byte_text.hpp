// How byte strings are written in JSON.
#pragma once

#include <cstdint>

#include <charconv>

#include "inspect/bytes/base64.hpp"
#include "inspect/bytes/hex.hpp"
#include "inspect/bytes/memory_limit.hpp"

namespace inspect {

enum class ByteText : uint8_t { Hex, Base64 };

// Whether the text is "00*16384": a byte in hexadecimal digits, and its count.
inline bool isRepeated(std::string_view text, uint64_t& count) {
  if (text.size() < 4 || !isHexDigit(text[0]) || !isHexDigit(text[1]) || text[2] != '*') {
    return false;
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 3, end, count);
  return error == std::errc{} && stop == end;
}

inline std::vector<uint8_t> fromText(ByteText form, std::string_view text) {
  if (uint64_t count = 0; isRepeated(text, count)) {
    if (count > memoryLimit) {
      failForMemory("this byte string", count);
    }
    return std::vector<uint8_t>(count, byteOf(text[0], text[1]));
  }
  return form == ByteText::Base64 ? fromBase64(text) : fromHex(text);
}

}  // namespace inspect
