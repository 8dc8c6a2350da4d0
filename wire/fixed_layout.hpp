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

constexpr bool hasFixedArrangement(const Record& record) {
  return !ownsMemory(record);
}

// From the table's first byte through its last field.
constexpr uint32_t fixedTableLength(const Record& record) {
  uint32_t length = 4;
  for (const Slot& slot : record.slots) {
    length += fixedSize(slot);
  }
  return length;
}

constexpr uint32_t fixedVtable(const Record& record) {
  return roundUp(fixedTable + fixedTableLength(record), 4);
}

constexpr uint32_t fixedLength(const Record& record) {
  return roundUp(fixedVtable(record) + vtableLength(record), 8);
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
constexpr uint32_t fixedEntry(const Record& record, size_t index) {
  uint32_t entry = 4;
  for (const Slot& slot : record.slots.first(index)) {
    entry += fixedSize(slot);
  }
  return entry;
}

namespace detail {

constexpr size_t leafCount(const Record& record) {
  size_t count = 0;
  for (const Slot& slot : record.slots) {
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
constexpr void listLeaves(const Record& record, uint32_t image, uint32_t offset, Leaf*& out) {
  for (size_t index = 0; index < record.slots.size(); ++index) {
    const Slot& slot = record.slots[index];
    const uint32_t at = image + fixedTable + fixedEntry(record, index);
    const uint32_t from = offset + slot.recordOffset;
    if (slot.kind == Kind::Table) {
      listLeaves(*slot.nested, at, from, out);
    } else {
      *out++ = {slot.kind == Kind::Array ? at + 8 : at, from, slot.size};
    }
  }
}

template <const Record& record>
inline constexpr auto leaves = [] {
  std::array<Leaf, leafCount(record)> list{};
  Leaf* end = list.data();
  listLeaves(record, 0, 0, end);
  return list;
}();

template <typename Integer>
constexpr void putFrame(uint8_t* to, Integer value) {
  const auto bytes = std::bit_cast<std::array<uint8_t, sizeof value>>(value);
  std::copy(bytes.begin(), bytes.end(), to);
}

constexpr void fillFrame(const Record& record, uint8_t* image) {
  const uint32_t vtable = fixedVtable(record);
  putFrame(image, fixedTable);
  putFrame(image + fixedTable, fixedTable - vtable);
  putFrame(image + vtable, static_cast<uint16_t>(vtableLength(record)));
  putFrame(image + vtable + 2, static_cast<uint16_t>(fixedTableLength(record)));
  for (size_t index = 0; index < record.slots.size(); ++index) {
    const Slot& slot = record.slots[index];
    const uint32_t entry = fixedEntry(record, index);
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
template <const Record& record>
inline constexpr auto fixedFrame = [] {
  static_assert(fixedTableLength(record) <= UINT16_MAX, "positions have sixteen bits");
  std::array<uint8_t, fixedLength(record)> frame{};
  detail::fillFrame(record, frame.data());
  return frame;
}();

// An image as stretches of the record and of the frame.
template <const Record& record>
inline constexpr auto imageStretches = [] {
  Stretches<2 * detail::leafCount(record) + 1> image;
  uint32_t end = 0;
  for (const detail::Leaf& leaf : detail::leaves<record>) {
    image.append({end, leaf.image - end, {end, true}});
    image.append({leaf.image, leaf.size, {leaf.record, false}});
    end = leaf.image + leaf.size;
  }
  image.append({end, fixedLength(record) - end, {end, true}});
  return image;
}();

// A record as stretches of its image and of zeros, which stand where the record has padding.
template <const Record& record>
inline constexpr auto recordStretches = [] {
  Stretches<2 * detail::leafCount(record) + 1> stretches;
  uint32_t end = 0;
  for (const detail::Leaf& leaf : detail::leaves<record>) {
    stretches.append({end, leaf.record - end, {0, true}});
    stretches.append({leaf.record, leaf.size, {leaf.image, false}});
    end = leaf.record + leaf.size;
  }
  stretches.append({end, record.size - end, {0, true}});
  return stretches;
}();

}  // namespace mesh::wire
