// The compact arrangement: one forward pass into a buffer of the exact size.
//
//   root | vtable | table: vtable offset, inline part | tail: the offset words' targets
//
// Nothing here can fail: the size check beforehand has settled every bound.
#pragma once

#include <array>
#include <utility>

#include "host/byte_order.hpp"
#include "host/memory.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

// Writes the record's present fields at the cursor and their places into the vtable's slot entries,
// which the caller has cleared. Advances the cursor past everything written; returns the table
// length, which counts neither nested tables nor vectors.
template <const Record& record, host::ByteOrder order>
uint16_t writeTableFields(uint8_t*& cursor, const uint8_t* from, uint8_t* entries);

// Writes a vtable at the cursor and its table behind it. Returns the table's place.
template <const Record& record, host::ByteOrder order>
uint8_t* writeTable(uint8_t*& cursor, const uint8_t* from) {
  constexpr uint32_t length = vtableLength(record);
  uint8_t* const vtable = cursor;
  uint8_t* const table = vtable + length;
  host::clearConstant<length - 4>(vtable + 4);
  cursor = table + 4;
  const uint16_t tableLength = writeTableFields<record, order>(cursor, from, vtable + 4);
  host::store<order>(vtable, static_cast<uint16_t>(length));
  host::store<order>(vtable + 2, tableLength);
  host::store<order>(table, length);
  return table;
}

namespace detail {

// Where a table's fields begin, counted from the table.
inline constexpr uint32_t firstField = 4;

// The place in a table that is being written.
struct Inline {
  uint8_t* const start;
  uint8_t* const entries;
  uint8_t* cursor;

  // Enters the cursor's place as the slot's.
  template <size_t index, host::ByteOrder order>
  [[gnu::always_inline]] void enter() {
    host::store<order>(entries + 2 * index,
                       static_cast<uint16_t>(firstField + static_cast<size_t>(cursor - start)));
  }
};

template <typename Scalar, size_t index, host::ByteOrder order>
[[gnu::always_inline]] inline void writeScalar(Inline& out, const uint8_t* field) {
  const auto value = host::load<Scalar>(field);
  if (value != 0) {
    out.template enter<index, order>();
    host::store<order>(out.cursor, value);
    out.cursor += sizeof value;
  }
}

// Whether a slot that is written as an offset word is there.
template <const Record& record, size_t index>
[[gnu::always_inline]] inline bool hasWord(const uint8_t* from) {
  constexpr const Slot& slot = record.slots[index];
  if constexpr (slot.kind == Kind::Bytes) {
    return host::loadPointer<const uint8_t>(from + slot.recordOffset) != nullptr &&
           host::load<uint32_t>(from + slot.countOffset) != 0;
  } else if constexpr (slot.kind == Kind::Vector) {
    return host::load<uint32_t>(from + slot.countOffset) != 0;
  } else {
    return true;
  }
}

// The place of a slot among those that are written as offset words; for the slot past the last, how
// many of them there are.
constexpr size_t countWords(const Record& record, size_t before) {
  size_t words = 0;
  for (const Slot& slot : record.slots.first(before)) {
    words += isScalar(slot.kind) ? 0 : 1;
  }
  return words;
}

template <const Record& record, size_t index>
inline constexpr size_t wordIndex = countWords(record, index);

enum class Pass {
  Everything,
  Scalars,
  Words,
};

// One slot's share of the inline part. A word's value is not known yet: its place is kept.
template <const Record& record, size_t index, Pass pass, host::ByteOrder order>
[[gnu::always_inline]] inline void writeInline(Inline& out, const uint8_t* from, uint8_t** words) {
  constexpr const Slot& slot = record.slots[index];
  if constexpr (isScalar(slot.kind)) {
    if constexpr (pass != Pass::Words) {
      const uint8_t* const field = from + slot.recordOffset;
      if constexpr (slot.kind == Kind::U8) {
        writeScalar<uint8_t, index, order>(out, field);
      } else if constexpr (slot.kind == Kind::U16) {
        writeScalar<uint16_t, index, order>(out, field);
      } else if constexpr (slot.kind == Kind::U32) {
        writeScalar<uint32_t, index, order>(out, field);
      } else {
        writeScalar<uint64_t, index, order>(out, field);
      }
    }
  } else if constexpr (pass != Pass::Scalars) {
    if (hasWord<record, index>(from)) {
      out.template enter<index, order>();
      words[wordIndex<record, index>] = out.cursor;
      out.cursor += 4;
    }
  }
}

// Lets the offset word at `word` say where `target` is.
template <host::ByteOrder order>
[[gnu::always_inline]] inline void pointAt(uint8_t* word, const uint8_t* target) {
  host::store<order>(word, static_cast<uint32_t>(target - word));
}

template <host::ByteOrder order>
[[gnu::always_inline]] inline void writeLength(uint8_t*& cursor, uint32_t length) {
  host::store<order>(cursor, length);
  cursor += 4;
}

template <const Record& record, host::ByteOrder order>
void writeVector(uint8_t*& cursor, uint32_t count, const uint8_t* items) {
  writeLength<order>(cursor, count);
  uint8_t* word = cursor;
  cursor += uint64_t{4} * count;
  for (uint32_t item = 0; item < count; ++item, word += 4) {
    pointAt<order>(word, writeTable<record, order>(cursor, items + uint64_t{record.size} * item));
  }
}

// One slot's target. Returns how much of it the table length leaves out.
template <const Record& record, size_t index, host::ByteOrder order>
[[gnu::always_inline]] inline size_t writeTarget(uint8_t*& cursor, const uint8_t* from,
                                                 uint8_t* const* words) {
  constexpr const Slot& slot = record.slots[index];
  const uint8_t* const field = from + slot.recordOffset;
  uint8_t* const start = cursor;
  if constexpr (slot.kind == Kind::Array) {
    pointAt<order>(words[wordIndex<record, index>], cursor);
    writeLength<order>(cursor, slot.size);
    if constexpr (slot.size <= host::largestInPlace) {
      host::copyConstant<slot.size>(cursor, field);
    } else {
      host::copyBytes(cursor, field, slot.size);
    }
    cursor += slot.size;
  } else if constexpr (slot.kind == Kind::Bytes) {
    if (hasWord<record, index>(from)) {
      const auto length = host::load<uint32_t>(from + slot.countOffset);
      pointAt<order>(words[wordIndex<record, index>], cursor);
      writeLength<order>(cursor, length);
      host::copyBytes(cursor, host::loadPointer<const uint8_t>(field), length);
      cursor += length;
    }
  } else if constexpr (slot.kind == Kind::Table) {
    pointAt<order>(words[wordIndex<record, index>], writeTable<*slot.nested, order>(cursor, field));
    return static_cast<size_t>(cursor - start);
  } else if constexpr (slot.kind == Kind::Vector) {
    if (hasWord<record, index>(from)) {
      pointAt<order>(words[wordIndex<record, index>], cursor);
      writeVector<*slot.nested, order>(cursor, host::load<uint32_t>(from + slot.countOffset),
                                       host::loadPointer<const uint8_t>(field));
      return static_cast<size_t>(cursor - start);
    }
  }
  return 0;
}

}  // namespace detail

template <const Record& record, host::ByteOrder order>
uint16_t writeTableFields(uint8_t*& cursor, const uint8_t* from, uint8_t* entries) {
  using detail::Pass;
  uint8_t* const start = cursor;
  detail::Inline out{start, entries, start};
  std::array<uint8_t*, detail::wordIndex<record, record.slots.size()>> words{};
  size_t leftOut = 0;
  [&]<size_t... index>(std::index_sequence<index...>) {
    if constexpr (record.style.inlineOrder == InlineOrder::Slots) {
      (detail::writeInline<record, index, Pass::Everything, order>(out, from, words.data()), ...);
    } else {
      (detail::writeInline<record, index, Pass::Scalars, order>(out, from, words.data()), ...);
      (detail::writeInline<record, index, Pass::Words, order>(out, from, words.data()), ...);
    }
    cursor = out.cursor;
    ((leftOut += detail::writeTarget<record, index, order>(cursor, from, words.data())), ...);
  }
  (std::make_index_sequence<record.slots.size()>());
  // Sixteen bits hold it for every record without byte strings; readers never look at it.
  return static_cast<uint16_t>(detail::firstField + static_cast<size_t>(cursor - start) - leftOut);
}

// The whole message at `message`, which has room for compactSize().
template <const Record& record, host::ByteOrder order>
void writeCompact(uint8_t* message, const uint8_t* from) {
  host::store<order>(message, 4 + vtableLength(record));
  uint8_t* cursor = message + 4;
  writeTable<record, order>(cursor, from);
}

}  // namespace mesh::wire
