#include "zarnimesh/transport/ipc_socket.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace zarnimesh {
namespace {

constexpr int backlog = 100;

// Sets the mode before listen(): nobody can connect earlier.
bool bindAndListen(int file, const sockaddr_un& address) {
  return bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
         chmod(address.sun_path, 0600) == 0 && listen(file, backlog) == 0;
}

}  // namespace

bool isAt(const std::string& path, const SocketFile& file) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && status.st_dev == file.device &&
         status.st_ino == file.inode;
}

mesh_result listenAt(const std::string& path, int& file, SocketFile& named) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    return fail(MESH_BAD_CONFIGURATION, "%s: the path is too long for a socket", path.c_str());
  }
  path.copy(address.sun_path, path.size());

  struct stat status {};
  if (lstat(path.c_str(), &status) == 0) {
    if (!S_ISSOCK(status.st_mode)) {
      return fail(MESH_BAD_CONFIGURATION, "%s: the file exists and is not a socket", path.c_str());
    }
    unlink(path.c_str());
  }
  file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (file >= 0 && bindAndListen(file, address) && lstat(path.c_str(), &status) == 0) {
    named = {.device = status.st_dev, .inode = status.st_ino};
    return MESH_OK;
  }
  const int error = errno;
  if (file >= 0) {
    close(file);
  }
  return fail(MESH_SYSTEM_ERROR, "%s: %s", path.c_str(), std::strerror(error));
}

}  // namespace zarnimesh
