// Taking configuration texts apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarnimesh {

// Cuts the next line off `text`.
std::string_view takeLine(std::string_view& text);

// Cuts the next word off `line`; empty when there is none.
std::string_view takeWord(std::string_view& line);

// A number below 2^32, decimal or 0x and hexadecimal.
std::optional<uint32_t> parseAddress(std::string_view word);

// The contents of an open file; nothing when it cannot be read, errno telling why.
std::optional<std::string> contentsOf(int file);

}  // namespace zarnimesh
