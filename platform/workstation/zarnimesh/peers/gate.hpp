// A mutex with a timed lock on the steady clock.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zarnimesh {

// Works as std::timed_mutex. The thread sanitizer does not know its pthread_mutex_clocklock, and
// would report everything that it guards as a race.
class Gate {
 public:
  using Clock = std::chrono::steady_clock;

  void lock() {
    std::unique_lock hold(mutex_);
    opened_.wait(hold, [this] { return !taken_; });
    taken_ = true;
  }

  [[nodiscard]] bool try_lock_until(Clock::time_point moment) {
    std::unique_lock hold(mutex_);
    if (!opened_.wait_until(hold, moment, [this] { return !taken_; })) {
      return false;
    }
    taken_ = true;
    return true;
  }

  void unlock() {
    {
      const std::lock_guard hold(mutex_);
      taken_ = false;
    }
    opened_.notify_one();
  }

 private:
  std::mutex mutex_;  // guards taken_; held briefly
  std::condition_variable opened_;
  bool taken_ = false;
};

}  // namespace zarnimesh
