#include "session.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "inspect/texts/printable.hpp"

namespace tool {

Exit exitFor(Cause cause) {
  switch (cause) {
    case Cause::BadInput:
    case Cause::Memory:
      return Exit::BadInput;
    case Cause::Usage:
      return Exit::Usage;
    case Cause::System:
      break;
  }
  return Exit::System;
}

Colors Session::colors() const {
  if (color != "auto") {
    return {color == "always"};
  }
  const char* const refused = std::getenv("NO_COLOR");
  return {isatty(STDOUT_FILENO) != 0 && (refused == nullptr || *refused == '\0')};
}

void Session::say(const std::string& text) const {
  if (!isQuiet && !text.empty()) {
    std::cout.flush();
    complain(text);
  }
}

void complain(std::string_view text) {
  std::cerr << "mesh-l2vpn: " << printable(text) << '\n';
}

Failure outputFailure() {
  return {Cause::System, std::string("the output: ") + std::strerror(errno)};
}

}  // namespace tool
