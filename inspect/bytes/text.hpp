// Text that grows up to the memory limit, or goes to a stream piece by piece.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>
#include <span>
#include <string_view>
#include <utility>

#include "inspect/bytes/memory_limit.hpp"

namespace inspect {

class Text {
 public:
  // `taken`: what the call has taken of its memory before.
  explicit Text(uint64_t taken = 0) : taken_(taken) {}
  explicit Text(std::ostream& out) : out_(&out) {}
  ~Text() { std::free(data_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  // Room for `size` more characters, of which the caller adds as many as it writes.
  char* room(size_t size) {
    if (room_ - size_ < size) [[unlikely]] {
      grow(size);
    }
    return data_ + size_;
  }
  void add(size_t size) { size_ += size; }

  void append(char character) {
    *room(1) = character;
    add(1);
  }

  void append(std::string_view text) {
    std::memcpy(room(text.size()), text.data(), text.size());
    add(text.size());
  }

  void append(size_t count, char character) {
    std::memset(room(count), character, count);
    add(count);
  }

  void appendNumber(uint64_t value) {
    constexpr size_t longest = 20;
    char* const to = room(longest);
    add(static_cast<size_t>(std::to_chars(to, to + longest, value).ptr - to));
  }

  void appendHex(std::span<const uint8_t> bytes) {
    constexpr const char* digits = "0123456789abcdef";
    for (size_t done = 0; done < bytes.size();) {
      const auto part = bytes.subspan(done, std::min(bytes.size() - done, piece));
      char* to = room(2 * part.size());
      for (const uint8_t byte : part) {
        *to++ = digits[byte >> 4];
        *to++ = digits[byte & 15];
      }
      add(2 * part.size());
      done += part.size();
    }
  }

  [[nodiscard]] std::string_view view() const { return {data_, size_}; }

  // The text with a zero at its end, in a block of malloc's, which is the caller's from now on.
  char* release() {
    append('\0');
    room_ = size_ = 0;
    return std::exchange(data_, nullptr);
  }

  // Passes on what is left.
  void flush() {
    out_->write(data_, static_cast<std::streamsize>(size_));
    size_ = 0;
  }

 private:
  static constexpr size_t piece = 16384;

  void grow(size_t size) {
    if (out_ != nullptr && size_ >= piece) {
      flush();
    }
    if (room_ - size_ >= size) {
      return;
    }
    const uint64_t needed = uint64_t{size_} + size;
    if (out_ == nullptr && taken_ + needed > memoryLimit) {
      failForMemory("this text", taken_ + needed);
    }
    const uint64_t most = out_ == nullptr ? memoryLimit - taken_ : UINT64_MAX;
    const uint64_t room = std::max(needed, std::min(most, std::max<uint64_t>(512, 2 * room_)));
    auto* const block = static_cast<char*>(std::realloc(data_, room));
    if (block == nullptr) {
      throw std::bad_alloc();
    }
    data_ = block;
    room_ = room;
  }

  uint64_t taken_ = 0;
  std::ostream* out_ = nullptr;
  char* data_ = nullptr;
  size_t size_ = 0;
  size_t room_ = 0;
};

}  // namespace inspect
