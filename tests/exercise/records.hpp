// Random records, made by walking a schema.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "wire/schema.hpp"

namespace exercise {

// xorshift64*: the same numbers everywhere.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 2 + 1) {}
  uint64_t next() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return state_ * 0x2545F4914F6CDD1D;
  }
  uint32_t below(uint32_t limit) { return static_cast<uint32_t>((next() >> 32) % limit); }

 private:
  uint64_t state_;
};

// Some records, back to back, with what their pointers lead to.
class Records {
 public:
  Records(const mesh::wire::Schema& schema, uint32_t count, Random& random);

  const uint8_t* data() const { return records_.get(); }

 private:
  uint8_t* take(size_t size);
  void fill(const mesh::wire::Schema& schema, uint8_t* record, Random& random);

  std::unique_ptr<uint8_t[]> records_;
  std::vector<std::unique_ptr<uint8_t[]>> parts_;
};

// Whether a pointer in the record leads to a byte string or a run.
bool ownsParts(const mesh::wire::Schema& schema, const uint8_t* record);

// One to three bytes changed, or an end cut off.
void damage(std::vector<uint8_t>& bytes, Random& random);

}  // namespace exercise
