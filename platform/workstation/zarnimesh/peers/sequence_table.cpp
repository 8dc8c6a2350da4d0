#include "zarnimesh/peers/sequence_table.hpp"

#include <algorithm>

namespace zarnimesh {

SequenceFindings SequenceTable::note(uint64_t incarnation, uint64_t sequence) {
  ++clock_;
  const auto known = senders_.find(incarnation);
  if (known == senders_.end()) {
    if (senders_.size() >= capacity) {
      forgetOldest();
    }
    senders_.emplace(incarnation, Sender{.highest = sequence, .heardAt = clock_});
    return {.missedBeforeFirst = sequence - 1};
  }
  Sender& sender = known->second;
  sender.heardAt = clock_;
  if (sequence <= sender.highest) {
    return {.duplicate = true};
  }
  const uint64_t lost = sequence - sender.highest - 1;
  sender.highest = sequence;
  return {.lost = lost};
}

void SequenceTable::forgetOldest() {
  const auto oldest = std::min_element(
      senders_.begin(), senders_.end(),
      [](const auto& a, const auto& b) { return a.second.heardAt < b.second.heardAt; });
  if (oldest != senders_.end()) {
    senders_.erase(oldest);
  }
}

}  // namespace zarnimesh
