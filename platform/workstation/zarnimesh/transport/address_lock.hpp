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

 private:
  int file_ = -1;
};

}  // namespace zarnimesh
