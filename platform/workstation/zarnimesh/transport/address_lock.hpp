// One live owner for one socket path.
#pragma once

#include <string>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Holds a lock on a file for as long as it lives. The lock belongs to the open file, not to the
// file's existence: a process that dies leaves nothing behind that blocks the next one. The file
// stays, since removing it would let two owners lock two files of one name.
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
