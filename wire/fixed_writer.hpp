// Writes the fixed arrangement: a record's whole image, from front to back.
#pragma once

#include <algorithm>
#include <utility>

#include "host/memory.hpp"
#include "wire/fixed_layout.hpp"

namespace mesh::wire {
namespace detail {

template <const Record& record>
inline constexpr StorePlan imagePlan = planStores(imageStretches<record>.all(),
                                                  {.source = record.size,
                                                   .constants = fixedLength(record)});

// A piece of the frame, as an object of its own: small ones become immediate values in the code.
template <const Record& record, uint32_t from, uint32_t size>
inline constexpr auto framePiece = [] {
  std::array<uint8_t, size> piece{};
  std::copy_n(fixedFrame<record>.begin() + from, size, piece.begin());
  return piece;
}();

template <const Record& record, Origin origin, uint32_t size>
[[gnu::always_inline]] inline const uint8_t* pieceOf(const uint8_t* from) {
  if constexpr (origin.isConstant) {
    return framePiece<record, origin.from, size>.data();
  } else {
    return from + origin.from;
  }
}

template <const Record& record, size_t index>
[[gnu::always_inline]] inline void writePiece(uint8_t* image, const uint8_t* from) {
  constexpr Store store = imagePlan<record>.stores[index];
  if constexpr (store.isPair) {
    storePair(image + store.to, pieceOf<record, store.low, 8>(from),
              pieceOf<record, store.high, 8>(from));
  } else {
    host::copyConstant<store.size>(image + store.to, pieceOf<record, store.low, store.size>(from));
  }
}

}  // namespace detail

// `image` has room for fixedLength(record) bytes.
template <const Record& record>
[[gnu::always_inline]] inline void writeFixedImage(uint8_t* image, const uint8_t* from) {
  [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    (detail::writePiece<record, index>(image, from), ...);
  }
  (std::make_index_sequence<detail::imagePlan<record>.count>());
}

}  // namespace mesh::wire
