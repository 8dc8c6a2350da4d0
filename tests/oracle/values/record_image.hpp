// Between a Value and the C record it stands for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

// Reads a C record. A pointer that is not null is followed for as many bytes or items as the
// record declares.
Value load(const Description& message, const void* record);

// One C record, or several back to back, in memory of its own, byte strings and items included.
// Every block is exactly as large as what it holds and stands alone, so that a sanitizer sees
// the first byte read or written beyond it. Records are 16-byte aligned, padding is zero.
class RecordImage {
 public:
  RecordImage(const Description& message, const Value& value);
  RecordImage(const Description& message, const std::vector<Value>& values);
  // One record with every byte set to `fill`: a target that shows whether it was touched.
  RecordImage(const Description& message, uint8_t fill);

  void* data() { return record_; }
  const void* data() const { return record_; }
  size_t size() const { return size_; }  // recordSize times the number of records
  std::vector<uint8_t> bytes() const;    // the record memory itself, pointers and all

 private:
  struct Release {
    void operator()(uint8_t* block) const { ::operator delete(block, alignment); }
  };
  static constexpr std::align_val_t alignment{16};

  uint8_t* take(size_t size);
  void store(const Description& message, const Value& value, uint8_t* record);

  std::vector<std::unique_ptr<uint8_t, Release>> blocks_;
  uint8_t* record_ = nullptr;
  size_t size_ = 0;
};

}  // namespace oracle
