// Changes that reveal differences between readers: mostly of offsets and lengths, to values at a
// bound.
#pragma once

#include <array>

#include "random.hpp"
#include "wire/schema.hpp"

namespace differential {

namespace wire = mesh::wire;

// A message before it is placed in its buffer. Of a long buffer only the first `held` bytes are
// stored; the others are filler, and never change.
struct Draft {
  static constexpr uint32_t capacity = uint32_t{1} << 17;

  std::array<uint8_t, capacity> bytes;
  uint32_t held;
  uint32_t length;
};

// Extends the draft's buffer beyond 16-bit positions.
void lengthen(Random& random, Draft& draft);

// Moves everything except the root word, which then leads to the table's new position.
void moveAll(Random& random, Draft& draft);

// Moves the root table's head, often so that the buffer ends within the table's fields.
void moveHead(Random& random, Draft& draft);

// Replaces the draft's end by that of another message.
void splice(Random& random, Draft& draft, const Draft& other);

// One change of bits, bytes, a word or the length. The buffer keeps at least 4 bytes.
void change(Random& random, const wire::Schema& schema, Draft& draft);

}  // namespace differential
