// Makes input safe to print on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace inspect {

// Control characters and invalid UTF-8 become \xNN.
std::string printable(std::string_view text);

}  // namespace inspect
