#include "zarnimesh/peers/destination.hpp"

#include <algorithm>

namespace zarnimesh {

bool Destination::note(const FrameHeader& state, const StateBody& body) {
  heardAt_ = Clock::now();
  const bool restarted = receiver_ != 0 && state.incarnation != receiver_;
  if (state.incarnation != receiver_ || body.first > first_) {
    receiver_ = state.incarnation;
    first_ = body.first;
    lostBefore_ += missing_;
    missing_ = 0;
    // What no predecessor confirmed was lost with it.
    lostAtRestart_ = 0;
    const uint64_t before = std::min(body.first - 1, numbered_);
    if (before > settled_) {
      // A predecessor that knew of the closing counts what had arrived there.
      lostAtRestart_ = knowsOfClosing_ && arrived_ <= before ? missingAhead_ + before - arrived_
                                                             : before - settled_;
      lostBefore_ += lostAtRestart_;
      settle(before);
    }
  }
  knowsOfClosing_ = (state.flags & closingFlag) != 0;
  settle(std::min(state.confirmed, numbered_));
  arrived_ = std::max(settled_, std::min(state.sequence, numbered_));
  missing_ = std::min(state.extra, settled_ - lostBefore_);
  missingAhead_ = std::min(body.missingAhead, arrived_ - settled_);
  missedBefore_ = body.missedBefore;
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
