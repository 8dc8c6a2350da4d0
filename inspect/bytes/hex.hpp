// Bytes as hexadecimal text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace inspect {

bool isHexDigit(char digit);
// The byte that two digits stand for.
uint8_t byteOf(char high, char low);

std::string toHex(std::span<const uint8_t> bytes);

// Accepts two digits per byte and nothing else; fails otherwise.
std::vector<uint8_t> fromHex(std::string_view digits);

}  // namespace inspect
