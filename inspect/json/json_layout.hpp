// The punctuation and white space of JSON text.
#pragma once

#include "inspect/bytes/byte_text.hpp"
#include "inspect/bytes/text.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {

struct JsonStyle {
  ByteText byteText = ByteText::Hex;
  int indent = -1;         // blanks for each level; -1: all on one line
  bool isWhole = true;     // else a message's repeated items and bytes stand once, with their count
  bool isBigText = false;  // 64-bit numbers are strings of 0x and 16 digits, which sort as numbers
};

// Sink: Text, or what only counts.
template <typename Sink>
class JsonLayout {
 public:
  JsonLayout(Sink& out, const JsonStyle& style) : out_(out), style_(style) {}

  void open(char bracket) {
    out_.append(bracket);
    ++depth_;
  }

  // Before a member or an item.
  void next(bool isFirst) {
    if (!isFirst) {
      out_.append(',');
    }
    breakLine();
  }

  // Needs no escapes.
  void name(std::string_view text) {
    out_.append('"');
    out_.append(text);
    out_.append(style_.indent < 0 ? std::string_view("\":") : std::string_view("\": "));
  }

  void close(char bracket, bool isEmpty) {
    --depth_;
    if (!isEmpty) {
      breakLine();
    }
    out_.append(bracket);
  }

  // `size`: of the number's type.
  void number(uint64_t value, size_t size) {
    if (style_.isBigText && size == sizeof value) {
      out_.append('"');
      out_.append(hex(value));
      out_.append('"');
    } else {
      out_.appendNumber(value);
    }
  }

  void zeros(size_t size) {
    if (style_.byteText == ByteText::Base64) {
      return bytes(std::vector<uint8_t>(size));
    }
    out_.append('"');
    out_.append(2 * size, '0');
    out_.append('"');
  }

  // A byte string of one repeated byte, as "00*16384".
  void repeated(uint8_t byte, uint64_t count) {
    out_.append('"');
    out_.appendHex({&byte, 1});
    out_.append('*');
    out_.appendNumber(count);
    out_.append('"');
  }

  void bytes(std::span<const uint8_t> bytes) {
    constexpr size_t piece = 3 * 4096;  // base64 has no padding between pieces
    out_.append('"');
    if (style_.byteText == ByteText::Hex) {
      out_.appendHex(bytes);
    } else {
      for (size_t done = 0; done < bytes.size(); done += piece) {
        out_.append(toBase64(bytes.subspan(done, std::min(piece, bytes.size() - done))));
      }
    }
    out_.append('"');
  }

 private:
  void breakLine() {
    if (style_.indent >= 0) {
      out_.append('\n');
      out_.append(static_cast<size_t>(style_.indent) * depth_, ' ');
    }
  }

  Sink& out_;
  const JsonStyle style_;
  size_t depth_ = 0;
};

}  // namespace inspect
