// The dissector that shows captures in Wireshark: a Lua program, its data made of the schemas.
#pragma once

#include <string>

namespace tool {

std::string dissector();

}  // namespace tool
