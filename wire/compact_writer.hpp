// The compact arrangement, in one forward pass:
//
//   root | vtable | table: vtable offset, inline part | tail: the offset words' targets
//
// Nothing here fails: the caller provides enough room. Presence of a scalar is arithmetic, not a
// branch, so values that no branch predictor can guess cost no more than others.
#pragma once

#include <array>

#include "wire/compact_size.hpp"

namespace mesh::wire {

// Where a table's fields begin, counted from its first byte.
inline constexpr uint32_t firstField = 4;

// What a table takes, and the part of it that the table length in its vtable leaves out: nested
// tables and vectors.
struct TableExtent {
  size_t end;
  size_t leftOut;
};

// Writes a table's fields and its vtable's slot entries. The caller writes the vtable offset, last.
template <const Schema& schema>
TableExtent writeTableFields(uint8_t* table, uint8_t* entries, const uint8_t* from);

// Writes a vtable at `vtable` and its table behind it. Returns the end of all of it.
template <const Schema& schema>
uint8_t* writeTable(uint8_t* vtable, const uint8_t* from) {
  constexpr uint32_t length = vtableLength(schema);
  static_assert(
      ownsMemory(schema) || smallestTableSize(schema) + scalarWidths(schema) <= UINT16_MAX,
      "positions have sixteen bits");
  uint8_t* const table = vtable + length;
  const auto [end, leftOut] = writeTableFields<schema>(table, vtable + 4, from);
  // A byte string can carry the table length past its sixteen bits; readers do not look at it.
  host::store(vtable, length | static_cast<uint32_t>(end - leftOut) << 16);
  host::store(table, length);
  return table + end;
}

// All ones if the value is present, else 0.
constexpr uint64_t presence(bool isThere) {
  return uint64_t{0} - static_cast<uint64_t>(isThere);
}

// What follows the scalars in every message of the record, at least.
constexpr uint32_t smallestTail(const Schema& schema) {
  const uint32_t word = schema.style.inlineOrder == InlineOrder::ScalarsFirst ? 4 : 0;
  uint32_t size = 0;
  for (const Slot& slot : schema.slots) {
    size += slot.kind == Kind::Array   ? word + 4 + slot.size
            : slot.kind == Kind::Table ? word + vtableLength(*slot.nested) + 4
                                       : 0;
  }
  return size;
}

// Stores a scalar at `at`. An absent one is stored too, where later bytes overwrite it: at the next
// field's place if a tail always follows, else on the table's vtable offset. Returns where the next
// field begins.
template <const Schema& schema, size_t index>
size_t writeScalar(uint8_t* table, uint8_t* entries, const uint8_t* from, size_t at) {
  constexpr const Slot& slot = schema.slots[index];
  const auto value = host::load<ScalarOf<schema, index>>(from + slot.recordOffset);
  const uint64_t isThere = presence(value != 0);
  const uint64_t entry = at & isThere;
  host::store(entries + 2 * index, static_cast<uint16_t>(entry));
  constexpr bool tailFollows = smallestTail(schema) >= slot.size;
  if constexpr (!tailFollows && slot.size <= firstField) {
    host::store(table + entry, value);
  } else if (tailFollows || value != 0) {
    host::store(table + at, value);
  }
  return at + (slot.size & isThere);
}

// Whether a slot that is written as an offset word is present.
template <const Schema& schema, size_t index>
bool hasWord(const uint8_t* from) {
  constexpr const Slot& slot = schema.slots[index];
  if constexpr (slot.kind == Kind::Bytes) {
    return host::load<const uint8_t*>(from + slot.recordOffset) != nullptr &&
           host::load<uint32_t>(from + slot.countOffset) != 0;
  } else if constexpr (slot.kind == Kind::Vector) {
    return host::load<uint32_t>(from + slot.countOffset) != 0;
  } else {
    return true;
  }
}

// Lets the offset word at `word` say where `target` is.
inline void pointAt(uint8_t* word, const uint8_t* target) {
  host::store(word, static_cast<uint32_t>(target - word));
}

template <const Schema& schema>
uint8_t* writeVector(uint8_t* to, uint32_t count, const uint8_t* items) {
  host::store(to, count);
  uint8_t* word = to + 4;
  uint8_t* end = word + uint64_t{4} * count;
  for (uint32_t item = 0; item < count; ++item, word += 4) {
    pointAt(word, end + vtableLength(schema));
    end = writeTable<schema>(end, items + uint64_t{schema.size} * item);
  }
  return end;
}

// Writes the target of one slot's offset word, behind everything written so far.
template <const Schema& schema, size_t index>
void writeTarget(uint8_t* table, uint8_t* word, const uint8_t* from, TableExtent& extent) {
  constexpr const Slot& slot = schema.slots[index];
  const uint8_t* const field = from + slot.recordOffset;
  uint8_t* const to = table + extent.end;
  if constexpr (slot.kind == Kind::Array) {
    pointAt(word, to);
    host::store(to, slot.size);
    if constexpr (slot.size <= host::largestInPlace) {
      host::copyConstant<slot.size>(to + 4, field);
    } else {
      // Copied as a byte string's contents, which it is in this arrangement.
      host::copyBytes(to + 4, field, slot.size);
    }
    extent.end += 4 + slot.size;
  } else if constexpr (slot.kind == Kind::Table) {
    pointAt(word, to + vtableLength(*slot.nested));
    const auto size = static_cast<size_t>(writeTable<*slot.nested>(to, field) - to);
    extent.end += size;
    extent.leftOut += size;
  } else if (hasWord<schema, index>(from)) {
    const auto count = host::load<uint32_t>(from + slot.countOffset);
    const auto* const contents = host::load<const uint8_t*>(field);
    pointAt(word, to);
    if constexpr (slot.kind == Kind::Bytes) {
      host::store(to, count);
      host::copyBytes(to + 4, contents, count);
      extent.end += size_t{4} + count;
    } else {
      const auto size = static_cast<size_t>(writeVector<*slot.nested>(to, count, contents) - to);
      extent.end += size;
      extent.leftOut += size;
    }
  }
}

template <const Schema& schema>
TableExtent writeTableFields(uint8_t* table, uint8_t* entries, const uint8_t* from) {
  size_t at = firstField;
  // The place of each slot's offset word. Its value is known after the inline part is written.
  std::array<size_t, schema.slots.size()> words;
  const auto writeInline = [&](auto index) {
    if constexpr (schema.slots[index].kind == Kind::Scalar) {
      at = writeScalar<schema, index>(table, entries, from, at);
    } else {
      const uint64_t isThere = presence(hasWord<schema, index>(from));
      host::store(entries + 2 * index, static_cast<uint16_t>(at & isThere));
      words[index] = at;
      at += 4 & isThere;
    }
  };
  if constexpr (schema.style.inlineOrder == InlineOrder::Slots) {
    forEachSlot<schema>(writeInline);
  } else {
    forEachSlot<schema>([&](auto index) {
      if constexpr (schema.slots[index].kind == Kind::Scalar) {
        writeInline(index);
      }
    });
    forEachSlot<schema>([&](auto index) {
      if constexpr (schema.slots[index].kind != Kind::Scalar) {
        writeInline(index);
      }
    });
  }
  TableExtent extent{at, 0};
  forEachSlot<schema>([&](auto index) {
    if constexpr (schema.slots[index].kind != Kind::Scalar) {
      writeTarget<schema, index>(table, table + words[index], from, extent);
    }
  });
  return extent;
}

// The whole message at `message`, which has room for compactSize(). Returns what was written.
template <const Schema& schema>
size_t writeCompact(uint8_t* message, const uint8_t* from) {
  host::store(message, 4 + vtableLength(schema));
  return static_cast<size_t>(writeTable<schema>(message + 4, from) - message);
}

}  // namespace mesh::wire
