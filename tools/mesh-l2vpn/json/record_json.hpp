// Between a record and JSON: an object with a member for each slot.
//
//   scalar           a whole number, 64 bits without loss; also accepted: a text with 0x
//   bytes, bytes[N]  a text of hexadecimal digits, two a byte; or of base64
//   table            an object
//   vector           an array of objects
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "bytes/byte_text.hpp"
#include "messages/owned_record.hpp"

namespace tool {

using Json = nlohmann::ordered_json;

Json toJson(const mesh::wire::Record& schema, const uint8_t* record, ByteText form = ByteText::Hex);

// What is missing is zero. Fails, with the path, for what is unknown, out of range or of a wrong
// length.
OwnedRecord fromJson(const KnownMessage& message, const Json& json, ByteText form = ByteText::Hex);

// One JSON value from text; fails for text that is none, and for a member that is there twice.
Json parseJson(std::string_view text);

}  // namespace tool
