// Bytes from a text, as people and programs write them down.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tool {

// Understood are
//
//   digits, two a byte, with 0x, white space, commas or colons between bytes, # before a comment
//   dumps whose lines begin with a position, and may end with the bytes as characters:
//     00000010: 0c00 0000  ....           of xxd and tcpdump, in groups of two bytes at most
//     00000010  0c 00 00 00  |....|       of hexdump -C, od -Ax -tx1, Wireshark
//     *                                   lines like the one before
//
// Fails for every other text, with the line's number: a position is never taken for bytes, and
// where the characters tell that words were turned round, the words are not taken for bytes.
std::vector<uint8_t> fromHexText(std::string_view text);

}  // namespace tool
