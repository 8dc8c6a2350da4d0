#include "inspect/texts/printable.hpp"

#include <algorithm>
#include <cstdint>

namespace inspect {
namespace {

// The size of the first character; 0 if it is not printable.
size_t characterLength(std::string_view text) {
  const auto at = [text](size_t index) { return static_cast<uint8_t>(text[index]); };
  const uint8_t first = at(0);
  if (first < 0x80) {
    return first < 0x20 || first == 0x7F ? 0 : 1;
  }
  const size_t length = first < 0xC2   ? 0
                        : first < 0xE0 ? 2
                        : first < 0xF0 ? 3
                        : first < 0xF5 ? 4
                                       : 0;
  if (length == 0 || length > text.size() ||
      !std::ranges::all_of(text.substr(1, length - 1),
                           [](char byte) { return (static_cast<uint8_t>(byte) & 0xC0) == 0x80; })) {
    return 0;
  }
  // U+0080 to U+009F are control characters too.
  return first == 0xC2 && at(1) < 0xA0 ? 0 : length;
}

}  // namespace

std::string printable(std::string_view text) {
  constexpr const char* digits = "0123456789abcdef";
  std::string shown;
  while (!text.empty()) {
    const size_t length = characterLength(text);
    if (length == 0) {
      const auto byte = static_cast<uint8_t>(text.front());
      shown.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    } else {
      shown.append(text.substr(0, length));
    }
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return shown;
}

}  // namespace inspect
