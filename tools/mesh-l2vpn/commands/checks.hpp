// What values of options must be, beyond their types.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <string>

namespace tool {

inline CLI::Validator notEmpty() {
  return {[](std::string& text) { return text.empty() ? "is empty" : std::string(); }, ""};
}

// CLI11 takes 010 for octal, which nobody means.
inline CLI::Validator unlikeOctal() {
  return {[](std::string& text) {
            return text.size() > 1 && text[0] == '0' && text[1] >= '0' && text[1] <= '9'
                       ? text + " begins with a zero: write it without, or 0x for hexadecimal"
                       : std::string();
          },
          ""};
}

// A number above 0 that is one: not nan, not infinite.
inline CLI::Validator positive() {
  return {[](std::string& text) {
            double value = 0;
            const auto [stop, error] =
                std::from_chars(text.data(), text.data() + text.size(), value);
            return error == std::errc{} && stop == text.data() + text.size() &&
                           std::isfinite(value) && value > 0
                       ? std::string()
                       : text + " is no number above 0";
          },
          "POSITIVE"};
}

}  // namespace tool
