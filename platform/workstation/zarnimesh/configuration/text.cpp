#include "zarnimesh/configuration/text.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>

namespace zarnimesh {
namespace {

constexpr std::string_view blanks = " \t\r";

}  // namespace

std::string_view takeLine(std::string_view& text) {
  const size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

std::string_view takeWord(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(blanks));
  line.remove_prefix(word.size());
  return word;
}

std::optional<uint32_t> parseAddress(std::string_view word) {
  const bool hex = word.starts_with("0x") || word.starts_with("0X");
  if (hex) {
    word.remove_prefix(2);
  }
  uint32_t address = 0;
  const char* last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, address, hex ? 16 : 10);
  if (error != std::errc{} || end != last) {
    return std::nullopt;
  }
  return address;
}

std::optional<std::string> contentsOf(int file) {
  std::string text;
  char piece[4096];
  for (;;) {
    const ssize_t got = read(file, piece, sizeof piece);
    if (got == 0) {
      return text;
    }
    if (got > 0) {
      text.append(piece, static_cast<size_t>(got));
    } else if (errno != EINTR) {
      return std::nullopt;
    }
  }
}

}  // namespace zarnimesh
