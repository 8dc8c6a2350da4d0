// The lines that the log writer wrote.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "ddm/osal_workstation.h"

namespace platform_test {

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

// The lines that `body` writes to standard error, with the default log limit, unused.
template <typename Body>
std::vector<std::string> logged(Body&& body) {
  ddm_osal_log_limit(100, 200);
  ::testing::internal::CaptureStderr();
  body();
  return linesOf(::testing::internal::GetCapturedStderr());
}

}  // namespace platform_test
