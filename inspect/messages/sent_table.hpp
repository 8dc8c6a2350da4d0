// The library's send operations without a middleware: this program defines MESH_SendMsg and its
// like, and keeps the bytes that the library passes.
//
// The library finds these definitions before any other. Commands that need a real middleware load
// it at run time with RTLD_LOCAL (middleware.hpp), so the two do not collide.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace inspect {

// The bytes of the one table that `send` sends; empty if it sends none.
std::vector<uint8_t> takeSent(const std::function<void()>& send);

}  // namespace inspect
