// Shows the progress of long work on a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "session.hpp"

namespace tool {

using namespace inspect;

// Silent if the standard error is not a terminal, and with --quiet.
class Progress {
 public:
  Progress(const Session& session, std::string what);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // One more is done. `share` of the whole is done now, from 0 to 1; 0 if unknown.
  void add(double share);

 private:
  void show(double share);

  bool isShown_;
  std::string what_;
  uint64_t count_ = 0;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point next_;
  bool isDirty_ = false;
};

}  // namespace tool
