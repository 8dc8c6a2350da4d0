// Memory between two pages that trap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace differential {

struct TrappedMemory {
  uint8_t* begin;
  uint8_t* end;
  // The same bytes once more, to fill them where those between the traps are read-only.
  uint8_t* writable;

  // The writable place of the byte at `at`.
  [[nodiscard]] uint8_t* toWrite(const uint8_t* at) const { return writable + (at - begin); }
};

// Room for `size` bytes, in whole pages.
TrappedMemory mapWritable(size_t size);
TrappedMemory mapReadOnly(size_t size);

}  // namespace differential
