#include "hex.hpp"

#include <charconv>
#include <utility>

#include "failure.hpp"

namespace tool {
namespace {

int digitValue(char digit) {
  return digit >= '0' && digit <= '9'   ? digit - '0'
         : digit >= 'a' && digit <= 'f' ? digit - 'a' + 10
         : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10
                                        : -1;
}

bool isSeparator(char letter) {
  return letter == ' ' || letter == '\t' || letter == '\r' || letter == ',' || letter == ':';
}

size_t digitsAt(std::string_view text) {
  size_t count = 0;
  while (count < text.size() && digitValue(text[count]) >= 0) {
    ++count;
  }
  return count;
}

// A text of bytes, line by line.
class TextReader {
 public:
  bool readLine(std::string_view line) {
    if (line == "*") {
      isSqueezed_ = true;
      return !bytes_.empty();
    }
    return appendDigits(withoutMargins(line));
  }

  std::vector<uint8_t> take() { return std::move(bytes_); }

 private:
  // A line may begin with its position, as xxd ("00000010: ") and hexdump ("00000010  ") have it,
  // and end with the same bytes as characters.
  std::string_view withoutMargins(std::string_view line) {
    const size_t digits = digitsAt(line);
    const std::string_view behind = line.substr(digits);
    size_t position = 0;
    std::from_chars(line.data(), line.data() + digits, position, 16);
    if (digits != 8 || !(position == bytes_.size() || (isSqueezed_ && position > bytes_.size()))) {
      return line;
    }
    if (behind.starts_with(": ")) {
      const std::string_view dump = behind.substr(2);
      return dump.substr(0, dump.find("  "));
    }
    if (behind.starts_with("  ") || (behind.empty() && !bytes_.empty())) {
      repeatUpTo(position);
      return behind.substr(0, behind.find('|'));
    }
    return line;
  }

  // hexdump writes a star for lines like the one before.
  void repeatUpTo(size_t position) {
    isSqueezed_ = false;
    while (bytes_.size() >= 16 && bytes_.size() < position) {
      bytes_.push_back(bytes_[bytes_.size() - 16]);
    }
  }

  bool appendDigits(std::string_view line) {
    size_t at = 0;
    while (at < line.size()) {
      if (isSeparator(line[at])) {
        ++at;
      } else if (line.substr(at).starts_with("0x")) {
        at += 2;
      } else if (at + 1 < line.size() && digitsAt(line.substr(at, 2)) == 2) {
        bytes_.push_back(
            static_cast<uint8_t>(digitValue(line[at]) * 16 + digitValue(line[at + 1])));
        at += 2;
      } else {
        return false;
      }
    }
    return true;
  }

  std::vector<uint8_t> bytes_;
  bool isSqueezed_ = false;
};

}  // namespace

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
    throw Failure(Exit::BadInput, "an odd number of hexadecimal digits");
  }
  std::vector<uint8_t> bytes;
  bytes.reserve(digits.size() / 2);
  for (size_t at = 0; at < digits.size(); at += 2) {
    const int high = digitValue(digits[at]);
    const int low = digitValue(digits[at + 1]);
    if (high < 0 || low < 0) {
      throw Failure(Exit::BadInput,
                    "no hexadecimal digit at character " + std::to_string(high < 0 ? at : at + 1));
    }
    bytes.push_back(static_cast<uint8_t>(high * 16 + low));
  }
  return bytes;
}

std::optional<std::vector<uint8_t>> fromHexText(std::string_view text) {
  TextReader reader;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    if (!reader.readLine(text.substr(0, std::min(end, text.find('#'))))) {
      return std::nullopt;
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return reader.take();
}

}  // namespace tool
