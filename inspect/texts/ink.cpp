#include "inspect/texts/ink.hpp"

namespace inspect {

std::string Colors::ink(Ink ink, std::string_view text) const {
  static constexpr const char* codes[] = {"0", "1", "2", "31", "32", "33", "34", "35", "36"};
  if (ink == Ink::Plain || text.empty() || !areOn) {
    return std::string(text);
  }
  return std::string("\033[")
      .append(codes[static_cast<int>(ink)])
      .append("m")
      .append(text)
      .append("\033[0m");
}

}  // namespace inspect
