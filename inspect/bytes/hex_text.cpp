#include "inspect/bytes/hex_text.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "inspect/bytes/failure.hpp"
#include "inspect/bytes/hex.hpp"

namespace inspect {
namespace {

constexpr std::string_view blanks = " \t\r\f\v";
// A star repeats lines up to the next position, which may be any number.
constexpr size_t largestSize = size_t{64} << 20;
constexpr size_t longestLine = 256;  // of a dump with characters, in bytes: xxd -c 256

// The format of all lines of a text.
enum class Format : uint8_t {
  Unknown,
  Plain,
  Colon,   // "00000010: 0c00 0000  ...."
  Column,  // "00000010  0c 00 00 00  |....|"
};

bool isDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, isHexDigit);
}

std::string_view trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(blanks);
  return first == std::string_view::npos
             ? std::string_view()
             : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

std::string_view withoutPrefix(std::string_view number) {
  return number.starts_with("0x") ? number.substr(2) : number;
}

// Removes and returns the text before the first separator.
std::string_view takeToken(std::string_view& text, std::string_view separators = blanks) {
  const std::string_view token = text.substr(0, text.find_first_of(separators));
  text.remove_prefix(std::min(token.size(), text.size()));
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return token;
}

std::string quoted(std::string_view text) {
  constexpr size_t mostShown = 40;
  return std::string("'")
      .append(text.substr(0, mostShown))
      .append(text.size() > mostShown ? "...'" : "'");
}

std::optional<size_t> positionIn(std::string_view digits) {
  size_t position = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, position, 16);
  return error == std::errc{} && stop == end ? std::optional(position) : std::nullopt;
}

// Whether a dump shows the byte as this character: as itself or as a dot.
bool isShownAs(uint8_t byte, char shown, bool isStrict) {
  return shown == static_cast<char>(byte) ||
         (shown == '.' && (!isStrict || byte <= ' ' || byte >= 0x7F));
}

class TextReader {
 public:
  void readLine(std::string_view line) {
    ++number_;
    line = trimmed(line);
    if (line.empty() || line.front() == '#') {
      return;
    }
    if (format_ == Format::Unknown) {
      format_ = formatOf(line);
    }
    if (format_ == Format::Plain) {
      readPlain(line);
    } else {
      readDump(line);
    }
  }

  std::vector<uint8_t> take() {
    if (isSqueezed_) {
      fail("no position follows the star");
    }
    return std::move(bytes_);
  }

 private:
  [[noreturn]] void fail(const std::string& text) const {
    throw Failure(Cause::BadInput,
                  "line " + std::to_string(number_) + " is not hexadecimal text: " + text);
  }

  [[noreturn]] void failAsPosition(std::string_view token) const {
    fail(quoted(token) +
         " looks like a position; supported are dumps of xxd, hexdump -C and "
         "od -Ax -tx1 from position 0");
  }

  Format formatOf(std::string_view line) const {
    std::string_view rest = line;
    const std::string_view first = takeToken(rest);
    if (first.ends_with(':')) {
      return Format::Colon;
    }
    const std::string_view digits = withoutPrefix(first);
    const std::string_view second = takeToken(rest);
    if (!isDigits(digits) || digits.size() < 3 || !isDigits(second)) {
      return Format::Plain;
    }
    if (second.size() == 2) {
      return Format::Column;
    }
    // Words after a position are in the byte order of the machine that wrote them.
    if (second.size() != digits.size() && std::ranges::count(digits, '0') == std::ssize(digits)) {
      failAsPosition(first);
    }
    return Format::Plain;
  }

  void readPlain(std::string_view line) {
    refusePosition(line);
    const size_t before = bytes_.size();
    std::string_view rest = trimmed(line.substr(0, line.find('#')));
    while (!rest.empty()) {
      const std::string_view token = takeToken(rest, " \t\r\f\v,:");
      const std::string_view digits = withoutPrefix(token);
      const bool isBeforeColon = rest.starts_with(':');
      if (isBeforeColon && digits.size() != 2) {
        fail(quoted(token) + " before a colon is not a byte");
      }
      if (isBeforeColon || rest.starts_with(',')) {
        rest = trimmed(rest.substr(1));
      }
      if (!token.empty()) {
        appendDigits(digits, token);
      }
    }
    previousSize_ = bytes_.size() - before;
  }

  // The first word is a position if a colon or single bytes follow, or if it counts the bytes of
  // the previous line.
  void refusePosition(std::string_view line) {
    std::string_view rest = line;
    const std::string_view first = takeToken(rest);
    const std::string_view digits = withoutPrefix(first);
    const std::string_view second = takeToken(rest);
    if (first.ends_with(':')) {
      failAsPosition(first);
    }
    if (digits.size() > 2 && isDigits(digits) && isDigits(second)) {
      const std::optional<size_t> position = positionIn(digits);
      const size_t others = previousSize_ - std::min(previousSize_, digits.size() / 2);
      if (second.size() == 2 || (isFirstZero_ && others != 0 && position == others)) {
        failAsPosition(first);
      }
      isFirstZero_ = bytes_.empty() && position == 0;
    }
  }

  void readDump(std::string_view line) {
    if (line == "*") {
      if (width_ == 0) {
        fail("a star before the first line");
      }
      isSqueezed_ = true;
      return;
    }
    const char* const separators = format_ == Format::Colon ? ":" : " \t";
    const std::string_view token = takeToken(line, separators);
    if (format_ == Format::Colon && !line.empty()) {
      line = trimmed(line.substr(1));
    }
    const std::string_view digits = withoutPrefix(token);
    const std::optional<size_t> position = positionIn(digits);
    // Positions of seven digits are od's: octal or decimal.
    if (isEnded_ || !position || (format_ == Format::Column && digits.size() == 7) ||
        (!isSqueezed_ && position != bytes_.size())) {
      failAsPosition(token);
    }
    repeatUpTo(*position, line.empty());
    const size_t before = bytes_.size();
    readColumns(line);
    width_ = bytes_.size() - before;
    isEnded_ = width_ == 0;
  }

  // Reads a line of a dump after its position.
  void readColumns(std::string_view line) {
    const size_t before = bytes_.size();
    const size_t longest = format_ == Format::Colon ? 4 : 2;
    while (!line.empty() && line.front() != '|' && line.front() != '>') {
      const size_t length = std::min(line.find_first_of(" \t"), line.size());
      const std::string_view group = line.substr(0, length);
      if (group.size() > longest && isDigits(group)) {
        fail("groups of more than " + std::to_string(longest / 2) +
             " bytes may be swapped words: " + quoted(group));
      }
      appendDigits(group, group);
      line.remove_prefix(length);
      const size_t gap = std::min(line.find_first_not_of(" \t"), line.size());
      line.remove_prefix(gap);
      // hexdump writes two blanks in the middle of a line, xxd before the characters.
      if (gap > (format_ == Format::Colon ? 1U : 2U)) {
        break;
      }
    }
    compareCharacters(line, std::span(bytes_).subspan(before));
  }

  // The characters must match the bytes. An editor may have removed trailing blanks.
  void compareCharacters(std::string_view shown, std::span<const uint8_t> bytes) const {
    if (shown.size() >= 2 && (shown.front() == '|' || shown.front() == '>') &&
        shown.size() == bytes.size() + 2) {
      shown = shown.substr(1, shown.size() - 2);
    }
    if (std::ranges::any_of(shown,
                            [](char letter) { return static_cast<uint8_t>(letter) > 0x7F; })) {
      return;  // programs differ in what they show
    }
    // Only groups can be swapped words.
    const bool isStrict = format_ == Format::Colon;
    // Leading blanks among the characters were skipped with the separator. Each number of them is
    // tried, up to the longest line.
    size_t leading = 0;
    while (leading < std::min(bytes.size(), longestLine) && bytes[leading] == ' ') {
      ++leading;
    }
    for (size_t skipped = 0; skipped <= leading; ++skipped) {
      const auto rest = bytes.subspan(skipped);
      if (shown.size() <= rest.size() && std::equal(shown.begin(), shown.end(), rest.begin(),
                                                    [isStrict](char letter, uint8_t byte) {
                                                      return isShownAs(byte, letter, isStrict);
                                                    })) {
        return;
      }
    }
    fail("the characters " + quoted(shown) + " do not match the bytes before them");
  }

  void repeatUpTo(size_t position, bool isEnd) {
    if (!isSqueezed_) {
      return;
    }
    isSqueezed_ = false;
    if (position <= bytes_.size() || (!isEnd && (position - bytes_.size()) % width_ != 0)) {
      fail("wrong position after a star");
    }
    refuseTooMany(position - bytes_.size());
    while (bytes_.size() < position) {
      bytes_.push_back(bytes_[bytes_.size() - width_]);
    }
  }

  void appendDigits(std::string_view digits, std::string_view token) {
    if (!isDigits(digits) || digits.size() % 2 != 0) {
      fail(quoted(token) + " is not hexadecimal digits of whole bytes");
    }
    refuseTooMany(digits.size() / 2);
    for (size_t at = 0; at < digits.size(); at += 2) {
      bytes_.push_back(byteOf(digits[at], digits[at + 1]));
    }
  }

  void refuseTooMany(size_t added) const {
    if (added > largestSize - bytes_.size()) {
      throw Failure(Cause::BadInput, "line " + std::to_string(number_) + ": more than " +
                                         std::to_string(largestSize) +
                                         " bytes are too long for a message");
    }
  }

  std::vector<uint8_t> bytes_;
  size_t number_ = 0;  // of the line
  Format format_ = Format::Unknown;
  size_t width_ = 0;  // of the last line of a dump, in bytes
  bool isSqueezed_ = false;
  bool isEnded_ = false;
  size_t previousSize_ = 0;  // of the last plain line, in bytes
  bool isFirstZero_ = false;
};

}  // namespace

std::vector<uint8_t> fromHexText(std::string_view text) {
  TextReader reader;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    reader.readLine(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return reader.take();
}

}  // namespace inspect
