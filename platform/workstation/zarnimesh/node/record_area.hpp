// The memory for received records, followed by a guard page.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

class RecordArea {
 public:
  static constexpr size_t size = size_t{1} << 20;

  RecordArea() = default;
  ~RecordArea();
  RecordArea(const RecordArea&) = delete;
  RecordArea& operator=(const RecordArea&) = delete;

  // Called once. The area is then zero.
  [[nodiscard]] mesh_result map();

  void* data() const { return data_; }

  // Zeroes the area again after a record of `recordSize` bytes. A decoder may leave a record
  // untouched when it rejects a table. The release must then not find the previous record's
  // pointers.
  void clear(size_t recordSize) { std::memset(data_, 0, std::min(recordSize, size)); }

 private:
  void* data_ = nullptr;
};

}  // namespace zarnimesh
