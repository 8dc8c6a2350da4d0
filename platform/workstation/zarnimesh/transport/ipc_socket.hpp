// A listening Unix socket to which only its user can ever connect.
#pragma once

#include <sys/types.h>

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Identifies a socket's file.
struct SocketFile {
  dev_t device;
  ino_t inode;
};

// Whether the path names that file.
bool isAt(const std::string& path, const SocketFile& file);

// The caller must hold the path's lock. Replaces a socket that a node left at the path, but no
// other file. On success `file` is the listening socket, which the caller closes.
[[nodiscard]] mesh_result listenAt(const std::string& path, int& file, SocketFile& named);

}  // namespace zarnimesh
