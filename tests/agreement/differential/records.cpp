#include "records.hpp"

namespace differential {
namespace {

constexpr uint32_t contentsSize = uint32_t{1} << 17;
constexpr uint32_t largestString = 64;
constexpr uint32_t mostItems = 2;

// Compares the bytes that the mask selects, in one sweep: comparing field by field would cost more
// than the rest of a writing.
bool haveSameValues(const std::vector<uint8_t>& mask, const uint8_t* one, const uint8_t* other) {
  uint8_t differences = 0;
  for (size_t at = 0; at < mask.size(); ++at) {
    differences |= static_cast<uint8_t>((one[at] ^ other[at]) & mask[at]);
  }
  return differences == 0;
}

// A part with a null pointer or of length 0 is not sent.
bool isPartAsSent(const Part& part, const uint8_t* sent, const uint8_t* received) {
  const auto* const contents = host::load<const uint8_t*>(sent + part.pointer);
  const uint32_t count = contents == nullptr ? 0 : host::load<uint32_t>(sent + part.count);
  const auto* const block = host::load<const uint8_t*>(received + part.pointer);
  if (host::load<uint32_t>(received + part.count) != count || (block == nullptr) != (count == 0)) {
    return false;
  }
  if (part.items == nullptr) {
    return count == 0 || std::memcmp(contents, block, count) == 0;
  }
  for (uint32_t item = 0; item < count; ++item) {
    const size_t at = size_t{part.items->size} * item;
    if (!haveSameValues(part.itemValues, contents + at, block + at)) {
      return false;
    }
  }
  return true;
}

}  // namespace

Records::Records(uint64_t seed) : contents_(contentsSize) {
  Random(seed, UINT64_MAX).fill(contents_.data(), contents_.size());
}

void Records::fill(Random& random, const Subject& subject, uint8_t* record) const {
  random.fill(record, subject.size());
  // Which fields are zero: none, half of them, most, or all.
  const uint64_t masks[] = {0, random.next(), random.next() | random.next(), UINT64_MAX};
  uint64_t zeros = masks[random.below(4)];
  for (const Field& field : subject.fields) {
    if ((zeros & 1) != 0) {
      std::memset(record + field.at, 0, field.size);
    }
    zeros = zeros >> 1 | zeros << 63;
  }
  for (const Part& part : subject.parts) {
    const uint32_t count =
        part.items != nullptr ? random.below(mostItems + 1) : random.below(largestString);
    const uint32_t from = random.below(16);
    const bool isNull = part.items != nullptr ? count == 0 : random.oneIn(4);
    host::store(record + part.count, random.oneIn(8) ? 0 : count);
    host::store(record + part.pointer, isNull ? nullptr : contents_.data() + from);
  }
}

bool isAsSent(const Subject& subject, const uint8_t* sent, const uint8_t* received) {
  if (!haveSameValues(subject.values, sent, received)) {
    return false;
  }
  for (const Part& part : subject.parts) {
    if (!isPartAsSent(part, sent, received)) {
      return false;
    }
  }
  return true;
}

}  // namespace differential
