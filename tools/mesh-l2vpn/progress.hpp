// Tells on a terminal how far long work has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "session.hpp"

namespace tool {

// Silent when the standard error is no terminal, or with --quiet.
class Progress {
 public:
  Progress(const Session& session, std::string what);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void add();

 private:
  void show();

  bool isShown_;
  std::string what_;
  uint64_t count_ = 0;
  std::chrono::steady_clock::time_point next_;
  bool isDirty_ = false;
};

}  // namespace tool
