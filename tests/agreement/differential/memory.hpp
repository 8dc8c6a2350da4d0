// Memory between two pages that trap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace differential {

struct TrappedMemory {
  uint8_t* begin;
  uint8_t* end;
  // A writable mapping of the same bytes: those between the traps may be read-only.
  uint8_t* writable;

  // The writable address of the byte at `at`.
  [[nodiscard]] uint8_t* toWrite(const uint8_t* at) const { return writable + (at - begin); }
};

// Room for `size` bytes, in whole pages.
TrappedMemory mapWritable(size_t size);
TrappedMemory mapReadOnly(size_t size);

}  // namespace differential
