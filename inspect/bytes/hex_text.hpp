// Bytes from hexadecimal text, as people and programs write it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace inspect {

// Accepts
//
//   two digits per byte, with 0x, white space, commas or colons between bytes, and # comments
//   dumps whose lines begin with a position, and may end with the bytes as characters:
//     00000010: 0c00 0000  ....           of xxd and tcpdump, in groups of two bytes at most
//     00000010  0c 00 00 00  |....|       of hexdump -C, od -Ax -tx1, Wireshark
//     *                                   repeated lines
//
// Fails for any other text, with the line number. Reads neither a position as bytes, nor swapped
// words where the characters beside them reveal the swap.
std::vector<uint8_t> fromHexText(std::string_view text);

}  // namespace inspect
