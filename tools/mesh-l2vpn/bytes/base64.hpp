// Bytes as base64 text: the alphabet with + and /, padded.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

std::string toBase64(std::span<const uint8_t> bytes);

// The one text of some bytes, and nothing else: no white space, no padding left out, no bits behind
// the last byte. Fails otherwise.
std::vector<uint8_t> fromBase64(std::string_view text);

}  // namespace tool
