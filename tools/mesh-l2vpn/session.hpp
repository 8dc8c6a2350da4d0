// The state of a run: how the program prints, and its exit status.
#pragma once

#include <string>
#include <string_view>

#include "inspect/bytes/failure.hpp"
#include "inspect/texts/ink.hpp"

namespace tool {

using namespace inspect;

enum class Exit : int {
  Success = 0,
  BadInput = 1,  // the input has a fault; for diff: a difference
  Usage = 2,
  System = 3,  // a file, the output, the middleware or a memory allocation failed
};

Exit exitFor(Cause cause);

struct Session {
  bool isQuiet = false;
  std::string color = "auto";  // auto, always, never
  Exit result = Exit::Success;

  // "auto" colours text for a terminal, unless NO_COLOR is set.
  [[nodiscard]] Colors colors() const;

  // Prints a text to the standard error, unless it is empty or quiet is set.
  void say(const std::string& text) const;
};

// Prints a line to the standard error. Escapes control characters, which may come from the input.
void complain(std::string_view text);

// The failure of the output. errno must be that of the failed write.
Failure outputFailure();

}  // namespace tool
