// The name texts of a record's operations, joined while the library is compiled.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "wire/schema.hpp"

namespace mesh::wire {

// With its terminator.
template <size_t one, size_t other>
consteval std::array<char, one + other - 1> joinTexts(const char (&text)[one],
                                                      const char (&suffix)[other]) {
  std::array<char, one + other - 1> joined{};
  std::copy_n(suffix, other, std::copy_n(text, one - 1, joined.begin()));
  return joined;
}

template <size_t size>
struct Suffix {
  char chars[size];
  // Implicit, so that a string literal is a template argument.
  consteval Suffix(const char (&text)[size]) { std::copy_n(text, size, chars); }
};

template <const Record& record, Suffix suffix>
consteval auto joinText() {
  constexpr std::string_view name = record.name;
  std::array<char, name.size() + sizeof suffix.chars> joined{};
  std::copy_n(suffix.chars, sizeof suffix.chars,
              std::copy(name.begin(), name.end(), joined.begin()));
  return joined;
}

template <const Record& record, Suffix suffix>
inline constexpr auto joinedText = joinText<record, suffix>();

// "<record's name><suffix>", with its terminator, for the life of the process.
template <const Record& record, Suffix suffix>
constexpr const char* nameText() {
  return joinedText<record, suffix>.data();
}

}  // namespace mesh::wire
