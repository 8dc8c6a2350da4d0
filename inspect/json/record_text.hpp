// A record as JSON text. See record_json.hpp for the form.
#pragma once

#include "inspect/json/json_layout.hpp"
#include "wire/schema.hpp"

namespace inspect {

void writeRecord(Text& text, const mesh::wire::Schema& schema, const uint8_t* record,
                 const JsonStyle& style = {});

}  // namespace inspect
