// The exact size of a compact message. The size of a table includes its vtable and the targets of
// its offset words, but not the message's root word.
#pragma once

#include "host/memory.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

// More than any message may have, and small enough that sums with it do not wrap.
inline constexpr uint64_t unsizable = uint64_t{1} << 62;

// The part of a slot's size that does not depend on its value. A nested table counts apart.
constexpr uint64_t constantSize(const Slot& slot) {
  return slot.kind == Kind::Array ? 8 + slot.size : slot.kind == Kind::Table ? 4 : 0;
}

// A table with every scalar zero and every pointer null.
constexpr uint64_t smallestTableSize(const Schema& schema) {
  uint64_t size = vtableLength(schema) + 4;
  for (const Slot& slot : schema.slots) {
    size += constantSize(slot) + (slot.kind == Kind::Table ? smallestTableSize(*slot.nested) : 0);
  }
  return size;
}

// What the scalars of a record and of its nested records take when none is zero.
constexpr uint64_t scalarWidths(const Schema& schema) {
  uint64_t size = 0;
  for (const Slot& slot : schema.slots) {
    size += slot.kind == Kind::Scalar  ? slot.size
            : slot.kind == Kind::Table ? scalarWidths(*slot.nested)
                                       : 0;
  }
  return size;
}

// The largest message of a record without out-of-line parts.
constexpr uint64_t largestCompactSize(const Schema& schema) {
  return 4 + smallestTableSize(schema) + scalarWidths(schema);
}

// What a record's values take beyond smallestTableSize(); `unsizable` or more for a record that has
// no encoding.
template <const Schema& schema>
uint64_t valueSizes(const uint8_t* from) {
  return sumSlots<schema>([&](auto index) -> uint64_t {
    constexpr const Slot& slot = schema.slots[index];
    const uint8_t* const field = from + slot.recordOffset;
    if constexpr (slot.kind == Kind::Scalar) {
      return host::load<ScalarOf<schema, index>>(field) != 0 ? slot.size : 0;
    } else if constexpr (slot.kind == Kind::Table) {
      return valueSizes<*slot.nested>(field);
    } else if constexpr (slot.kind == Kind::Bytes) {
      // A pointer with a length of 0 counts, though the writer leaves it out. Senders have always
      // stated this size; receivers ignore the last 8 bytes.
      return host::load<const uint8_t*>(field) != nullptr
                 ? uint64_t{8} + host::load<uint32_t>(from + slot.countOffset)
                 : 0;
    } else if constexpr (slot.kind == Kind::Vector) {
      constexpr uint64_t smallestItem = smallestTableSize(*slot.nested);
      const auto count = host::load<uint32_t>(from + slot.countOffset);
      const auto* const items = host::load<const uint8_t*>(field);
      if (count == 0) {
        return 0;
      }
      // Do not read items where the count alone is too large to be encoded: it may be wrong.
      if (items == nullptr || count * (4 + smallestItem) > UINT32_MAX) {
        return unsizable;
      }
      uint64_t size = 4 + 4 + count * (4 + smallestItem);
      for (uint32_t item = 0; item < count; ++item) {
        size += valueSizes<*slot.nested>(items + uint64_t{slot.size} * item);
      }
      return size;
    } else {
      return 0;
    }
  });
}

// The whole message.
template <const Schema& schema>
uint64_t compactSize(const uint8_t* from) {
  constexpr uint64_t smallest = 4 + smallestTableSize(schema);
  return smallest + valueSizes<schema>(from);
}

}  // namespace mesh::wire
