// The fixed arrangement of a record, worked out while the library is compiled.
//
//   root | table: vtable offset, every field | padding | vtable | padding
//
// An image is its frame (everything that is the same in every message of the type) and its fields,
// which all have one place each.
#pragma once

#include <algorithm>
#include <array>
#include <bit>

#include "wire/schema.hpp"
#include "wire/slots.hpp"
#include "wire/store_plan.hpp"

namespace mesh::wire {

// The table stands right behind the root word.
inline constexpr uint32_t fixedTable = 4;

// What a slot takes of a fixed image; 0 for a slot that has no fixed size.
constexpr uint32_t fixedSize(const Slot& slot);

constexpr bool hasFixedArrangement(const Schema& schema) {
  return !ownsMemory(schema);
}

// From the table's first byte through its last field.
constexpr uint32_t fixedTableLength(const Schema& schema) {
  uint32_t length = 4;
  for (const Slot& slot : schema.slots) {
    length += fixedSize(slot);
  }
  return length;
}

constexpr uint32_t fixedVtable(const Schema& schema) {
  return roundUp(fixedTable + fixedTableLength(schema), 4);
}

constexpr uint32_t fixedLength(const Schema& schema) {
  return roundUp(fixedVtable(schema) + vtableLength(schema), 8);
}

constexpr uint32_t fixedSize(const Slot& slot) {
  switch (slot.kind) {
    case Kind::Array:
      return 8 + slot.size;
    case Kind::Table:
      return fixedLength(*slot.nested);
    case Kind::Bytes:
    case Kind::Vector:
      return 0;
    default:
      return slot.size;
  }
}

// A slot's entry in the vtable: where its field begins, counted from the table.
constexpr uint32_t fixedEntry(const Schema& schema, size_t index) {
  uint32_t entry = 4;
  for (const Slot& slot : schema.slots.first(index)) {
    entry += fixedSize(slot);
  }
  return entry;
}

namespace detail {

constexpr size_t leafCount(const Schema& schema) {
  size_t count = 0;
  for (const Slot& slot : schema.slots) {
    count += slot.kind == Kind::Table ? leafCount(*slot.nested) : 1;
  }
  return count;
}

// A field of a record or of a record nested in it: its place in the image, and in the record.
struct Leaf {
  uint32_t image;
  uint32_t record;
  uint32_t size;
};

// In image order, which is record order too.
constexpr void listLeaves(const Schema& schema, uint32_t image, uint32_t offset, Leaf*& out) {
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    const uint32_t at = image + fixedTable + fixedEntry(schema, index);
    const uint32_t from = offset + slot.recordOffset;
    if (slot.kind == Kind::Table) {
      listLeaves(*slot.nested, at, from, out);
    } else {
      *out++ = {slot.kind == Kind::Array ? at + 8 : at, from, slot.size};
    }
  }
}

template <const Schema& schema>
inline constexpr auto leaves = [] {
  std::array<Leaf, leafCount(schema)> list{};
  Leaf* end = list.data();
  listLeaves(schema, 0, 0, end);
  return list;
}();

template <typename Integer>
constexpr void putFrame(uint8_t* to, Integer value) {
  const auto bytes = std::bit_cast<std::array<uint8_t, sizeof value>>(value);
  std::copy(bytes.begin(), bytes.end(), to);
}

constexpr void fillFrame(const Schema& schema, uint8_t* image) {
  const uint32_t vtable = fixedVtable(schema);
  putFrame(image, fixedTable);
  putFrame(image + fixedTable, fixedTable - vtable);
  putFrame(image + vtable, static_cast<uint16_t>(vtableLength(schema)));
  putFrame(image + vtable + 2, static_cast<uint16_t>(fixedTableLength(schema)));
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    const uint32_t entry = fixedEntry(schema, index);
    uint8_t* const field = image + fixedTable + entry;
    putFrame(image + vtable + 4 + 2 * index, static_cast<uint16_t>(entry));
    if (slot.kind == Kind::Array) {
      putFrame(field, uint32_t{4});
      putFrame(field + 4, slot.size);
    } else if (slot.kind == Kind::Table) {
      fillFrame(*slot.nested, field);
    }
  }
}

}  // namespace detail

// Everything of an image that does not come from the record, padding (zeros) included; zeros where
// fields stand.
template <const Schema& schema>
inline constexpr auto fixedFrame = [] {
  static_assert(fixedTableLength(schema) <= UINT16_MAX, "positions have sixteen bits");
  std::array<uint8_t, fixedLength(schema)> frame{};
  detail::fillFrame(schema, frame.data());
  return frame;
}();

// An image as stretches of the record and of the frame.
template <const Schema& schema>
inline constexpr auto imageStretches = [] {
  Stretches<2 * detail::leafCount(schema) + 1> image;
  uint32_t end = 0;
  for (const detail::Leaf& leaf : detail::leaves<schema>) {
    image.append({end, leaf.image - end, {end, true}});
    image.append({leaf.image, leaf.size, {leaf.record, false}});
    end = leaf.image + leaf.size;
  }
  image.append({end, fixedLength(schema) - end, {end, true}});
  return image;
}();

// A record as stretches of its image and of zeros, which stand where the record has padding.
template <const Schema& schema>
inline constexpr auto recordStretches = [] {
  Stretches<2 * detail::leafCount(schema) + 1> stretches;
  uint32_t end = 0;
  for (const detail::Leaf& leaf : detail::leaves<schema>) {
    stretches.append({end, leaf.record - end, {0, true}});
    stretches.append({leaf.record, leaf.size, {leaf.image, false}});
    end = leaf.record + leaf.size;
  }
  stretches.append({end, schema.size - end, {0, true}});
  return stretches;
}();

}  // namespace mesh::wire
