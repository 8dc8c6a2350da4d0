// The compact arrangement: one forward pass into a buffer of the exact size.
//
//   root | vtable | table: vtable offset, inline part | tail: the offset words' targets
//
// Nothing here can fail: the size check beforehand has settled every bound. Whether a scalar is
// there is arithmetic, not a branch: values that no predictor can guess cost no more than others.
#pragma once

#include <array>
#include <utility>

#include "host/byte_order.hpp"
#include "host/memory.hpp"
#include "wire/compact_size.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

// A table that is being written. Offsets count from its first byte.
struct TableOut {
  uint8_t* table;
  uint8_t* entries;  // the vtable's slot entries
};

// Where a table's fields begin.
inline constexpr uint32_t firstField = 4;

// What a table takes, and the table length that its vtable states: nested tables and vectors do not
// count there.
struct TableExtent {
  size_t end;
  size_t leftOut;
};

// Writes every slot entry, the fields that are there and their targets; the vtable offset is
// written last, and is the caller's.
template <const Schema& schema>
TableExtent writeTableFields(TableOut out, const uint8_t* from);

// Writes a vtable at `vtable` and its table behind it. Returns the end of all of it.
template <const Schema& schema>
[[gnu::always_inline]] inline uint8_t* writeTable(uint8_t* vtable, const uint8_t* from) {
  constexpr uint32_t length = vtableLength(schema);
  const TableOut out{vtable + length, vtable + 4};
  const auto [end, leftOut] = writeTableFields<schema>(out, from);
  // A byte string may carry the table length past sixteen bits; readers do not look at it.
  static_assert(
      ownsMemory(schema) || smallestTableSize(schema) + scalarWidths(schema) <= UINT16_MAX,
      "positions have sixteen bits");
  host::store(vtable, length | static_cast<uint32_t>(end - leftOut) << 16);
  host::store(out.table, length);
  return out.table + end;
}

namespace detail {

// All ones where the value is not zero.
template <typename Scalar>
constexpr uint64_t presence(Scalar value) {
  return uint64_t{0} - static_cast<uint64_t>(value != 0);
}

// What follows the scalars in every message of the record, at least.
constexpr uint32_t smallestTail(const Schema& schema) {
  const uint32_t word = schema.style.inlineOrder == InlineOrder::ScalarsFirst ? 4 : 0;
  uint32_t size = 0;
  for (const Slot& slot : schema.slots) {
    if (slot.kind == Kind::Array) {
      size += word + 4 + slot.size;
    } else if (slot.kind == Kind::Table) {
      size += word + vtableLength(*slot.nested) + 4;
    }
  }
  return size;
}

// Stores the value whether it is there or not. One that is not lands on bytes that are written
// later: where the next field comes or, at a message's end, on the table's vtable offset.
template <const Schema& schema, typename Scalar, size_t index>
[[gnu::always_inline]] inline size_t writeScalar(TableOut out, const uint8_t* field, size_t at) {
  const auto value = host::load<Scalar>(field);
  const uint64_t isThere = presence(value);
  const uint64_t entry = at & isThere;
  host::store(out.entries + 2 * index, static_cast<uint16_t>(entry));
  if constexpr (smallestTail(schema) >= sizeof value) {
    // So many bytes follow the last scalar of every message, and are written later.
    host::store(out.table + at, value);
  } else if constexpr (sizeof value <= firstField) {
    host::store(out.table + entry, value);
  } else if (value != 0) {
    host::store(out.table + at, value);
  }
  return at + (sizeof value & isThere);
}

// Whether a slot that is written as an offset word is there.
template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline bool hasWord(const uint8_t* from) {
  constexpr const Slot& slot = schema.slots[index];
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
constexpr size_t countWords(const Schema& schema, size_t before) {
  size_t words = 0;
  for (const Slot& slot : schema.slots.first(before)) {
    words += isScalar(slot.kind) ? 0 : 1;
  }
  return words;
}

template <const Schema& schema, size_t index>
inline constexpr size_t wordIndex = countWords(schema, index);

template <const Schema& schema>
inline constexpr size_t wordCount = wordIndex<schema, schema.slots.size()>;

// Where the offset words stand; their values are not known before the inline part is written.
template <const Schema& schema>
using Words = std::array<size_t, wordCount<schema>>;

enum class Pass {
  Everything,
  Scalars,
  Words,
};

// One slot's share of the inline part. Returns where the next one's begins.
template <const Schema& schema, size_t index, Pass pass>
[[gnu::always_inline]] inline size_t writeInline(TableOut out, const uint8_t* from, size_t at,
                                                 Words<schema>& words) {
  constexpr const Slot& slot = schema.slots[index];
  if constexpr (isScalar(slot.kind)) {
    if constexpr (pass != Pass::Words) {
      const uint8_t* const field = from + slot.recordOffset;
      if constexpr (slot.kind == Kind::U8) {
        return writeScalar<schema, uint8_t, index>(out, field, at);
      } else if constexpr (slot.kind == Kind::U16) {
        return writeScalar<schema, uint16_t, index>(out, field, at);
      } else if constexpr (slot.kind == Kind::U32) {
        return writeScalar<schema, uint32_t, index>(out, field, at);
      } else {
        return writeScalar<schema, uint64_t, index>(out, field, at);
      }
    }
  } else if constexpr (pass != Pass::Scalars) {
    const uint64_t isThere = presence(hasWord<schema, index>(from));
    host::store(out.entries + 2 * index, static_cast<uint16_t>(at & isThere));
    words[wordIndex<schema, index>] = at;
    return at + (4 & isThere);
  }
  return at;
}

// Lets the offset word at `word` say where `target` is.
[[gnu::always_inline]] inline void pointAt(uint8_t* word, const uint8_t* target) {
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

// One slot's target, behind all that is written before it.
template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline void writeTarget(TableOut out, const uint8_t* from,
                                               const Words<schema>& words, TableExtent& extent) {
  constexpr const Slot& slot = schema.slots[index];
  if constexpr (!isScalar(slot.kind)) {
    const uint8_t* const field = from + slot.recordOffset;
    uint8_t* const word = out.table + words[wordIndex<schema, index>];
    uint8_t* const to = out.table + extent.end;
    if constexpr (slot.kind == Kind::Array) {
      pointAt(word, to);
      host::store(to, slot.size);
      if constexpr (slot.size <= host::largestInPlace) {
        host::copyConstant<slot.size>(to + 4, field);
      } else {
        // As the contents of a byte string, which it is in this arrangement.
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
      const auto* const contents = host::loadPointer<const uint8_t>(field);
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
}

}  // namespace detail

template <const Schema& schema>
[[gnu::always_inline]] inline TableExtent writeTableFields(TableOut out, const uint8_t* from) {
  using detail::Pass;
  size_t at = firstField;
  detail::Words<schema> words;
  TableExtent extent{};
  [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    if constexpr (schema.style.inlineOrder == InlineOrder::Slots) {
      ((at = detail::writeInline<schema, index, Pass::Everything>(out, from, at, words)), ...);
    } else {
      ((at = detail::writeInline<schema, index, Pass::Scalars>(out, from, at, words)), ...);
      ((at = detail::writeInline<schema, index, Pass::Words>(out, from, at, words)), ...);
    }
    extent = {at, 0};
    (detail::writeTarget<schema, index>(out, from, words, extent), ...);
  }
  (std::make_index_sequence<schema.slots.size()>());
  return extent;
}

// The whole message at `message`, which has room for compactSize(). Returns what was written.
template <const Schema& schema>
[[gnu::always_inline]] inline size_t writeCompact(uint8_t* message, const uint8_t* from) {
  host::store(message, 4 + vtableLength(schema));
  return static_cast<size_t>(writeTable<schema>(message + 4, from) - message);
}

}  // namespace mesh::wire
