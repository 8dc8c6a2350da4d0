// The directory of the default sockets, which nobody but its user may enter.
#pragma once

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// The directory's name: `chosen` when not null, else $ZARNIMESH_RUNTIME_DIR, else
// $XDG_RUNTIME_DIR/zarnimesh, else /tmp/zarnimesh-<uid>.
std::string runtimeDirectoryName(const char* chosen);

// Creates the directory when it is missing, and refuses one that is another's or open to others:
// whoever can write there could take the place of any node.
[[nodiscard]] mesh_result prepareRuntimeDirectory(const std::string& name);

}  // namespace zarnimesh
