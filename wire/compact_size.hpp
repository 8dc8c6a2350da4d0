// The exact size of the compact arrangement, worked out before a byte is written.
#pragma once

#include <utility>

#include "host/byte_order.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

// More than any message may have, and small enough that sums with it do not wrap.
inline constexpr uint64_t unsizable = uint64_t{1} << 62;

// The bytes that a record's vtable and table take, what hangs from them included; `unsizable` or
// more for a record that has no encoding. The buffer's root word is not counted.
template <const Schema& schema>
uint64_t tableSize(const uint8_t* from);

namespace detail {

// What a slot takes whatever its value.
constexpr uint64_t constantSize(const Slot& slot) {
  return slot.kind == Kind::Array ? 8 + slot.size : slot.kind == Kind::Table ? 4 : 0;
}

constexpr uint64_t constantSize(const Schema& schema) {
  uint64_t size = vtableLength(schema) + 4;
  for (const Slot& slot : schema.slots) {
    size += constantSize(slot);
  }
  return size;
}

}  // namespace detail

// A table with its vtable, every scalar zero and every pointer null.
constexpr uint64_t smallestTableSize(const Schema& schema) {
  uint64_t size = detail::constantSize(schema);
  for (const Slot& slot : schema.slots) {
    size += slot.kind == Kind::Table ? smallestTableSize(*slot.nested) : 0;
  }
  return size;
}

// What the scalars of a record and of its nested records take when none is zero.
constexpr uint64_t scalarWidths(const Schema& schema) {
  uint64_t size = 0;
  for (const Slot& slot : schema.slots) {
    if (slot.kind == Kind::Table) {
      size += scalarWidths(*slot.nested);
    } else if (isScalar(slot.kind)) {
      size += slot.size;
    }
  }
  return size;
}

// The largest message of a record without out-of-line parts.
constexpr uint64_t largestCompactSize(const Schema& schema) {
  return 4 + smallestTableSize(schema) + scalarWidths(schema);
}

namespace detail {

template <typename Scalar>
[[gnu::always_inline]] inline uint64_t scalarSize(const uint8_t* field) {
  return host::load<Scalar>(field) != 0 ? sizeof(Scalar) : 0;
}

template <const Schema& schema>
uint64_t vectorSize(uint32_t count, const uint8_t* items) {
  if (count == 0) {
    return 0;
  }
  // Items that could not be encoded anyway are not looked at: a wrong count leads astray.
  if (items == nullptr || count * (4 + smallestTableSize(schema)) > UINT32_MAX) {
    return unsizable;
  }
  uint64_t size = 4 + 4 + uint64_t{4} * count;
  for (uint32_t item = 0; item < count; ++item) {
    size += tableSize<schema>(items + uint64_t{schema.size} * item);
  }
  return size;
}

// What a slot takes beyond its constant part.
template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline uint64_t valueSize(const uint8_t* from) {
  constexpr const Slot& slot = schema.slots[index];
  const uint8_t* const field = from + slot.recordOffset;
  if constexpr (slot.kind == Kind::U8) {
    return scalarSize<uint8_t>(field);
  } else if constexpr (slot.kind == Kind::U16) {
    return scalarSize<uint16_t>(field);
  } else if constexpr (slot.kind == Kind::U32) {
    return scalarSize<uint32_t>(field);
  } else if constexpr (slot.kind == Kind::U64) {
    return scalarSize<uint64_t>(field);
  } else if constexpr (slot.kind == Kind::Table) {
    return tableSize<*slot.nested>(field);
  } else if constexpr (slot.kind == Kind::Bytes) {
    // A pointer with a length of 0 counts here, though the writer leaves it out: receivers depend
    // on neither, senders have always stated this size.
    return host::loadPointer<const uint8_t>(field) != nullptr
               ? uint64_t{8} + host::load<uint32_t>(from + slot.countOffset)
               : 0;
  } else if constexpr (slot.kind == Kind::Vector) {
    return vectorSize<*slot.nested>(host::load<uint32_t>(from + slot.countOffset),
                                    host::loadPointer<const uint8_t>(field));
  } else {
    return 0;
  }
}

}  // namespace detail

template <const Schema& schema>
[[gnu::always_inline]] inline uint64_t tableSize(const uint8_t* from) {
  return [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    return (detail::constantSize(schema) + ... + detail::valueSize<schema, index>(from));
  }
  (std::make_index_sequence<schema.slots.size()>());
}

// The whole message: the root word and its table.
template <const Schema& schema>
[[gnu::always_inline]] inline uint64_t compactSize(const uint8_t* from) {
  return 4 + tableSize<schema>(from);
}

}  // namespace mesh::wire
