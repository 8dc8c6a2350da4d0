// Where received records are decoded: an area that ends at a page that traps.
#pragma once

#include <cstddef>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

class RecordArea {
 public:
  static constexpr size_t size = size_t{1} << 20;

  RecordArea() = default;
  ~RecordArea();
  RecordArea(const RecordArea&) = delete;
  RecordArea& operator=(const RecordArea&) = delete;

  // Once; the area is zero afterwards.
  [[nodiscard]] mesh_result map();

  void* data() const { return data_; }

  // Makes the area zero again after a record of `recordSize` bytes. A decoder may leave a record
  // untouched when it is given nonsense, and the release must not find another record's pointers.
  void clear(size_t recordSize);

 private:
  void* data_ = nullptr;
};

}  // namespace zarnimesh
