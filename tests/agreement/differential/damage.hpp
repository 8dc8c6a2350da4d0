// Changes that tell readers apart: of the words that say where things are, mostly to values that
// lie at a bound.
#pragma once

#include <array>

#include "random.hpp"
#include "wire/schema.hpp"

namespace differential {

namespace wire = mesh::wire;

// A message before it is placed in its buffer. Of a long buffer only the first bytes are `held`;
// the others are filler, and are not changed.
struct Draft {
  static constexpr uint32_t capacity = uint32_t{1} << 17;

  std::array<uint8_t, capacity> bytes;
  uint32_t held;
  uint32_t length;
};

// Makes the draft's buffer reach beyond the positions that sixteen bits hold.
void lengthen(Random& random, Draft& draft);

// Moves all but the root word, which then leads to the table's new place.
void moveAll(Random& random, Draft& draft);

// Puts the root table's head elsewhere, often so that the buffer ends within the table's fields.
void moveHead(Random& random, Draft& draft);

// Gives the draft the end of another message.
void splice(Random& random, Draft& draft, const Draft& other);

// One change of bits, bytes, a word or the length. The buffer keeps at least 4 bytes.
void change(Random& random, const wire::Schema& schema, Draft& draft);

}  // namespace differential
