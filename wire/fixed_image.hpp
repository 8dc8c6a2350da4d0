// The fixed arrangement: a record's whole image, every field at a place of its own.
//
//   root | table: vtable offset, every field | padding | vtable | padding
//
// The layout is known when the library is compiled. The template of an image is what all messages
// of a type have in common; its padding is zero. The writer stores template and fields together, by
// a plan of stores. The reader compares a buffer with the template. If they are equal, every field
// is at its known place, and a plan of stores fills the record.
#pragma once

#include <algorithm>
#include <array>
#include <bit>

#include "wire/slot_reader.hpp"
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

// Neighbouring bytes of the template that are compared together.
struct TemplatePart {
  uint32_t at;
  uint32_t size;
};

template <const Schema& schema>
inline constexpr auto templateParts = [] {
  struct {
    std::array<TemplatePart, 2 * leafCount<schema> + 2> list{};
    size_t count = 0;
  } parts;
  const auto add = [&](uint32_t at, auto value) {
    if (parts.count > 0 &&
        parts.list[parts.count - 1].at + parts.list[parts.count - 1].size == at) {
      parts.list[parts.count - 1].size += sizeof value;
    } else {
      parts.list[parts.count++] = {at, sizeof value};
    }
  };
  visitTemplate(schema, 0, add);
  return parts;
}();

// Nonzero where a part of the image differs from the template, compared by `Wide`; the last
// comparison overlaps the one before.
template <const Schema& schema, typename Wide, TemplatePart part>
Wide differences(const uint8_t* image) {
  const auto differenceAt = [&](uint32_t at) {
    return host::load<Wide>(image + at) ^ host::load<Wide>(imageTemplate<schema>.data() + at);
  };
  Wide found = differenceAt(part.at + part.size - sizeof(Wide));
  forEach<(part.size - 1) / sizeof(Wide)>(
      [&](auto index) { found |= differenceAt(part.at + sizeof(Wide) * index); });
  return found;
}

// Whether the buffer holds an image with exactly this template. Its padding, and what follows it,
// may be anything.
template <const Schema& schema>
bool hasFixedTemplate(Buffer<host::ByteOrder::Host> buffer) {
  constexpr uint32_t end = fixedVtable(schema) + vtableLength(schema);
  // The root word alone rejects most other buffers.
  if (buffer.length < end || buffer.read<uint32_t>(0) != fixedTable) {
    return false;
  }
  uint64_t found = 0;
  forEach<templateParts<schema>.count>([&](auto index) {
    constexpr TemplatePart part = templateParts<schema>.list[index];
    if constexpr (part.size < 8) {
      found |= differences<schema, uint32_t, part>(buffer.data);
    } else if constexpr (part.size < 16) {
      found |= differences<schema, uint64_t, part>(buffer.data);
    } else {
      using Sixteen [[gnu::vector_size(16)]] = uint64_t;
      const Sixteen both = differences<schema, Sixteen, part>(buffer.data);
      found |= both[0] | both[1];
    }
  });
  return found == 0;
}

// A record as stretches of its image and of zeros, which stand where the record has padding.
template <const Schema& schema>
inline constexpr auto recordStretches = [] {
  Stretches<2 * leafCount<schema> + 1> stretches;
  uint32_t end = 0;
  const auto add = [&](const Leaf& leaf) {
    stretches.append({end, leaf.record - end, {0, true}});
    stretches.append({leaf.record, leaf.size, {leaf.image, false}});
    end = leaf.record + leaf.size;
  };
  visitLeaves(schema, 0, 0, add);
  stretches.append({end, schema.size - end, {0, true}});
  return stretches;
}();

inline constexpr std::array<uint8_t, host::chunk> zeros{};

template <const Schema& schema>
inline constexpr StorePlan recordPlan =
    planStores(recordStretches<schema>.all(),
               {.source = fixedVtable(schema) + vtableLength(schema), .constants = zeros.size()});

// Fills the record, its padding with zeros, from an image that has the fixed template.
template <const Schema& schema>
void readFixedImage(uint8_t* into, const uint8_t* image) {
  if constexpr (schema.size > host::largestInPlace) {
    host::clearBytes(into, schema.size);
  }
  forEach<recordPlan<schema>.count>([&](auto index) {
    constexpr Store store = recordPlan<schema>.stores[index];
    const auto source = [&](Origin origin) {
      return (origin.isConstant ? zeros.data() : image) + origin.from;
    };
    if constexpr (store.isPair) {
      storePair(into + store.to, source(store.low), source(store.high));
    } else {
      host::copyConstant<store.size>(into + store.to, source(store.low));
    }
  });
}

}  // namespace mesh::wire
