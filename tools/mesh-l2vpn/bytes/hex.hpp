// Bytes as hexadecimal text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

bool isHexDigit(char digit);
// Of two digits.
uint8_t byteOf(char high, char low);

std::string toHex(std::span<const uint8_t> bytes);

// Digits, two a byte, and nothing else. Fails otherwise.
std::vector<uint8_t> fromHex(std::string_view digits);

}  // namespace tool
