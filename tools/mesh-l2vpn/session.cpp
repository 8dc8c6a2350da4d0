#include "session.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "texts/printable.hpp"

namespace tool {

bool Session::hasColor() const {
  if (color != "auto") {
    return color == "always";
  }
  const char* const refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) != 0 && (refused == nullptr || *refused == '\0');
}

std::string Session::ink(Ink ink, std::string_view text) const {
  static constexpr const char* codes[] = {"0", "1", "2", "31", "32", "33", "34", "35", "36"};
  if (ink == Ink::Plain || text.empty() || !hasColor()) {
    return std::string(text);
  }
  return std::string("\033[")
      .append(codes[static_cast<int>(ink)])
      .append("m")
      .append(text)
      .append("\033[0m");
}

void Session::say(const std::string& text) const {
  if (!isQuiet) {
    std::cout.flush();
    complain(text);
  }
}

void complain(std::string_view text) {
  std::cerr << "mesh-l2vpn: " << printable(text) << '\n';
}

Failure outputFailure() {
  return {Exit::System, std::string("the output: ") + std::strerror(errno)};
}

}  // namespace tool
