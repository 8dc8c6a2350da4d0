// Joining pieces of text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace oracle {

// Piece by piece rather than with operator+, over which GCC 12 warns without cause when it
// optimises.
inline std::string joined(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) {
    text.append(piece);
  }
  return text;
}

}  // namespace oracle
