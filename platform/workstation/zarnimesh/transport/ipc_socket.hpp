// A listening Unix socket that nobody but its user can connect to, from its first moment on.
#pragma once

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Whoever holds the path's lock calls it. A socket that a node left there is replaced, anything
// else is not. On success `file` is the listening socket, the caller's to close.
[[nodiscard]] mesh_result listenAt(const std::string& path, int& file);

}  // namespace zarnimesh
