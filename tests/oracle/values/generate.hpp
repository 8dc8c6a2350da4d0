// Random records and damaged buffers. The same seed gives the same result everywhere.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

// Plain remainders: the distributions of the standard library differ between implementations.
inline uint64_t below(std::mt19937_64& random, uint64_t limit) {
  return random() % limit;
}

enum class Density {
  Full,    // no scalar is zero
  Sparse,  // each scalar is zero half of the time
  Edge,    // scalars at the borders of their widths, arrays of one repeated byte
};

// Byte strings are null, or hold 0, 1, a few or now and then some hundred bytes; vectors are
// null or hold up to 3 items. Declared lengths are true.
Value randomValue(const Description& message, std::mt19937_64& random, Density density);

// The buffer with one to four injuries: flipped bits, overwritten bytes and words, words of the
// frame bent to telling values, vtable lengths changed, the end cut off or drawn out, slices
// repeated.
std::vector<uint8_t> mutate(std::vector<uint8_t> buffer, std::mt19937_64& random);

}  // namespace oracle
