// The user's private directory, with the default sockets.
#pragma once

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// The directory's name: `chosen` if not null, else $ZARNIMESH_RUNTIME_DIR, else
// $XDG_RUNTIME_DIR/zarnimesh, else /tmp/zarnimesh-<uid>.
std::string runtimeDirectoryName(const char* chosen);

// Creates the directory if it is missing. Rejects one that belongs to another user or is open to
// others: anyone who can write there can replace any node.
[[nodiscard]] mesh_result prepareRuntimeDirectory(const std::string& name);

}  // namespace zarnimesh
