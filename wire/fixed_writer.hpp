// Writes the fixed arrangement: a record's whole image, from front to back.
#pragma once

#include <algorithm>
#include <utility>

#include "host/memory.hpp"
#include "wire/fixed_layout.hpp"

namespace mesh::wire {
namespace detail {

template <const Schema& schema>
inline constexpr StorePlan imagePlan = planStores(imageStretches<schema>.all(),
                                                  {.source = schema.size,
                                                   .constants = fixedLength(schema)});

// A piece of the frame, as an object of its own: small ones become immediate values in the code.
template <const Schema& schema, uint32_t from, uint32_t size>
inline constexpr auto framePiece = [] {
  std::array<uint8_t, size> piece{};
  std::copy_n(fixedFrame<schema>.begin() + from, size, piece.begin());
  return piece;
}();

template <const Schema& schema, Origin origin, uint32_t size>
[[gnu::always_inline]] inline const uint8_t* pieceOf(const uint8_t* from) {
  if constexpr (origin.isConstant) {
    return framePiece<schema, origin.from, size>.data();
  } else {
    return from + origin.from;
  }
}

template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline void writePiece(uint8_t* image, const uint8_t* from) {
  constexpr Store store = imagePlan<schema>.stores[index];
  if constexpr (store.isPair) {
    storePair(image + store.to, pieceOf<schema, store.low, 8>(from),
              pieceOf<schema, store.high, 8>(from));
  } else {
    host::copyConstant<store.size>(image + store.to, pieceOf<schema, store.low, store.size>(from));
  }
}

}  // namespace detail

// `image` has room for fixedLength(record) bytes.
template <const Schema& schema>
[[gnu::always_inline]] inline void writeFixedImage(uint8_t* image, const uint8_t* from) {
  [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    (detail::writePiece<schema, index>(image, from), ...);
  }
  (std::make_index_sequence<detail::imagePlan<schema>.count>());
}

}  // namespace mesh::wire
