// Writes the fixed arrangement: a record's whole image, from front to back.
#pragma once

#include <utility>

#include "host/binding.hpp"
#include "host/memory.hpp"
#include "wire/fixed_layout.hpp"

namespace mesh::wire {
namespace detail {

// The frame's bytes from `from` up to `to`, as an object of their own: small ones become immediate
// values in the code.
template <const Record& record, host::ByteOrder order, uint32_t from, uint32_t to>
inline constexpr auto framePiece = [] {
  std::array<uint8_t, to - from> piece{};
  std::copy_n(fixedFrame<record, order>.begin() + from, to - from, piece.begin());
  return piece;
}();

template <const Record& record, host::ByteOrder order, uint32_t from, uint32_t to>
[[gnu::always_inline]] inline void writeFrame(uint8_t* image) {
  if constexpr (from < to) {
    host::copyConstant<to - from>(image + from, framePiece<record, order, from, to>.data());
  }
}

template <const Record& record, host::ByteOrder order, size_t index>
[[gnu::always_inline]] inline void writePiece(uint8_t* image, const uint8_t* from) {
  using Moves = FixedMoves<record, order>;
  constexpr Move move = Moves::moves[index];
  constexpr uint32_t end =
      index == 0 ? 0 : Moves::moves[index - 1].image + Moves::moves[index - 1].size;
  writeFrame<record, order, end, move.image>(image);
  uint8_t* const to = image + move.image;
  if constexpr (order == host::ByteOrder::Host || !move.isInteger) {
    host::copyConstant<move.size>(to, from + move.record);
  } else if constexpr (move.size == 2) {
    host::store<order>(to, host::load<uint16_t>(from + move.record));
  } else if constexpr (move.size == 4) {
    host::store<order>(to, host::load<uint32_t>(from + move.record));
  } else {
    static_assert(move.size == 8);
    host::store<order>(to, host::load<uint64_t>(from + move.record));
  }
}

}  // namespace detail

// `image` has room for fixedLength(record) bytes.
template <const Record& record, host::ByteOrder order>
[[gnu::always_inline]] inline void writeFixedImage(uint8_t* image, const uint8_t* from) {
  using Moves = FixedMoves<record, order>;
  constexpr Move last = Moves::moves[Moves::count - 1];
  [&]<size_t... index>(std::index_sequence<index...>) {
    (detail::writePiece<record, order, index>(image, from), ...);
  }
  (std::make_index_sequence<Moves::count>());
  detail::writeFrame<record, order, last.image + last.size, fixedLength(record)>(image);
}

}  // namespace mesh::wire
