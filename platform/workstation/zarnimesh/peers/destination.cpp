#include "zarnimesh/peers/destination.hpp"

#include <algorithm>

namespace zarnimesh {

void Destination::takeBack(const FrameHeader& call) {
  --numbered_;
  sentBytes_ -= call.bytes;
  unconfirmedBytes_ -= call.bytes;
  unconfirmed_.pop_back();
}

bool Destination::note(const FrameHeader& state, uint64_t first) {
  heardAt_ = Clock::now();
  const bool restarted = receiver_ != 0 && state.incarnation != receiver_;
  if (state.incarnation != receiver_) {
    receiver_ = state.incarnation;
    lostBefore_ += missing_;
    missing_ = 0;
    // What no predecessor confirmed was lost with it.
    lostAtRestart_ = 0;
    const uint64_t before = std::min(first - 1, numbered_);
    if (before > settled_) {
      // A predecessor that knew of the closing counts what had arrived there.
      const uint64_t counted = knowsOfClosing_ ? std::max(settled_, arrived_) : settled_;
      lostAtRestart_ = before - std::min(before, counted);
      lostBefore_ += lostAtRestart_;
      settle(before);
    }
  }
  knowsOfClosing_ = (state.flags & closingFlag) != 0;
  missing_ = std::min(state.extra, numbered_);
  settle(std::min(state.confirmed, numbered_));
  arrived_ = std::max(settled_, std::min(state.sequence, numbered_));
  grantedCalls_ = std::max<uint32_t>(1, state.count);
  grantedBytes_ = std::max<uint32_t>(1, state.bytes);
  return restarted;
}

void Destination::settle(uint64_t sequence) {
  for (; settled_ < sequence; ++settled_) {
    unconfirmedBytes_ -= unconfirmed_.front();
    unconfirmed_.pop_front();
  }
}

}  // namespace zarnimesh
