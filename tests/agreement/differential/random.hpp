// The random numbers of one execution (splitmix64). They depend only on the seed and its number.
#pragma once

#include <cstdint>
#include <cstring>

#include "host/memory.hpp"

namespace differential {

namespace host = mesh::host;

class Random {
 public:
  Random(uint64_t seed, uint64_t number) : state_(mixed(seed) ^ mixed(number + increment)) {}

  uint64_t next() { return mixed(state_ += increment); }

  // Less than `limit`, which is not 0.
  uint32_t below(uint32_t limit) {
    return static_cast<uint32_t>((uint64_t{static_cast<uint32_t>(next())} * limit) >> 32);
  }

  // True once in `count` calls on average.
  bool oneIn(uint32_t count) { return below(count) == 0; }

  void fill(uint8_t* bytes, size_t count) {
    size_t at = 0;
    for (; at + sizeof(uint64_t) <= count; at += sizeof(uint64_t)) {
      host::store(bytes + at, next());
    }
    const uint64_t last = next();
    std::memcpy(bytes + at, &last, count - at);
  }

 private:
  static constexpr uint64_t increment = 0x9E3779B97F4A7C15;

  static constexpr uint64_t mixed(uint64_t word) {
    word = (word ^ (word >> 30)) * 0xBF58476D1CE4E5B9;
    word = (word ^ (word >> 27)) * 0x94D049BB133111EB;
    return word ^ (word >> 31);
  }

  uint64_t state_;
};

}  // namespace differential
