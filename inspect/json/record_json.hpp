// Between a record and JSON: an object with a member for each slot.
//
//   scalar           an integer of up to 64 bits; fromJson also accepts a string with 0x
//   bytes, bytes[N]  a string of hexadecimal digits, or of base64; fromJson also accepts
//                    "00*16384" for that many equal bytes
//   table            an object
//   vector           an array of objects; fromJson also accepts the member "times" in them, for
//                    that many equal items
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "inspect/json/record_text.hpp"
#include "inspect/messages/codec.hpp"

namespace inspect {

using Json = nlohmann::ordered_json;

// For whoever goes on with the values; writeRecord() is quicker.
Json toJson(const mesh::wire::Schema& schema, const uint8_t* record, const JsonStyle& style = {});

// Missing members are zero. Fails with the path for unknown members, numbers out of range and wrong
// lengths. `memory` is what the call has taken of its memory; what the record takes is added.
OwnedRecord fromJson(const KnownMessage& message, const Json& json, ByteText form,
                     uint64_t& memory);
// The same for byte strings of hexadecimal digits.
OwnedRecord fromJson(const KnownMessage& message, const Json& json);

// The message of a record in JSON.
std::vector<uint8_t> encodeJson(const KnownMessage& message, std::string_view json, ByteText form,
                                Form arrangement);

// Whether the value is a whole number from 0, or the hexadecimal text of one, with 0x: programs
// that compute with doubles do not keep 64 bits.
bool parseNumber(const Json& json, uint64_t& value);

// Parses one JSON value. Fails for invalid JSON and duplicate members.
Json parseJson(std::string_view text);
// The same; adds to `memory` what the value takes, at most.
Json parseJson(std::string_view text, uint64_t& memory);

}  // namespace inspect
