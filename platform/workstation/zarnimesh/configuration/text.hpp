// Parsing of configuration texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarnimesh {

// Removes and returns the first line of `text`.
std::string_view takeLine(std::string_view& text);

// Removes and returns the first word of `line`. Empty when there is none.
std::string_view takeWord(std::string_view& line);

// A number below 2^32, decimal or hexadecimal with 0x.
std::optional<uint32_t> parseAddress(std::string_view word);

// The contents of an open file. Nothing when it cannot be read; errno is then set.
std::optional<std::string> contentsOf(int file);

}  // namespace zarnimesh
