#include "wire/reverse.hpp"

#include "host/byte_order.hpp"

namespace mesh::wire {
namespace {

using host::ByteOrder;

// Each returns the value as it was.
template <typename Integer>
Integer reverse(uint8_t* at) {
  const auto value = host::load<Integer>(at);
  host::store<ByteOrder::Reversed>(at, value);
  return value;
}

uint8_t* reverseWord(uint8_t* word) {
  return word + reverse<uint32_t>(word);
}

void reverseTable(const Schema& schema, uint8_t* table);

void reverseVector(const Schema& schema, uint8_t* vector) {
  const auto count = reverse<uint32_t>(vector);
  uint8_t* word = vector + 4;
  for (uint32_t item = 0; item < count; ++item, word += 4) {
    reverseTable(schema, reverseWord(word));
  }
}

void reverseValue(const Slot& slot, uint8_t* value) {
  switch (slot.kind) {
    case Kind::U8:
      break;
    case Kind::U16:
      reverse<uint16_t>(value);
      break;
    case Kind::U32:
      reverse<uint32_t>(value);
      break;
    case Kind::U64:
      reverse<uint64_t>(value);
      break;
    case Kind::Array:
    case Kind::Bytes:
      reverse<uint32_t>(reverseWord(value));
      break;
    case Kind::Table:
      reverseTable(*slot.nested, reverseWord(value));
      break;
    case Kind::Vector:
      reverseVector(*slot.nested, reverseWord(value));
      break;
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

[[gnu::cold]] void reverseMessage(const Schema& schema, uint8_t* message) {
  reverseTable(schema, message + reverse<uint32_t>(message));
}

}  // namespace mesh::wire
