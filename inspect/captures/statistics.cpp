#include "inspect/captures/statistics.hpp"

#include <algorithm>
#include <tuple>

#include "inspect/captures/saturation.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

// Bounds the memory: every table may have another source and identifier.
constexpr size_t mostToldApart = 1000;
// More unknown identifiers share one row.
constexpr size_t mostShown = 20;

// The entry of a number, or `others` if there are too many entries.
template <typename Entry>
Entry& entryOf(uint32_t number, std::map<uint32_t, Entry>& entries, Entry& others) {
  const auto found = entries.find(number);
  return found != entries.end()           ? found->second
         : entries.size() < mostToldApart ? entries[number]
                                          : others;
}

}  // namespace

void Count::add(const Count& other) {
  tables += other.tables;
  bytes += other.bytes;
  rejected += other.rejected;
  shortest = std::min(shortest, other.shortest);
  longest = std::max(longest, other.longest);
}

void Gaps::add(uint64_t missed) {
  ++places;
  calls = addSaturating(calls, missed);
}

void Statistics::add(const Table& table) {
  const size_t size = table.bytes.size();
  const Count one{1, size, isAccepted(table) ? 0U : 1U, size, size};
  if (table.message != nullptr && names_.size() < mostToldApart) {
    names_.try_emplace(table.id, table.message->name);
  }
  const bool isKnown = findById(table.id) != nullptr;
  (isKnown ? known_[table.id] : entryOf(table.id, unknown_, otherUnknown_)).add(one);
  if (table.missedBefore != 0) {
    gaps.add(table.missedBefore);
    entryOf(table.source, gapsBySource, gapsOfOthers).add(table.missedBefore);
  }
  if (all.tables != 0 && table.time > previous_) {
    longestPause = std::max(longestPause, table.time - previous_);
  }
  all.add(one);
  previous_ = table.time;
  first = std::min(first, table.time);
  last = std::max(last, table.time);
}

std::vector<std::pair<std::string, Count>> Statistics::ranking() const {
  std::vector<std::pair<std::string, Count>> rows;
  for (const auto& [id, count] : known_) {
    rows.emplace_back(findById(id)->name, count);
  }
  if (unknown_.size() <= mostShown) {
    for (const auto& [id, count] : unknown_) {
      const auto name = names_.find(id);
      rows.emplace_back(name != names_.end() ? name->second : "unknown " + hex(id), count);
    }
  } else {
    Count count = otherUnknown_;
    for (const auto& [id, each] : unknown_) {
      count.add(each);
    }
    rows.emplace_back("unknown, " + std::string(otherUnknown_.tables != 0 ? "more than " : "") +
                          std::to_string(unknown_.size()) + " identifiers",
                      count);
  }
  std::ranges::sort(rows, [](const auto& one, const auto& other) {
    return std::tie(other.second.tables, one.first) < std::tie(one.second.tables, other.first);
  });
  return rows;
}

}  // namespace inspect
