// A record's schema: the list of its slots, as constant data.
//
// Everything about a record follows from this list: its vtable, both arrangements, the reader, the
// writers and the release. The codec reads it while the library is compiled; tools walk the same
// data at run time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace mesh::wire {

enum class Kind : uint8_t {
  U8,
  U16,
  U32,
  U64,
  Array,   // counted byte string of one length, held in the record
  Bytes,   // counted byte string, held through a pointer beside its length
  Table,   // nested table, held in the record
  Vector,  // counted run of nested tables, held through a pointer beside its count
};

struct Schema;

struct Slot {
  // Held in place: a thousand pointers to names would be as many relocations at load.
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

// What a nested table that cannot be decoded does to the table that holds it.
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

constexpr uint32_t roundUp(uint32_t value, uint32_t step) {
  return (value + step - 1) / step * step;
}

constexpr bool isScalar(Kind kind) {
  return kind == Kind::U8 || kind == Kind::U16 || kind == Kind::U32 || kind == Kind::U64;
}

// Whether the value lies outside the record, in a block of its own.
constexpr bool isOutOfLine(Kind kind) {
  return kind == Kind::Bytes || kind == Kind::Vector;
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
