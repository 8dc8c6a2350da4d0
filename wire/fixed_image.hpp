// The fixed arrangement: a record's whole image, every field at a place of its own.
//
//   root | table: vtable offset, every field | padding | vtable | padding
//
// The layout is known when the library is compiled. The template of an image is what all messages
// of a type have in common; its padding is zero.
// The writer stores template and fields together, by a plan of stores. The reader of images stands
// with the quick reader.
#pragma once

#include <algorithm>
#include <array>
#include <bit>

#include "wire/schema.hpp"
#include "wire/store_plan.hpp"

namespace mesh::wire {

// The table stands right behind the root word.
inline constexpr uint32_t fixedTable = 4;

// What a slot takes of a fixed image; 0 for a slot that has no fixed size.
constexpr uint32_t fixedSize(const Slot& slot);

constexpr bool hasFixedArrangement(const Schema& schema) {
  return !ownsMemory(schema);
}

// A slot's entry in the vtable: where its field begins, counted from the table. For the slot past
// the last, the table length.
[[gnu::cold]] constexpr uint32_t fixedEntry(const Schema& schema, size_t index) {
  uint32_t entry = 4;
  for (const Slot& slot : schema.slots.first(index)) {
    entry += fixedSize(slot);
  }
  return entry;
}

// From the table's first byte through its last field.
constexpr uint32_t fixedTableLength(const Schema& schema) {
  return fixedEntry(schema, schema.slots.size());
}

constexpr uint32_t fixedVtable(const Schema& schema) {
  return roundUp(fixedTable + fixedTableLength(schema), 4);
}

constexpr uint32_t fixedLength(const Schema& schema) {
  return roundUp(fixedVtable(schema) + vtableLength(schema), 8);
}

constexpr uint32_t fixedSize(const Slot& slot) {
  switch (slot.kind) {
    case Kind::Scalar:
      return slot.size;
    case Kind::Array:
      return 8 + slot.size;
    case Kind::Table:
      return fixedLength(*slot.nested);
    case Kind::Bytes:
    case Kind::Vector:
      break;
  }
  return 0;
}

// A field of a record or of a record nested in it: its place in the image, and in the record.
struct Leaf {
  uint32_t image;
  uint32_t record;
  uint32_t size;
};

// In image order, which is record order too.
template <typename Visit>
[[gnu::cold]] constexpr void visitLeaves(const Schema& schema, uint32_t image, uint32_t offset,
                                         Visit& visit) {
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    const uint32_t at = image + fixedTable + fixedEntry(schema, index);
    const uint32_t from = offset + slot.recordOffset;
    if (slot.kind == Kind::Table) {
      visitLeaves(*slot.nested, at, from, visit);
    } else {
      visit(Leaf{slot.kind == Kind::Array ? at + 8 : at, from, slot.size});
    }
  }
}

// The parts of the template that say where fields are: heads, vtables, the words before arrays.
// `visit` is given the place in the image, and the value, an unsigned integer.
template <typename Visit>
[[gnu::cold]] constexpr void visitTemplate(const Schema& schema, uint32_t image, Visit& visit) {
  const uint32_t vtable = fixedVtable(schema);
  visit(image, fixedTable);
  visit(image + fixedTable, fixedTable - vtable);
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    const uint32_t field = image + fixedTable + fixedEntry(schema, index);
    if (slot.kind == Kind::Array) {
      visit(field, uint32_t{4});
      visit(field + 4, slot.size);
    } else if (slot.kind == Kind::Table) {
      visitTemplate(*slot.nested, field, visit);
    }
  }
  visit(image + vtable, static_cast<uint16_t>(vtableLength(schema)));
  visit(image + vtable + 2, static_cast<uint16_t>(fixedTableLength(schema)));
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    visit(image + vtable + 4 + 2 * static_cast<uint32_t>(index),
          static_cast<uint16_t>(fixedEntry(schema, index)));
  }
}

// Everything of an image that does not come from the record; zeros where fields and padding stand.
template <const Schema& schema>
inline constexpr auto imageTemplate = [] {
  static_assert(fixedTableLength(schema) <= UINT16_MAX, "positions have sixteen bits");
  std::array<uint8_t, fixedLength(schema)> bytes{};
  const auto put = [&](uint32_t at, auto value) {
    const auto raw = std::bit_cast<std::array<uint8_t, sizeof value>>(value);
    std::copy(raw.begin(), raw.end(), bytes.begin() + at);
  };
  visitTemplate(schema, 0, put);
  return bytes;
}();

template <const Schema& schema>
inline constexpr size_t leafCount = [] {
  size_t count = 0;
  const auto add = [&](const Leaf&) { ++count; };
  visitLeaves(schema, 0, 0, add);
  return count;
}();

// An image as stretches of the record and of the template.
template <const Schema& schema>
inline constexpr auto imageStretches = [] {
  Stretches<2 * leafCount<schema> + 1> stretches;
  uint32_t end = 0;
  const auto add = [&](const Leaf& leaf) {
    stretches.append({end, leaf.image - end, {end, true}});
    stretches.append({leaf.image, leaf.size, {leaf.record, false}});
    end = leaf.image + leaf.size;
  };
  visitLeaves(schema, 0, 0, add);
  stretches.append({end, fixedLength(schema) - end, {end, true}});
  return stretches;
}();

template <const Schema& schema>
inline constexpr StorePlan imagePlan = planStores(imageStretches<schema>.all(),
                                                  {.source = schema.size,
                                                   .constants = fixedLength(schema)});

// A piece of the template, as an object of its own: small ones become immediate values in the code.
template <const Schema& schema, uint32_t from, uint32_t size>
inline constexpr auto templatePiece = [] {
  std::array<uint8_t, size> piece{};
  std::copy_n(imageTemplate<schema>.begin() + from, size, piece.begin());
  return piece;
}();

// `image` has room for fixedLength(schema) bytes.
template <const Schema& schema>
void writeFixedImage(uint8_t* image, const uint8_t* from) {
  forEach<imagePlan<schema>.count>([&](auto index) {
    constexpr Store store = imagePlan<schema>.stores[index];
    const auto source = [&]<Origin origin, uint32_t size>() {
      if constexpr (origin.isConstant) {
        return templatePiece<schema, origin.from, size>.data();
      } else {
        return from + origin.from;
      }
    };
    if constexpr (store.isPair) {
      storePair(image + store.to, source.template operator()<store.low, 8>(),
                source.template operator()<store.high, 8>());
    } else {
      host::copyConstant<store.size>(image + store.to,
                                     source.template operator()<store.low, store.size>());
    }
  });
}

}  // namespace mesh::wire
