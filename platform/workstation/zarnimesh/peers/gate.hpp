// A lock that is waited for until a moment of the steady clock.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zarnimesh {

// Does what std::timed_mutex does. The thread sanitizer does not see that one's timed lock
// (pthread_mutex_clocklock), and would take all that it guards for unguarded.
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
  std::mutex mutex_;  // guards taken_, for moments only
  std::condition_variable opened_;
  bool taken_ = false;
};

}  // namespace zarnimesh
