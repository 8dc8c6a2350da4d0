// What the numbers of received calls tell about those that did not arrive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace zarnimesh {

struct SequenceFindings {
  uint64_t lost = 0;               // missing between the last call heard and this one
  uint64_t missedBeforeFirst = 0;  // sent before the first call heard of this incarnation
  bool duplicate = false;          // not above the last one heard
};

// Remembers the latest number of each sending incarnation. Of more than `capacity` of them the one
// heard longest ago is forgotten; should it speak again, it is taken for a new one.
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
  uint64_t clock_ = 0;  // one tick a call
};

}  // namespace zarnimesh
