// What encoding a record gives: the compact buffer of __pack and the fixed image of the senders.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

// A byte that is not set was not written: the buffer keeps what it held there.
using WrittenBytes = std::vector<std::optional<uint8_t>>;

constexpr uint64_t noSize = UINT64_MAX;
constexpr uint32_t failure = 0xFFFFFFFF;  // of an operation that returns a size or a status

// The exact size of the compact buffer, before any limit; noSize when the record declares items
// behind a null pointer, so that no size can be worked out.
uint64_t compactSize(const Description& message, const Value& value);

// The same, with the message's limit applied: nothing when __pack and the senders must fail.
std::optional<uint32_t> sendableSize(const Description& message, const Value& value);

// The compact buffer itself, compactSize bytes long.
WrittenBytes compactBytes(const Description& message, const Value& value, bool reversed);

struct PackResult {
  uint32_t result = 0;
  std::optional<uint32_t> length;  // set when the in/out length is changed
  WrittenBytes bytes;              // empty when nothing is written
  std::vector<std::string> trace;
};

// <message>__pack, with `room` as the in/out length on entry.
PackResult pack(const Description& message, const Value* recordOrNull, bool bufferIsNull,
                uint32_t room, bool lengthIsNull, bool reversed);

// Where everything lies in a fixed image. Positions count from the image's first byte, slot
// entries from the table, which begins at 4.
struct FixedLayout {
  std::vector<uint32_t> slotEntries;
  uint32_t tableLength = 0;
  uint32_t vtablePosition = 0;
  uint32_t vtableEnd = 0;
  uint32_t length = 0;
};

// For messages without pointers; a pointer form has no fixed place and is a misuse.
FixedLayout fixedLayout(const Description& message);
uint32_t fixedLength(const Description& message);  // 0 for a message that is sent compact
std::vector<uint8_t> fixedImage(const Description& message, const Value& value, bool reversed);

}  // namespace oracle
