// The Wireshark dissector for captures: a Lua program with data from the schemas.
#pragma once

#include <string>

namespace inspect {

std::string dissector();

}  // namespace inspect
