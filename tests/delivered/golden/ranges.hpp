// What the bytes of a message are, range by range.
#ifndef GOLDEN_RANGES_HPP
#define GOLDEN_RANGES_HPP

#include <cstdint>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"

namespace golden {

struct Range {
  uint64_t begin;
  uint64_t size;
  std::string meaning;
};

// Follows the message's own words, from its root, in either arrangement. In position order and
// without gaps: what no word leads to is padding.
std::vector<Range> rangesOf(const oracle::Description& message, const std::vector<uint8_t>& bytes,
                            bool reversed);

}  // namespace golden

#endif
