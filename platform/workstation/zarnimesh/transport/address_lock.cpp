#include "zarnimesh/transport/address_lock.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace zarnimesh {
namespace {

struct flock wholeFile() {
  struct flock whole {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return whole;
}

}  // namespace

mesh_result AddressLock::acquire(const std::string& path) {
  file_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file_ < 0) {
    return fail(MESH_SYSTEM_ERROR, "%s: %s", path.c_str(), std::strerror(errno));
  }
  struct flock whole = wholeFile();
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

bool AddressLock::isIntact(const std::string& path) const {
  struct stat own {};
  struct stat named {};
  return fstat(file_, &own) == 0 && stat(path.c_str(), &named) == 0 && own.st_ino == named.st_ino &&
         own.st_dev == named.st_dev;
}

bool AddressLock::isHeld(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
  struct flock whole = wholeFile();
  const bool held = file >= 0 && fcntl(file, F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
  if (file >= 0) {
    close(file);
  }
  return held;
}

void AddressLock::release() {
  if (file_ >= 0) {
    close(std::exchange(file_, -1));
  }
}

}  // namespace zarnimesh
