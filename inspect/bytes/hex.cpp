#include "inspect/bytes/hex.hpp"

#include "inspect/bytes/failure.hpp"

namespace inspect {
namespace {

int digitValue(char digit) {
  return digit >= '0' && digit <= '9'   ? digit - '0'
         : digit >= 'a' && digit <= 'f' ? digit - 'a' + 10
         : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10
                                        : -1;
}

}  // namespace

bool isHexDigit(char digit) {
  return digitValue(digit) >= 0;
}

uint8_t byteOf(char high, char low) {
  return static_cast<uint8_t>(digitValue(high) * 16 + digitValue(low));
}

std::string toHex(std::span<const uint8_t> bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  text.reserve(2 * bytes.size());
  for (const uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

std::vector<uint8_t> fromHex(std::string_view digits) {
  if (digits.size() % 2 != 0) {
    throw Failure(Cause::BadInput, "an odd number of hexadecimal digits");
  }
  std::vector<uint8_t> bytes;
  bytes.reserve(digits.size() / 2);
  for (size_t at = 0; at < digits.size(); at += 2) {
    if (!isHexDigit(digits[at]) || !isHexDigit(digits[at + 1])) {
      throw Failure(Cause::BadInput, "not a hexadecimal digit at character " +
                                         std::to_string(isHexDigit(digits[at]) ? at + 1 : at));
    }
    bytes.push_back(byteOf(digits[at], digits[at + 1]));
  }
  return bytes;
}

}  // namespace inspect
