// Texts that hold what was read, for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Control characters, and bytes that are no UTF-8, become \xNN.
std::string printable(std::string_view text);

}  // namespace tool
