// Finds the range of each byte.
#pragma once

#include <vector>

#include "inspect/reader/reading.hpp"

namespace inspect {

// Takes ranges sorted by position. Positions asked for must not decrease.
class RangeWalk {
 public:
  explicit RangeWalk(const std::vector<Range>& ranges) : ranges_(ranges) {}

  // The last range that begins at or before the byte and holds it, or null.
  const Range* at(uint32_t position) {
    for (; next_ < ranges_.size() && ranges_[next_].at <= position; ++next_) {
      open_.push_back(&ranges_[next_]);
    }
    // A range that has ended may stay below one that has not.
    while (!open_.empty() && position - open_.back()->at >= open_.back()->size) {
      open_.pop_back();
    }
    return open_.empty() ? nullptr : open_.back();
  }

 private:
  const std::vector<Range>& ranges_;
  size_t next_ = 0;
  std::vector<const Range*> open_;
};

}  // namespace inspect
