#include "wire/slow_writer.hpp"

#include <algorithm>

#include "wire/fixed_image.hpp"

namespace mesh::wire {
namespace {

void reverseTable(const Schema& schema, uint8_t* table);

template <typename Integer>
Integer reverse(uint8_t* at) {
  const auto value = host::load<Integer>(at);
  std::reverse(at, at + sizeof value);
  return value;
}

// Returns the word's target.
uint8_t* reverseWord(uint8_t* word) {
  return word + reverse<uint32_t>(word);
}

void reverseValue(const Slot& slot, uint8_t* value) {
  switch (slot.kind) {
    case Kind::Scalar:
      std::reverse(value, value + slot.size);
      break;
    case Kind::Array:
    case Kind::Bytes:
      reverse<uint32_t>(reverseWord(value));
      break;
    case Kind::Table:
      reverseTable(*slot.nested, reverseWord(value));
      break;
    case Kind::Vector: {
      uint8_t* word = reverseWord(value);
      const auto count = reverse<uint32_t>(word);
      for (uint32_t item = 0; item < count; ++item) {
        word += 4;
        reverseTable(*slot.nested, reverseWord(word));
      }
      break;
    }
  }
}

void reverseTable(const Schema& schema, uint8_t* table) {
  // Signed: a fixed image has its vtable behind the table.
  uint8_t* const vtable = table - static_cast<int32_t>(reverse<uint32_t>(table));
  reverse<uint16_t>(vtable);
  reverse<uint16_t>(vtable + 2);
  uint8_t* entryAt = vtable + 4;
  for (const Slot& slot : schema.slots) {
    const auto entry = reverse<uint16_t>(entryAt);
    if (entry != 0) {
      reverseValue(slot, table + entry);
    }
    entryAt += 2;
  }
}

}  // namespace

[[gnu::cold]] void writeImageAtRunTime(const Schema& schema, uint8_t* image, const uint8_t* from) {
  std::memset(image, 0, fixedLength(schema));
  const auto put = [&](uint32_t at, auto value) { host::store(image + at, value); };
  visitTemplate(schema, 0, put);
  const auto copy = [&](const Leaf& leaf) {
    std::memcpy(image + leaf.image, from + leaf.record, leaf.size);
  };
  visitLeaves(schema, 0, 0, copy);
}

[[gnu::cold]] void reverseMessage(const Schema& schema, uint8_t* message) {
  reverseTable(schema, message + reverse<uint32_t>(message));
}

}  // namespace mesh::wire
