// Bytes as hexadecimal text.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

std::string toHex(std::span<const uint8_t> bytes);

// Digits, two a byte, and nothing else. Fails otherwise.
std::vector<uint8_t> fromHex(std::string_view digits);

// The bytes of a text as people and programs write them down: digits two by two, with 0x, white
// space, commas or colons between them, # for comments, or the lines of `xxd` and `hexdump -C`.
// Nothing when the text is none of these.
std::optional<std::vector<uint8_t>> fromHexText(std::string_view text);

}  // namespace tool
