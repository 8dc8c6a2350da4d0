// Memory for one record or one buffer, placed so that an overrun shows.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "support/guarded_buffer.hpp"

namespace harness {

// Bytes of one value: in an allocation of their exact size, at a given distance from an aligned
// address; or against an inaccessible page.
class Block {
 public:
  Block(size_t size, uint8_t fill, size_t shift = 0,
        const std::optional<GuardedBuffer::Edge>& guard = std::nullopt)
      : size_(size), shift_(guard ? 0 : shift) {
    if (guard) {
      guarded_.emplace(std::vector<uint8_t>(size, fill), *guard);
    } else {
      owned_ = std::make_unique<uint8_t[]>(shift_ + size);
      std::fill_n(data(), size, fill);
    }
  }

  [[nodiscard]] uint8_t* data() const {
    return guarded_ ? guarded_->data() : owned_.get() + shift_;
  }
  [[nodiscard]] std::vector<uint8_t> bytes() const { return {data(), data() + size_}; }
  void hold(std::span<const uint8_t> bytes) { std::copy(bytes.begin(), bytes.end(), data()); }

 private:
  size_t size_;
  size_t shift_;
  std::optional<GuardedBuffer> guarded_;
  std::unique_ptr<uint8_t[]> owned_;
};

}  // namespace harness
