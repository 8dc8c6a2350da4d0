// Failures, and the exit status that each gives.
#pragma once

#include <stdexcept>
#include <string>

namespace inspect {

enum class Exit : int {
  Success = 0,
  BadInput = 1,  // the input has a fault; for diff: a difference
  Usage = 2,
  System = 3,  // a file, the output, the middleware or a memory allocation failed
};

// Ends the command; main prints the text.
class Failure : public std::runtime_error {
 public:
  Failure(Exit exit, const std::string& text) : std::runtime_error(text), exit_(exit) {}
  [[nodiscard]] Exit exit() const { return exit_; }

 private:
  Exit exit_;
};

}  // namespace inspect
