// A small generator (splitmix64): the same records in every run.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace bench {

class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint64_t next() {
    uint64_t word = state_ += 0x9E3779B97F4A7C15;
    word = (word ^ (word >> 30)) * 0xBF58476D1CE4E5B9;
    word = (word ^ (word >> 27)) * 0x94D049BB133111EB;
    return word ^ (word >> 31);
  }

  bool coin() { return (next() >> 63) != 0; }

  void fill(uint8_t* bytes, size_t count) {
    while (count > 0) {
      const uint64_t word = next();
      const size_t step = std::min(count, sizeof word);
      std::memcpy(bytes, &word, step);
      bytes += step;
      count -= step;
    }
  }

 private:
  uint64_t state_;
};

}  // namespace bench
