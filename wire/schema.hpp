// A record's schema: the list of its slots, as constant data.
//
// Everything about a record follows from this list: its vtable, both arrangements, the readers, the
// writers and the release. The codec reads it while the library is compiled; the slot reader and
// the tools walk the same data at run time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>

#include "host/memory.hpp"

namespace mesh::wire {

enum class Kind : uint8_t {
  Scalar,  // unsigned integer of 1, 2, 4 or 8 bytes
  Array,   // counted byte string of one length, held in the record
  Bytes,   // counted byte string, held through a pointer beside its length
  Table,   // nested table, held in the record
  Vector,  // counted run of nested tables, held through a pointer beside its count
};

struct Schema;

struct Slot {
  // Held in place: a pointer would be one more relocation at load for each slot.
  std::array<char, 8> name;
  Kind kind;
  // Scalar: its width. Array: its declared size. Table, Vector: the nested record's size.
  // Bytes: 1, the size of an item.
  uint32_t size;
  // Where the value stands in the record; for Bytes and Vector, where the pointer stands.
  uint32_t recordOffset;
  // Bytes, Vector: where the u32 length or count stands in the record.
  uint32_t countOffset;
  const Schema* nested;
};

// The order of the compact arrangement's inline part.
enum class InlineOrder : uint8_t {
  Slots,         // scalars and offset words as their slots come
  ScalarsFirst,  // every scalar, then every offset word
};

// The effect of a nested table that cannot be decoded on the table that holds it.
enum class NestedFailure : uint8_t {
  FailsTheTable,
  IsIgnored,
};

struct Style {
  InlineOrder inlineOrder;
  NestedFailure nestedFailure = NestedFailure::FailsTheTable;
  // The table reader checks its own parameters. No caller in this library passes bad ones.
  bool checksParameters = false;

  bool operator==(const Style&) const = default;
};

struct Schema {
  const char* name;
  // The names that decoding logs, allocates and releases under: the message's own root decoder, the
  // record's table reader, the message's release (null where there is nothing to release).
  const char* rootReader;
  const char* tableReader;
  const char* releaser;
  uint32_t size;
  Style style;
  std::span<const Slot> slots;
};

// The schema of a record type: a specialisation stands beside each record's slots.
template <typename RecordType>
struct SchemaOf;

template <typename RecordType>
inline constexpr const Schema& schemaOf = SchemaOf<RecordType>::schema;

// The type of a scalar slot's value.
template <const Schema& schema, size_t index>
using ScalarOf = host::Unsigned<schema.slots[index].size>;

// Operations are marked gnu::flatten, so that g++ inlines walks over slots into them as straight
// code.
//
// Calls `each` with 0, 1, ... as types, so that each call knows its index at compile time:
// `[](auto index) { constexpr const Slot& slot = schema.slots[index]; ... }`.
template <size_t count, typename Each>
constexpr void forEach(Each each) {
  [&]<size_t... index>(std::index_sequence<index...>) {
    (each(std::integral_constant<size_t, index>()), ...);
  }
  (std::make_index_sequence<count>());
}

// The same over a schema's slots. allSlots stops at the first slot for which `holds` is false.
template <const Schema& schema, typename Each>
constexpr void forEachSlot(Each each) {
  forEach<schema.slots.size()>(each);
}

template <const Schema& schema, typename Holds>
constexpr bool allSlots(Holds holds) {
  return [&]<size_t... index>(std::index_sequence<index...>) {
    return (holds(std::integral_constant<size_t, index>()) && ...);
  }
  (std::make_index_sequence<schema.slots.size()>());
}

template <const Schema& schema, typename SizeOf>
constexpr uint64_t sumSlots(SizeOf sizeOf) {
  return [&]<size_t... index>(std::index_sequence<index...>) {
    return (uint64_t{0} + ... + sizeOf(std::integral_constant<size_t, index>()));
  }
  (std::make_index_sequence<schema.slots.size()>());
}

constexpr uint32_t roundUp(uint32_t value, uint32_t step) {
  return (value + step - 1) / step * step;
}

// Whether the value lies outside the record, in a block of its own.
constexpr bool isOutOfLine(Kind kind) {
  return kind == Kind::Bytes || kind == Kind::Vector;
}

// Where a slot's value begins and ends in the record, the count of an out-of-line one included.
constexpr uint32_t recordBegin(const Slot& slot) {
  return isOutOfLine(slot.kind) ? slot.countOffset : slot.recordOffset;
}

constexpr uint32_t recordEnd(const Slot& slot) {
  return slot.recordOffset +
         (isOutOfLine(slot.kind) ? static_cast<uint32_t>(sizeof(void*)) : slot.size);
}

// The bytes at a present slot's position that the table itself holds: a scalar, or an offset word.
constexpr uint16_t footprint(const Slot& slot) {
  return slot.kind == Kind::Scalar ? static_cast<uint16_t>(slot.size) : uint16_t{4};
}

constexpr uint32_t vtableLength(const Schema& schema) {
  return 4 + 2 * static_cast<uint32_t>(schema.slots.size());
}

// Whether two records differ in nothing but names.
constexpr bool haveSameLayout(const Schema& one, const Schema& other) {
  if (one.size != other.size || one.style != other.style ||
      one.slots.size() != other.slots.size()) {
    return false;
  }
  for (size_t index = 0; index < one.slots.size(); ++index) {
    const Slot& slot = one.slots[index];
    const Slot& same = other.slots[index];
    if (slot.kind != same.kind || slot.size != same.size ||
        slot.recordOffset != same.recordOffset || slot.countOffset != same.countOffset ||
        (slot.nested != nullptr && !haveSameLayout(*slot.nested, *same.nested))) {
      return false;
    }
  }
  return true;
}

// Whether decoding into the record can allocate.
constexpr bool ownsMemory(const Schema& schema) {
  for (const Slot& slot : schema.slots) {
    if (isOutOfLine(slot.kind) || (slot.kind == Kind::Table && ownsMemory(*slot.nested))) {
      return true;
    }
  }
  return false;
}

}  // namespace mesh::wire
