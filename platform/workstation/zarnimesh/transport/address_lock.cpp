#include "zarnimesh/transport/address_lock.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace zarnimesh {

mesh_result AddressLock::acquire(const std::string& path) {
  file_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file_ < 0) {
    return fail(MESH_SYSTEM_ERROR, "%s: %s", path.c_str(), std::strerror(errno));
  }
  struct flock whole {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  if (fcntl(file_, F_OFD_SETLK, &whole) == 0) {
    return MESH_OK;
  }
  const int error = errno;
  release();
  if (error == EAGAIN || error == EACCES) {
    return fail(MESH_ADDRESS_IN_USE, "%s: in use by a live node", path.c_str());
  }
  return fail(MESH_SYSTEM_ERROR, "%s: %s", path.c_str(), std::strerror(error));
}

void AddressLock::release() {
  if (file_ >= 0) {
    close(std::exchange(file_, -1));
  }
}

}  // namespace zarnimesh
