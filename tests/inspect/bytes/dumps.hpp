// Dumps of bytes as other programs write them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "inspect/bytes/hex.hpp"

namespace inspect {

inline std::string charactersOf(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
  }
  return text;
}

inline std::string positionText(size_t position) {
  char text[24];
  std::snprintf(text, sizeof text, "%08zx", position);
  return text;
}

// `xxd`, 16 bytes a line in groups of two.
inline std::string xxdLine(size_t position, std::span<const uint8_t> bytes) {
  std::string line = positionText(position) + ": ";
  for (size_t at = 0; at < bytes.size(); ++at) {
    line += toHex(bytes.subspan(at, 1)) + (at % 2 == 1 ? " " : "");
  }
  line.resize(std::max<size_t>(line.size(), 10 + 40), ' ');
  return line + ' ' + charactersOf(bytes) + '\n';
}

// `hexdump -C`, 16 bytes a line with a gap in the middle.
inline std::string hexdumpLine(size_t position, std::span<const uint8_t> bytes) {
  std::string line = positionText(position) + "  ";
  for (size_t at = 0; at < bytes.size(); ++at) {
    line += toHex(bytes.subspan(at, 1)) + (at == 7 ? "  " : " ");
  }
  line.resize(10 + 49, ' ');
  return line + " |" + charactersOf(bytes) + "|\n";
}

// With a star for repeated lines: only of zeros and never the last, like `xxd -a`; or of any bytes,
// like `hexdump -C`.
template <typename Line>
std::string squeezedDump(std::span<const uint8_t> bytes, bool isOfZeros, Line&& line) {
  std::string text;
  bool isInside = false;
  for (size_t at = 0; at < bytes.size(); at += 16) {
    const auto part = bytes.subspan(at, std::min<size_t>(16, bytes.size() - at));
    const bool isLast = at + 16 >= bytes.size();
    const bool isRepeated =
        at >= 16 && part.size() == 16 && std::ranges::equal(part, bytes.subspan(at - 16, 16)) &&
        (!isOfZeros ||
         (!isLast && std::ranges::all_of(part, [](uint8_t byte) { return byte == 0; })));
    text += !isRepeated ? line(at, part) : isInside ? "" : "*\n";
    isInside = isRepeated;
  }
  return text;
}

// Of `xxd`, `xxd -a`, `hexdump -C` and `xxd -p`.
inline std::vector<std::string> dumpsOf(std::span<const uint8_t> bytes) {
  std::string xxd;
  std::string plain;
  for (size_t at = 0; at < bytes.size(); at += 16) {
    xxd += xxdLine(at, bytes.subspan(at, std::min<size_t>(16, bytes.size() - at)));
  }
  for (size_t at = 0; at < bytes.size(); at += 30) {
    plain += toHex(bytes.subspan(at, std::min<size_t>(30, bytes.size() - at))) + '\n';
  }
  return {xxd, squeezedDump(bytes, true, xxdLine),
          squeezedDump(bytes, false, hexdumpLine) +
              (bytes.empty() ? "" : positionText(bytes.size()) + '\n'),
          plain};
}

}  // namespace inspect
