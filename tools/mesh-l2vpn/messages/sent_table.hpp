// The library's send operations without a middleware: this program is itself the one that they
// call, and keeps what it is handed.
//
// MESH_SendMsg and its like are defined in the program, so the library finds them before any other.
// A real middleware is loaded at run time where a command needs one (middleware.hpp), apart from
// the global names; the two never meet.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace tool {

// The bytes of the one table that `send` hands over; none when it hands nothing over.
std::vector<uint8_t> takeSent(const std::function<void()>& send);

}  // namespace tool
