// A record as JSON text. See record_json.hpp for the form.
#pragma once

#include "inspect/bytes/byte_text.hpp"
#include "inspect/bytes/text.hpp"
#include "wire/schema.hpp"

namespace inspect {

struct JsonStyle {
  JsonStyle(ByteText text = ByteText::Hex, int blanks = -1) : byteText(text), indent(blanks) {}

  ByteText byteText;
  int indent;              // blanks for each level; -1: all on one line
  bool isBigText = false;  // 64-bit numbers are strings of 0x and 16 digits, which sort as numbers
};

void writeRecord(Text& text, const mesh::wire::Schema& schema, const uint8_t* record,
                 const JsonStyle& style = {});

}  // namespace inspect
