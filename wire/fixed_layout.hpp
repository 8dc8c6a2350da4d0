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
#include <cstddef>

#include "host/byte_order.hpp"
#include "wire/schema.hpp"
#include "wire/slots.hpp"

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

// Bytes that an image takes from the record as they are, or reversed as one integer of `size`.
struct Move {
  uint32_t image;
  uint32_t record;
  uint32_t size;
  bool isInteger;
};

namespace detail {

constexpr size_t leafCount(const Record& record) {
  size_t count = 0;
  for (const Slot& slot : record.slots) {
    count += slot.kind == Kind::Table ? leafCount(*slot.nested) : 1;
  }
  return count;
}

// The fields of a record in image order, those of nested records in their places.
constexpr void listLeaves(const Record& record, uint32_t image, uint32_t offset, Move*& out) {
  for (size_t index = 0; index < record.slots.size(); ++index) {
    const Slot& slot = record.slots[index];
    const uint32_t at = image + fixedTable + fixedEntry(record, index);
    const uint32_t from = offset + slot.recordOffset;
    if (slot.kind == Kind::Table) {
      listLeaves(*slot.nested, at, from, out);
    } else if (slot.kind == Kind::Array) {
      *out++ = {at + 8, from, slot.size, false};
    } else {
      *out++ = {at, from, slot.size, slot.size > 1};
    }
  }
}

template <host::ByteOrder order, typename Integer>
constexpr void putFrame(uint8_t* to, Integer value) {
  const auto bytes = std::bit_cast<std::array<uint8_t, sizeof value>>(host::inOrder<order>(value));
  std::copy(bytes.begin(), bytes.end(), to);
}

template <host::ByteOrder order>
constexpr void fillFrame(const Record& record, uint8_t* image) {
  const uint32_t vtable = fixedVtable(record);
  putFrame<order>(image, fixedTable);
  putFrame<order>(image + fixedTable, fixedTable - vtable);
  putFrame<order>(image + vtable, static_cast<uint16_t>(vtableLength(record)));
  putFrame<order>(image + vtable + 2, static_cast<uint16_t>(fixedTableLength(record)));
  for (size_t index = 0; index < record.slots.size(); ++index) {
    const Slot& slot = record.slots[index];
    const uint32_t entry = fixedEntry(record, index);
    uint8_t* const field = image + fixedTable + entry;
    putFrame<order>(image + vtable + 4 + 2 * index, static_cast<uint16_t>(entry));
    if (slot.kind == Kind::Array) {
      putFrame<order>(field, uint32_t{4});
      putFrame<order>(field + 4, slot.size);
    } else if (slot.kind == Kind::Table) {
      fillFrame<order>(*slot.nested, field);
    }
  }
}

}  // namespace detail

// Everything of an image that does not come from the record, padding (zeros) included; zeros where
// fields stand.
template <const Record& record, host::ByteOrder order>
inline constexpr auto fixedFrame = [] {
  std::array<uint8_t, fixedLength(record)> frame{};
  detail::fillFrame<order>(record, frame.data());
  return frame;
}();

// The moves from a record into its image, in image order, no two of them next to each other on both
// sides: what is contiguous in both moves as one block.
template <const Record& record, host::ByteOrder order>
struct FixedMoves {
  static_assert(hasFixedArrangement(record));

  struct List {
    std::array<Move, detail::leafCount(record)> moves;
    size_t count;
  };

  static constexpr List list = [] {
    List result{};
    Move* end = result.moves.data();
    detail::listLeaves(record, 0, 0, end);
    const auto canJoin = [](const Move& one, const Move& next) {
      const bool adjacent =
          one.image + one.size == next.image && one.record + one.size == next.record;
      const bool verbatim = order == host::ByteOrder::Host || (!one.isInteger && !next.isInteger);
      return adjacent && verbatim;
    };
    for (const Move& move : std::span(result.moves)) {
      if (result.count > 0 && canJoin(result.moves[result.count - 1], move)) {
        Move& last = result.moves[result.count - 1];
        last = {last.image, last.record, last.size + move.size, false};
      } else {
        result.moves[result.count++] = move;
      }
    }
    return result;
  }();

  static constexpr size_t count = list.count;
  static constexpr const std::array<Move, detail::leafCount(record)>& moves = list.moves;
};

}  // namespace mesh::wire
