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

// A table's frame: its position, its vtable's, and the vtable's length.
struct TableFrame {
  uint32_t table;
  uint32_t vtable;
  uint32_t vtableLength;
};

// What of a frame does not lie inside the buffer; what comes after it is not read.
enum class FrameFault : uint8_t {
  None,
  Table,
  Vtable,
  VtableLength,
};

// Reads the frame of the table at `table`. The buffer is at least 4 bytes long.
template <host::ByteOrder order>
[[gnu::always_inline]] inline FrameFault readFrame(Buffer<order> buffer, uint32_t table,
                                                   TableFrame& frame) {
  frame = {table, 0, 0};
  const uint32_t largest = buffer.length - 4;
  if (table < 4 || table > largest) [[unlikely]] {
    return FrameFault::Table;
  }
  // Wraps at 32 bits by the format's own rule: a vtable behind its table is a negative distance.
  frame.vtable = table - buffer.template read<uint32_t>(table);
  if (frame.vtable < 4 || frame.vtable > largest) [[unlikely]] {
    return FrameFault::Vtable;
  }
  frame.vtableLength = buffer.template read<uint16_t>(frame.vtable);
  return buffer.holds(frame.vtable, frame.vtableLength) ? FrameFault::None
                                                        : FrameFault::VtableLength;
}

}  // namespace mesh::wire
