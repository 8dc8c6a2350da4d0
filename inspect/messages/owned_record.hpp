// A record of any message, owning its memory and the blocks that its pointers point to.
#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "inspect/messages/messages.hpp"

namespace inspect {

// Starts as zeros. Blocks come from addBlock or, after decoding, from the library.
class OwnedRecord {
 public:
  explicit OwnedRecord(const KnownMessage& message)
      : message_(&message), words_((message.schema().size + 7) / 8) {}
  OwnedRecord(OwnedRecord&& other) noexcept = default;
  OwnedRecord& operator=(OwnedRecord&&) = delete;
  ~OwnedRecord() {
    if (isUnpacked_ && !words_.empty()) {
      message_->freeUnpacked(data());
    }
  }

  [[nodiscard]] const KnownMessage& message() const { return *message_; }
  [[nodiscard]] uint8_t* data() { return reinterpret_cast<uint8_t*>(words_.data()); }
  [[nodiscard]] const uint8_t* data() const {
    return reinterpret_cast<const uint8_t*>(words_.data());
  }

  // A block of zeros that lives as long as the record.
  uint8_t* addBlock(size_t size) {
    blocks_.push_back(std::make_unique<uint64_t[]>((size + 7) / 8));
    return reinterpret_cast<uint8_t*>(blocks_.back().get());
  }

  // From now on the library releases the blocks.
  void setUnpacked() { isUnpacked_ = true; }

 private:
  const KnownMessage* message_;
  std::vector<uint64_t> words_;  // aligned for any field
  std::vector<std::unique_ptr<uint64_t[]>> blocks_;
  bool isUnpacked_ = false;
};

template <typename Integer>
Integer loadAs(const uint8_t* from) {
  Integer value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <typename Integer>
void storeAs(uint8_t* to, Integer value) {
  std::memcpy(to, &value, sizeof value);
}

}  // namespace inspect
