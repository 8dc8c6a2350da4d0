// Bytes as base64 text: the alphabet with + and /, padded.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace inspect {

std::string toBase64(std::span<const uint8_t> bytes);

// Accepts only what toBase64 writes: no white space, full padding, unused bits zero. Fails
// otherwise.
std::vector<uint8_t> fromBase64(std::string_view text);

}  // namespace inspect
