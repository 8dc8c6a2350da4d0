// A record of any message, owning its memory and the blocks that its pointers point to.
#pragma once

#include <memory>
#include <vector>

#include "inspect/messages/messages.hpp"
#include "inspect/messages/release.hpp"

namespace inspect {

// Starts as zeros. Blocks come from addBlock or from decoding.
class OwnedRecord {
 public:
  explicit OwnedRecord(const KnownMessage& message)
      : message_(&message), words_((message.schema().size + 7) / 8) {}
  OwnedRecord(OwnedRecord&& other) noexcept = default;
  OwnedRecord& operator=(OwnedRecord&&) = delete;
  ~OwnedRecord() {
    if (isUnpacked_ && !words_.empty()) {
      releaseParts(message_->schema(), data());
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

  // From now on the pointers own what they point to.
  void setUnpacked() { isUnpacked_ = true; }

 private:
  const KnownMessage* message_;
  std::vector<uint64_t> words_;  // aligned for any field
  std::vector<std::unique_ptr<uint64_t[]>> blocks_;
  bool isUnpacked_ = false;
};

}  // namespace inspect
