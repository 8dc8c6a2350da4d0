// What holds for every command: how it may speak, and how it ends.
#pragma once

#include <string>
#include <string_view>

#include "bytes/failure.hpp"

namespace tool {

enum class Ink : uint8_t { Plain, Bold, Dim, Red, Green, Yellow, Blue, Magenta, Cyan };

struct Session {
  bool isQuiet = false;
  std::string color = "auto";  // auto, always, never
  Exit result = Exit::Success;

  // Whether the standard output is to be coloured: when it is a terminal and NO_COLOR is not set,
  // unless told otherwise.
  [[nodiscard]] bool hasColor() const;

  // The text, coloured where colours are wanted.
  [[nodiscard]] std::string ink(Ink ink, std::string_view text) const;

  // To the standard error, unless quiet: what a command found, as far as it is not its output.
  void say(const std::string& text) const;
};

// A line on the standard error, in which control characters of what was read are escaped: they
// never reach a terminal.
void complain(std::string_view text);

// Why the output failed, told where an attempt to write has just done so.
Failure outputFailure();

}  // namespace tool
