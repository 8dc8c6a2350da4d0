// Statistics of a capture, in bounded memory.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "inspect/captures/traffic.hpp"

namespace inspect {

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
  std::map<uint32_t, Gaps> gapsBySource;  // of the first 1000 sources
  Gaps gapsOfOthers;
  uint64_t first = std::numeric_limits<uint64_t>::max();
  uint64_t last = 0;
  uint64_t longestPause = 0;

  void add(const Table& table);

  // Between the first and the last table, in nanoseconds.
  [[nodiscard]] uint64_t duration() const { return all.tables == 0 ? 0 : last - first; }

  // By message, most tables first. Each unknown identifier has a row, or all share one if there are
  // many.
  [[nodiscard]] std::vector<std::pair<std::string, Count>> ranking() const;

 private:
  std::map<uint32_t, Count> known_;        // by identifier
  std::map<uint32_t, std::string> names_;  // of messages that only the capture describes
  std::map<uint32_t, Count> unknown_;      // of the first 1000 identifiers
  Count otherUnknown_;
  uint64_t previous_ = 0;
};

}  // namespace inspect
