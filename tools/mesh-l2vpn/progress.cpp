#include "progress.hpp"

#include <unistd.h>

#include <cmath>
#include <iostream>

namespace tool {
namespace {

constexpr auto interval = std::chrono::milliseconds(200);
// Reads the clock once per stride.
constexpr uint64_t stride = 64;

}  // namespace

Progress::Progress(const Session& session, std::string what)
    : isShown_(!session.isQuiet && isatty(STDERR_FILENO) != 0),
      what_(std::move(what)),
      start_(std::chrono::steady_clock::now()),
      next_(start_ + interval) {}

Progress::~Progress() {
  if (isDirty_) {
    std::cerr << "\r\033[K" << std::flush;
  }
}

void Progress::add(double share) {
  if (isShown_ && ++count_ % stride == 0 && std::chrono::steady_clock::now() >= next_) {
    show(share);
  }
}

void Progress::show(double share) {
  const auto now = std::chrono::steady_clock::now();
  next_ = now + interval;
  std::cerr << "\r\033[K" << count_ << ' ' << what_;
  if (share > 0) {
    const double left = std::chrono::duration<double>(now - start_).count() * (1 - share) / share;
    std::cerr << ", " << std::lround(100 * share) << " %, " << std::lround(left) << " s left";
  }
  std::cerr << std::flush;
  isDirty_ = true;
}

}  // namespace tool
