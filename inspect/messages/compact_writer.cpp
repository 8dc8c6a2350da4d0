#include "inspect/messages/compact_writer.hpp"

#include <cstring>

#include "wire/compact_size.hpp"

namespace inspect {
namespace {

using mesh::host::load;
using mesh::host::store;
using mesh::wire::InlineOrder;
using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

uint64_t scalarOf(const Slot& slot, const uint8_t* record) {
  uint64_t value = 0;
  std::memcpy(&value, record + slot.recordOffset, slot.size);
  return value;
}

uint64_t valueSizes(const Schema& schema, const uint8_t* record);

uint64_t vectorSize(const Slot& slot, const uint8_t* record) {
  const uint64_t smallestItem = mesh::wire::smallestTableSize(*slot.nested);
  const auto count = load<uint32_t>(record + slot.countOffset);
  const auto* const items = load<const uint8_t*>(record + slot.recordOffset);
  if (count == 0) {
    return 0;
  }
  // The count may be wrong: then the items are not read.
  if (items == nullptr || count * (4 + smallestItem) > UINT32_MAX) {
    return mesh::wire::unsizable;
  }
  uint64_t size = 4 + 4 + count * (4 + smallestItem);
  for (uint64_t item = 0; item < count; ++item) {
    size += valueSizes(*slot.nested, items + item * slot.size);
  }
  return size;
}

uint64_t valueSize(const Slot& slot, const uint8_t* record) {
  switch (slot.kind) {
    case Kind::Scalar:
      return scalarOf(slot, record) != 0 ? slot.size : 0;
    case Kind::Array:
      return 0;
    case Kind::Bytes:
      return load<const uint8_t*>(record + slot.recordOffset) != nullptr
                 ? uint64_t{8} + load<uint32_t>(record + slot.countOffset)
                 : 0;
    case Kind::Table:
      return valueSizes(*slot.nested, record + slot.recordOffset);
    case Kind::Vector:
      return vectorSize(slot, record);
  }
  return 0;
}

// What a record's values take beyond smallestTableSize().
uint64_t valueSizes(const Schema& schema, const uint8_t* record) {
  uint64_t size = 0;
  for (const Slot& slot : schema.slots) {
    size += valueSize(slot, record);
  }
  return size;
}

bool isPresent(const Slot& slot, const uint8_t* record) {
  switch (slot.kind) {
    case Kind::Scalar:
      return scalarOf(slot, record) != 0;
    case Kind::Bytes:
      return load<const uint8_t*>(record + slot.recordOffset) != nullptr &&
             load<uint32_t>(record + slot.countOffset) != 0;
    case Kind::Vector:
      return load<uint32_t>(record + slot.countOffset) != 0;
    default:
      return true;
  }
}

// Every write function returns where the next one begins.
uint8_t* writeTable(const Schema& schema, uint8_t* vtable, const uint8_t* record);

uint8_t* writeBytes(uint8_t* to, const uint8_t* bytes, uint32_t length) {
  store(to, length);
  std::memcpy(to + 4, bytes, length);
  return to + 4 + length;
}

void pointAt(uint8_t* word, const uint8_t* target) {
  store(word, static_cast<uint32_t>(target - word));
}

uint8_t* writeVector(const Slot& slot, uint8_t* to, const uint8_t* record) {
  const auto count = load<uint32_t>(record + slot.countOffset);
  const auto* const items = load<const uint8_t*>(record + slot.recordOffset);
  store(to, count);
  uint8_t* end = to + 4 + uint64_t{4} * count;
  for (uint64_t item = 0; item < count; ++item) {
    pointAt(to + 4 + 4 * item, end + mesh::wire::vtableLength(*slot.nested));
    end = writeTable(*slot.nested, end, items + item * slot.size);
  }
  return end;
}

uint8_t* writeTarget(const Slot& slot, uint8_t* to, uint8_t* word, const uint8_t* record) {
  const uint8_t* const field = record + slot.recordOffset;
  if (slot.kind == Kind::Table) {
    pointAt(word, to + mesh::wire::vtableLength(*slot.nested));
    return writeTable(*slot.nested, to, field);
  }
  pointAt(word, to);
  if (slot.kind == Kind::Array) {
    return writeBytes(to, field, slot.size);
  }
  return slot.kind == Kind::Bytes ? writeBytes(to, load<const uint8_t*>(field),
                                               load<uint32_t>(record + slot.countOffset))
                                  : writeVector(slot, to, record);
}

uint8_t* writeTable(const Schema& schema, uint8_t* vtable, const uint8_t* record) {
  const uint32_t length = mesh::wire::vtableLength(schema);
  uint8_t* const entries = vtable + 4;
  uint8_t* const table = vtable + length;
  uint32_t at = 4;
  const auto writeInline = [&](bool scalars, bool words) {
    for (size_t index = 0; index < schema.slots.size(); ++index) {
      const Slot& slot = schema.slots[index];
      const bool isScalar = slot.kind == Kind::Scalar;
      if ((isScalar ? scalars : words) && isPresent(slot, record)) {
        store(entries + 2 * index, static_cast<uint16_t>(at));
        if (isScalar) {
          std::memcpy(table + at, record + slot.recordOffset, slot.size);
        }
        at += mesh::wire::footprint(slot);
      }
    }
  };
  if (schema.style.inlineOrder == InlineOrder::Slots) {
    writeInline(true, true);
  } else {
    writeInline(true, false);
    writeInline(false, true);
  }
  uint8_t* end = table + at;
  size_t leftOut = 0;  // of the table length: nested tables and vectors
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    const auto entry = load<uint16_t>(entries + 2 * index);
    if (slot.kind != Kind::Scalar && entry != 0) {
      uint8_t* const next = writeTarget(slot, end, table + entry, record);
      leftOut += slot.nested != nullptr ? static_cast<size_t>(next - end) : 0;
      end = next;
    }
  }
  store(vtable, static_cast<uint16_t>(length));
  store(vtable + 2, static_cast<uint16_t>(static_cast<size_t>(end - table) - leftOut));
  store(table, length);
  return end;
}

}  // namespace

uint32_t compactSize(const mesh::msg::Message& message, const uint8_t* record) {
  const uint64_t size =
      4 + mesh::wire::smallestTableSize(*message.schema) + valueSizes(*message.schema, record);
  return size <= message.policy.largestSize ? static_cast<uint32_t>(size) : 0;
}

void writeCompact(const Schema& schema, uint8_t* buffer, const uint8_t* record) {
  store(buffer, 4 + mesh::wire::vtableLength(schema));
  writeTable(schema, buffer + 4, record);
}

}  // namespace inspect
