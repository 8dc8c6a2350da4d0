// The record in a message as JSON text, straight from the message's bytes. Takes no memory for the
// record, which may be thousands of times larger than its message.
#pragma once

#include <span>

#include "inspect/json/json_layout.hpp"
#include "wire/schema.hpp"

namespace inspect {

// Writes what decoding the message and writeRecord() would. Receivers must accept the message.
//
// If the style is not whole, what repeats is written once with its count, in a form that fromJson
// reads:
//   - the last member "times" of an item counts it and the equal items behind it
//   - "00*16384" is a byte string of one repeated byte
void writeMessage(Text& text, const mesh::wire::Schema& schema, std::span<const uint8_t> bytes,
                  const JsonStyle& style);

// Tables and byte strings that many words point to make a long text of a short message, though not
// one repeats the one before it. Fails for a text that is much longer than the message, unless the
// style is whole.
void refuseLongText(const mesh::wire::Schema& schema, std::span<const uint8_t> bytes,
                    const JsonStyle& style);

}  // namespace inspect
