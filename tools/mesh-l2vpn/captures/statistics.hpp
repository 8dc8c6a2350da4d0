// What is counted of the tables of a capture. As much memory as it takes at most, whatever the
// capture holds.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "captures/traffic.hpp"

namespace tool {

struct Count {
  uint64_t tables = 0;
  uint64_t bytes = 0;
  uint64_t rejected = 0;
  size_t shortest = std::numeric_limits<size_t>::max();
  size_t longest = 0;

  void add(const Count& other);
};

// Places where the recorder missed calls.
struct Gaps {
  uint64_t places = 0;
  uint64_t calls = 0;

  void add(uint64_t missed);
};

struct Statistics {
  Count all;
  Gaps gaps;
  std::map<uint32_t, Gaps> gapsBySource;  // of so many sources as are told apart
  Gaps gapsOfOthers;
  uint64_t first = std::numeric_limits<uint64_t>::max();
  uint64_t last = 0;
  uint64_t longestPause = 0;

  void add(const Table& table);

  // Between the first and the last table, in nanoseconds.
  [[nodiscard]] uint64_t duration() const { return all.tables == 0 ? 0 : last - first; }

  // By message, the busiest first. Unknown identifiers stand for themselves where they are few.
  [[nodiscard]] std::vector<std::pair<std::string, Count>> ranking() const;

 private:
  std::map<uint32_t, Count> known_;    // by identifier
  std::map<uint32_t, Count> unknown_;  // of so many identifiers as are told apart
  Count otherUnknown_;
  uint64_t previous_ = 0;
};

}  // namespace tool
