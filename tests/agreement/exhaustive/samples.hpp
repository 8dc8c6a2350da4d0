// One message of each kind, for tests that try everything on it.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"
#include "support/operations.hpp"

namespace exhaustive {

enum class Arrangement { Compact, Fixed };

struct Sample {
  const harness::Operations* operations;
  Arrangement arrangement;
  bool reversed;
  std::vector<uint8_t> bytes;

  [[nodiscard]] const oracle::Description& message() const {
    return oracle::descriptionOf(operations->name);
  }
  [[nodiscard]] std::string name() const;
  // A message of many KiB, of which a test tries less.
  [[nodiscard]] bool isLarge() const { return bytes.size() > 4096; }
};

inline void PrintTo(const Sample& sample, std::ostream* out) {
  *out << sample.name();
}

// A record in which nothing is zero, null or empty; the identifier is the seed.
oracle::Value fullValue(const oracle::Description& message);

// The full record in every arrangement and byte order that the message has. The items of
// l2vpn_cfg_query_dfx_rec come from an older writer, without their last and largest slot.
std::vector<Sample> samplesOf(const harness::Operations& operations);

// The same in the fixed arrangement alone; empty where there is none.
std::vector<Sample> fixedSamplesOf(const harness::Operations& operations);

// Samples of a small and a large message of each shape.
std::vector<Sample> shapes();

}  // namespace exhaustive
