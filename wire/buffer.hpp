// A received buffer and positions in it.
#pragma once

#include "host/byte_order.hpp"

namespace mesh::wire {

// A byte offset from the buffer's start. Sixty-four bits hold the sum of any two values that a
// buffer can state, so no sum of positions and lengths wraps before it is compared.
using Position = uint64_t;

// Passed by value: behind a reference, every store into a record might change it.
template <host::ByteOrder order>
struct Buffer {
  const uint8_t* data;
  uint32_t length;

  // Whether `size` bytes from `at` on lie inside.
  [[nodiscard]] bool holds(Position at, uint64_t size) const { return at + size <= length; }

  // The caller has seen that the buffer holds them.
  template <typename Integer>
  [[nodiscard]] Integer read(Position at) const {
    return host::load<Integer, order>(data + at);
  }
};

// A table whose frame has been verified: its position, its vtable's, and the vtable's length, all
// of it inside the buffer.
struct TableFrame {
  uint32_t table;
  uint32_t vtable;
  uint32_t vtableLength;
};

}  // namespace mesh::wire
