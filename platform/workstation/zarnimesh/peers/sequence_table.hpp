// Detects lost and duplicate calls by their sequence numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace zarnimesh {

struct SequenceFindings {
  uint64_t lost = 0;               // missing between the highest received call and this one
  uint64_t missedBeforeFirst = 0;  // sent before the first received call of this incarnation
  bool duplicate = false;          // not above the highest received number
};

// Remembers the highest number of each sending incarnation. Above `capacity` it forgets the one
// that was silent longest. If that one sends again, it counts as new.
class SequenceTable {
 public:
  static constexpr size_t capacity = 1024;

  // `sequence` is at least 1.
  SequenceFindings note(uint64_t incarnation, uint64_t sequence);

 private:
  struct Sender {
    uint64_t highest;
    uint64_t heardAt;
  };

  void forgetOldest();

  std::unordered_map<uint64_t, Sender> senders_;
  uint64_t clock_ = 0;  // one tick per call
};

}  // namespace zarnimesh
