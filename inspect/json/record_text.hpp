// A record as JSON text. See record_json.hpp for the form.
#pragma once

#include "inspect/bytes/byte_text.hpp"
#include "inspect/bytes/text.hpp"
#include "wire/schema.hpp"

namespace inspect {

struct JsonStyle {
  ByteText byteText = ByteText::Hex;
  int indent = -1;  // blanks for each level; -1: all on one line
};

void writeRecord(Text& text, const mesh::wire::Schema& schema, const uint8_t* record,
                 const JsonStyle& style = {});

}  // namespace inspect
