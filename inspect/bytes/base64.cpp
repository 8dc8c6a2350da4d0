#include "inspect/bytes/base64.hpp"

#include <algorithm>

#include "inspect/bytes/failure.hpp"

namespace inspect {
namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

uint32_t digitValue(std::string_view text, size_t at) {
  const size_t value = alphabet.find(text[at]);
  if (value == std::string_view::npos) {
    throw Failure(Cause::BadInput, "not a base64 digit at character " + std::to_string(at));
  }
  return static_cast<uint32_t>(value);
}

}  // namespace

std::string toBase64(std::span<const uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t at = 0; at < bytes.size(); at += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - at);
    uint32_t group = 0;
    for (size_t each = 0; each < 3; ++each) {
      group = group << 8 | (each < count ? bytes[at + each] : 0U);
    }
    for (size_t digit = 0; digit < 4; ++digit) {
      text += digit <= count ? alphabet[group >> (18 - 6 * digit) & 63] : '=';
    }
  }
  return text;
}

std::vector<uint8_t> fromBase64(std::string_view text) {
  if (text.size() % 4 != 0) {
    throw Failure(Cause::BadInput,
                  "the length of base64 is a multiple of 4, not " + std::to_string(text.size()));
  }
  const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  uint32_t group = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    group = group << 6 | (at + padding < text.size() ? digitValue(text, at) : 0U);
    if (at % 4 == 3) {
      for (const int shift : {16, 8, 0}) {
        bytes.push_back(static_cast<uint8_t>(group >> shift));
      }
      group = 0;
    }
  }
  for (size_t each = 0; each < padding; ++each) {
    if (bytes.back() != 0) {
      throw Failure(Cause::BadInput, "unused bits are not zero at character " +
                                         std::to_string(text.size() - padding - 1));
    }
    bytes.pop_back();
  }
  return bytes;
}

}  // namespace inspect
