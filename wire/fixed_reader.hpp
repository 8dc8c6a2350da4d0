// Reads the fixed arrangement: a buffer whose frame is the one that this library writes has every
// field at a known place.
#pragma once

#include <cstring>
#include <utility>

#include "host/byte_order.hpp"
#include "host/memory.hpp"
#include "wire/buffer.hpp"
#include "wire/fixed_layout.hpp"

namespace mesh::wire {
namespace detail {

// Bytes of an image that say where its fields are.
struct FramePart {
  uint32_t at;
  uint32_t size;
};

constexpr size_t framePartCount(const Schema& schema) {
  size_t count = 2;
  for (const Slot& slot : schema.slots) {
    count += slot.kind == Kind::Array   ? 1
             : slot.kind == Kind::Table ? framePartCount(*slot.nested)
                                        : 0;
  }
  return count;
}

constexpr void listFrame(const Schema& schema, uint32_t image, FramePart*& out) {
  *out++ = {image, 8};
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const uint32_t field = image + fixedTable + fixedEntry(schema, index);
    if (schema.slots[index].kind == Kind::Array) {
      *out++ = {field, 8};
    } else if (schema.slots[index].kind == Kind::Table) {
      listFrame(*schema.slots[index].nested, field, out);
    }
  }
  *out++ = {image + fixedVtable(schema), vtableLength(schema)};
}

template <const Schema& schema>
inline constexpr auto frameParts = [] {
  std::array<FramePart, framePartCount(schema)> parts{};
  FramePart* end = parts.data();
  listFrame(schema, 0, end);
  return parts;
}();

// What is compared at once.
using Four = uint32_t;
using Eight = uint64_t;
using Sixteen [[gnu::vector_size(16)]] = uint64_t;

// Nonzero where `Wide`'s worth of bytes from `at` on differs from the frame's.
template <const Schema& schema, typename Wide, uint32_t at>
[[gnu::always_inline]] inline Wide difference(const uint8_t* image) {
  Wide found{};
  Wide expected{};
  std::memcpy(&found, image + at, sizeof found);
  std::memcpy(&expected, fixedFrame<schema>.data() + at, sizeof expected);
  return found ^ expected;
}

// The same over a part of any size; the last comparison overlaps the one before.
template <const Schema& schema, typename Wide, uint32_t at, uint32_t size>
[[gnu::always_inline]] inline Wide differences(const uint8_t* image) {
  constexpr uint32_t width = sizeof(Wide);
  static_assert(size >= width);
  constexpr size_t whole = size / width;
  return [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    const Wide rest = difference<schema, Wide, at + size - width>(image);
    return (rest | ... | difference<schema, Wide, at + width * index>(image));
  }
  (std::make_index_sequence < size % width == 0 ? whole - 1 : whole > ());
}

template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline Eight partDiffers(const uint8_t* image) {
  constexpr FramePart part = frameParts<schema>[index];
  if constexpr (part.size < sizeof(Eight)) {
    return differences<schema, Four, part.at, part.size>(image);
  } else if constexpr (part.size < sizeof(Sixteen)) {
    return differences<schema, Eight, part.at, part.size>(image);
  } else {
    const Sixteen both = differences<schema, Sixteen, part.at, part.size>(image);
    return both[0] | both[1];
  }
}

// The record's padding is made of zeros.
inline constexpr std::array<uint8_t, host::chunk> zeros{};

template <const Schema& schema>
inline constexpr StorePlan recordPlan =
    planStores(recordStretches<schema>.all(),
               {.source = fixedVtable(schema) + vtableLength(schema), .constants = zeros.size()});

template <Origin origin>
[[gnu::always_inline]] inline const uint8_t* originOf(const uint8_t* image) {
  return (origin.isConstant ? zeros.data() : image) + origin.from;
}

template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline void fillPiece(uint8_t* into, const uint8_t* image) {
  constexpr Store store = recordPlan<schema>.stores[index];
  if constexpr (store.isPair) {
    storePair(into + store.to, originOf<store.low>(image), originOf<store.high>(image));
  } else {
    host::copyConstant<store.size>(into + store.to, originOf<store.low>(image));
  }
}

}  // namespace detail

// Whether the buffer holds an image of the record with exactly this library's frame. Its padding,
// and what stands behind it, may be anything.
template <const Schema& schema>
[[gnu::always_inline]] inline bool hasFixedFrame(Buffer<host::ByteOrder::Host> buffer) {
  // The root word tells most other buffers apart, and of those it is all that is looked at here.
  if (buffer.length < fixedVtable(schema) + vtableLength(schema) ||
      buffer.read<uint32_t>(0) != fixedTable) {
    return false;
  }
  return [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    return (detail::partDiffers<schema, index>(buffer.data) | ...) == 0;
  }
  (std::make_index_sequence<detail::frameParts<schema>.size()>());
}

// Fills the record, its padding with zeros, from an image that has the fixed frame.
template <const Schema& schema>
[[gnu::always_inline]] inline void readFixedImage(uint8_t* into, const uint8_t* image) {
  if constexpr (schema.size > host::largestInPlace) {
    host::clearConstant<schema.size>(into);
  }
  [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    (detail::fillPiece<schema, index>(into, image), ...);
  }
  (std::make_index_sequence<detail::recordPlan<schema>.count>());
}

}  // namespace mesh::wire
