// Memory between two pages that trap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace differential {

struct TrappedMemory {
  uint8_t* begin;
  uint8_t* end;
  // The same bytes for who fills them: what is read between the traps cannot be written there.
  uint8_t* writable;

  // The writable place of a byte between the traps.
  [[nodiscard]] uint8_t* toWrite(const uint8_t* at) const { return writable + (at - begin); }
};

// Room for `size` bytes, in whole pages.
TrappedMemory mapWritable(size_t size);
TrappedMemory mapReadOnly(size_t size);

}  // namespace differential
