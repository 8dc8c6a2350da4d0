// The measured records: 4,096 different ones, filled by their schema.
#pragma once

#include <algorithm>
#include <cstdint>

#include "bench/exported.hpp"
#include "bench/placement.hpp"
#include "bench/random.hpp"

namespace bench {

enum class Fill : uint8_t {
  Full,    // no scalar is zero
  Sparse,  // each scalar is zero with probability one half
};

struct Shape {
  Fill fill = Fill::Full;
  uint32_t stringLength = 32;  // of every byte string
  uint32_t items = 1;          // of every run of records
  // Limits the size of all records with their parts: above it, there are fewer records.
  uint64_t room = uint64_t{80} << 20;
  uint64_t seed = 1;
};

inline constexpr uint32_t recordCount = 4096;

// The room for a record's byte strings and runs, each a multiple of 8 bytes.
uint64_t partsSize(const mesh::wire::Schema& schema, const Shape& shape);

// Fills a record of zeros. Places its byte strings and runs at `parts`, and returns their end.
uint8_t* fill(const mesh::wire::Schema& schema, const Shape& shape, Random& random, uint8_t* record,
              uint8_t* parts);

// Whether two records hold the same values. Ignores padding.
bool equal(const mesh::wire::Schema& schema, const uint8_t* one, const uint8_t* other);

template <typename Record>
class Records {
 public:
  explicit Records(const Shape& shape) {
    const uint64_t parts = partsSize(schema<Record>, shape);
    const uint64_t fitting = std::max<uint64_t>(shape.room / (sizeof(Record) + parts), 1);
    const uint64_t count = std::min<uint64_t>(recordCount, fitting);
    records_.resize(count);
    parts_.resize(count * parts / sizeof(uint64_t));
    Random random(shape.seed);
    auto* free = reinterpret_cast<uint8_t*>(parts_.data());
    for (Record& record : records_) {
      free = fill(schema<Record>, shape, random, reinterpret_cast<uint8_t*>(&record), free);
    }
  }

  [[nodiscard]] const Record* begin() const { return records_.data(); }
  [[nodiscard]] const Record* end() const { return records_.data() + records_.size(); }
  [[nodiscard]] uint32_t size() const { return static_cast<uint32_t>(records_.size()); }
  // Of a record's byte strings and runs.
  [[nodiscard]] uint64_t partsBytes() const {
    return parts_.size() * sizeof(uint64_t) / records_.size();
  }

 private:
  Placed<Record> records_;
  Placed<uint64_t> parts_;  // words, so that runs of records are aligned
};

}  // namespace bench
