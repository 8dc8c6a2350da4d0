// How a command ends.
#pragma once

#include <stdexcept>
#include <string>

namespace tool {

enum class Exit : int {
  Success = 0,
  BadInput = 1,  // what was read is not what it should be; for diff: the two differ
  Usage = 2,
  System = 3,  // a file or the middleware failed
};

// Ends the command; main prints the text.
class Failure : public std::runtime_error {
 public:
  Failure(Exit exit, const std::string& text) : std::runtime_error(text), exit_(exit) {}
  [[nodiscard]] Exit exit() const { return exit_; }

 private:
  Exit exit_;
};

}  // namespace tool
