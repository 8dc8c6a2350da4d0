// The process's file descriptors. ZeroMQ ends the process when it finds none left.
#pragma once

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Fails when few are left. Raises the process's limit first, as far as it may.
[[nodiscard]] mesh_result reserveDescriptors();

}  // namespace zarnimesh
