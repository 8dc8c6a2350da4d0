// What a node knows of each sender: which of its calls arrived, were delivered, or are missing.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <unordered_map>
#include <vector>

#include "zarnimesh/transport/frame.hpp"

namespace zarnimesh {

// One sending node, from its opening to its closing.
struct Source {
  using Clock = std::chrono::steady_clock;

  // Calls from `from` to `to`.
  struct Gap {
    uint64_t from;
    uint64_t to;
  };

  uint32_t address = 0;
  uint64_t incarnation = 0;
  uint64_t route = 0;  // ZeroMQ's name of its latest connection

  uint64_t first = 0;      // sequence of its first call that could arrive here
  uint64_t highest = 0;    // of the latest call that arrived, or that it says to have sent
  uint64_t settled = 0;    // delivered or missing: all up to this one
  uint64_t told = 0;       // settled, as told to the sender
  uint64_t missing = 0;    // calls after `first` that did not arrive
  size_t undelivered = 0;  // calls that wait for delivery
  size_t late = 0;         // those of them that were counted as missing
  uint64_t undeliveredBytes = 0;
  bool toBeTold = false;
  bool closed = false;
  bool gapPending = false;  // the next call to be delivered follows a gap

  uint64_t calls = 0;
  uint64_t bytes = 0;
  uint64_t missedBeforeFirst = 0;
  size_t mostUndelivered = 0;
  Clock::time_point heardAt{};

  // Some of the gaps, so that late calls can be told from repeated ones. A call is late when it
  // arrived over a connection that broke, and its successors were read first.
  std::vector<Gap> gaps;

  // Calls that the sender must count as missing. One that has closed leaves late ones to this node.
  uint64_t toldMissing() const { return missing + (closed ? 0 : late); }
  // Those of them after `settled`.
  uint64_t missingAhead() const {
    const uint64_t ahead = highest - settled;
    return std::min<uint64_t>(toldMissing(), ahead - std::min<uint64_t>(ahead, undelivered - late));
  }
};

// For one thread at a time.
class Sources {
 public:
  // A sender cannot have more unconfirmed calls than this.
  static constexpr uint64_t mostUnconfirmed = uint64_t{1} << 20;

  // Null when there is none.
  Source* find(uint32_t address, uint64_t incarnation);
  bool hasOpen(uint32_t address) const;  // in any incarnation that has not closed
  Source& add(uint32_t address, uint64_t incarnation, uint64_t route);

  // A connection serves one sender only: otherwise a peer could make up any number of them.
  bool mayUse(uint64_t route, const Source* source) const {
    const auto found = byRoute_.find(route);
    return found == byRoute_.end() || found->second == source;
  }
  void connect(Source& source, uint64_t route);

  // Whether the numbers of a Call or Sync are possible. `source` is null for an unknown sender.
  static bool isPlausible(const FrameHeader& header, const Source* source);

  struct Finding {
    uint64_t lost = 0;       // more calls are missing
    bool late = false;       // the call was counted as missing
    bool duplicate = false;  // the call arrived before
  };
  // Notes a plausible Call or Sync.
  static Finding note(Source& source, const FrameHeader& header);

  // The sender has not sent anything here before. Returns how many earlier calls neither this node
  // nor its predecessors confirmed.
  static uint64_t noteFirst(Source& source, const FrameHeader& header);

  // A call of the source was delivered.
  static void noteDelivered(Source& source, const FrameHeader& call, bool late);

  // Forgets the senders that are gone, if the books have grown enough since this was done last.
  // `isGone` is called for sources without undelivered calls.
  template <typename IsGone>
  void prune(IsGone&& isGone) {
    if (sources_.size() < pruneAt_) {
      return;
    }
    for (auto at = sources_.begin(); at != sources_.end();) {
      Source& source = at->second;
      const bool forget = source.undelivered == 0 && !source.toBeTold && isGone(source);
      if (forget) {
        byRoute_.erase(source.route);
        latest_ = nullptr;
      }
      at = forget ? sources_.erase(at) : std::next(at);
    }
    pruneAt_ = std::max(leastPruned, 2 * sources_.size());
  }

  auto begin() { return sources_.begin(); }
  auto end() { return sources_.end(); }
  size_t size() const { return sources_.size(); }

 private:
  static constexpr size_t leastPruned = 1024;

  struct Key {
    uint32_t address;
    uint64_t incarnation;
    bool operator==(const Key&) const = default;
  };
  struct Hash {
    // Incarnations are random.
    size_t operator()(const Key& key) const { return key.incarnation ^ key.address; }
  };

  std::unordered_map<Key, Source, Hash> sources_;
  std::unordered_map<uint64_t, const Source*> byRoute_;
  Source* latest_ = nullptr;  // found last: most calls follow one of the same sender
  size_t pruneAt_ = leastPruned;
};

// Inline: every call needs them.

inline Source* Sources::find(uint32_t address, uint64_t incarnation) {
  if (latest_ == nullptr || latest_->incarnation != incarnation || latest_->address != address) {
    const auto found = sources_.find({address, incarnation});
    latest_ = found != sources_.end() ? &found->second : nullptr;
  }
  return latest_;
}

inline bool Sources::isPlausible(const FrameHeader& header, const Source* source) {
  const bool isCall = header.kind == Kind::Call;
  return header.confirmed <= header.sequence && (!isCall || header.sequence > header.confirmed) &&
         header.sequence - header.confirmed <= mostUnconfirmed &&
         (source == nullptr || header.confirmed <= source->settled);
}

inline void Sources::noteDelivered(Source& source, const FrameHeader& call, bool late) {
  source.late -= late ? 1 : 0;
  --source.undelivered;
  source.undeliveredBytes -= call.bytes;
  source.settled =
      source.undelivered == 0 ? source.highest : std::max(source.settled, call.sequence);
}

}  // namespace zarnimesh
