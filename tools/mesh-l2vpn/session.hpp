// What holds for every command: how it may speak, and how it ends.
#pragma once

#include <string>
#include <string_view>

#include "bytes/failure.hpp"
#include "texts/ink.hpp"

namespace tool {

struct Session {
  bool isQuiet = false;
  std::string color = "auto";  // auto, always, never
  Exit result = Exit::Success;

  // "auto" colours text for a terminal, unless NO_COLOR is set.
  [[nodiscard]] Colors colors() const;

  // To the standard error, unless quiet: what a command found, as far as it is not its output.
  void say(const std::string& text) const;
};

// A line on the standard error, in which control characters of what was read are escaped: they
// never reach a terminal.
void complain(std::string_view text);

// Why the output failed, told where an attempt to write has just done so.
Failure outputFailure();

}  // namespace tool
