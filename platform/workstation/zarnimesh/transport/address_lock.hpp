// Lets only one live node own a socket path.
#pragma once

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Locks a file during its lifetime. The kernel drops the lock when the last descriptor closes, even
// after a crash. The file itself stays: if it were removed, two owners could lock two files of the
// same name.
class AddressLock {
 public:
  AddressLock() = default;
  ~AddressLock() { release(); }
  AddressLock(const AddressLock&) = delete;
  AddressLock& operator=(const AddressLock&) = delete;

  [[nodiscard]] mesh_result acquire(const std::string& path);
  void release();

  // Whether the path still names the locked file. Somebody may have removed it.
  bool isIntact(const std::string& path) const;

  // Whether a live node owns the path.
  static bool isHeld(const std::string& path);

 private:
  int file_ = -1;
};

// The file that guards a socket's path.
inline std::string lockOf(const std::string& socketPath) {
  return socketPath + ".lock";
}

}  // namespace zarnimesh
