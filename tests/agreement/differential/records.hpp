// Random records, and their comparison after reading.
#pragma once

#include "random.hpp"
#include "subjects.hpp"

namespace differential {

class Records {
 public:
  explicit Records(uint64_t seed);

  // Fills a record of the message, its padding too.
  void fill(Random& random, const Subject& subject, uint8_t* record) const;

 private:
  // The contents of byte strings, and items for vectors.
  std::vector<uint8_t> contents_;
};

// Whether a received record has the values of the sent one.
bool isAsSent(const Subject& subject, const uint8_t* sent, const uint8_t* received);

}  // namespace differential
