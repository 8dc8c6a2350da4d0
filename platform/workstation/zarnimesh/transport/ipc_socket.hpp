// A listening Unix socket to which only its user can ever connect.
#pragma once

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// The caller must hold the path's lock. Replaces a socket that a node left at the path, but no
// other file. On success `file` is the listening socket, which the caller closes.
[[nodiscard]] mesh_result listenAt(const std::string& path, int& file);

}  // namespace zarnimesh
