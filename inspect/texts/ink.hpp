// Colours of text, as ANSI escape sequences.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace inspect {

enum class Ink : uint8_t { Plain, Bold, Dim, Red, Green, Yellow, Blue, Magenta, Cyan };

struct Colors {
  bool areOn = false;

  [[nodiscard]] std::string ink(Ink ink, std::string_view text) const;
};

}  // namespace inspect
