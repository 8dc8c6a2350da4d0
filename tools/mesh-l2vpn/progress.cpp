#include "progress.hpp"

#include <unistd.h>

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
      next_(std::chrono::steady_clock::now() + interval) {}

Progress::~Progress() {
  if (isDirty_) {
    std::cerr << "\r\033[K" << std::flush;
  }
}

void Progress::add() {
  if (isShown_ && ++count_ % stride == 0 && std::chrono::steady_clock::now() >= next_) {
    show();
  }
}

void Progress::show() {
  next_ = std::chrono::steady_clock::now() + interval;
  std::cerr << '\r' << count_ << ' ' << what_ << std::flush;
  isDirty_ = true;
}

}  // namespace tool
