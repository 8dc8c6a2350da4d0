// Limits events: a burst at once, and an average rate per second.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace ddm {

// For one thread at a time.
class TokenBucket {
 public:
  using Clock = std::chrono::steady_clock;

  constexpr TokenBucket(uint32_t perSecond, uint32_t burst)
      : perSecond_(perSecond), burst_(burst), tokens_(burst) {}

  // Whether one more event may pass at `now`.
  [[nodiscard]] bool take(Clock::time_point now) {
    const std::chrono::duration<double> passed = now - filledAt_;
    filledAt_ = now;
    tokens_ = std::min(burst_, tokens_ + passed.count() * perSecond_);
    if (tokens_ < 1) {
      return false;
    }
    tokens_ -= 1;
    return true;
  }

 private:
  double perSecond_;
  double burst_;
  double tokens_;
  Clock::time_point filledAt_{};  // long ago: the first refill leaves the bucket full
};

}  // namespace ddm
