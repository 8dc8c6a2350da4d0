// A copy of some bytes that ends (or begins) at an inaccessible page.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

namespace harness {

class GuardedBuffer {
 public:
  enum class Edge { End, Start };

  explicit GuardedBuffer(std::span<const uint8_t> bytes, Edge edge = Edge::End)
      : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
        inner_((bytes.size() / page_ + 1) * page_) {
    void* const map =
        mmap(nullptr, inner_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) {
      std::abort();
    }
    map_ = static_cast<uint8_t*>(map);
    if (mprotect(map_ + page_, inner_, PROT_READ | PROT_WRITE) != 0) {
      std::abort();
    }
    data_ = edge == Edge::End ? map_ + page_ + inner_ - bytes.size() : map_ + page_;
    if (!bytes.empty()) {
      std::memcpy(data_, bytes.data(), bytes.size());
    }
  }
  ~GuardedBuffer() { munmap(map_, inner_ + 2 * page_); }
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  [[nodiscard]] uint8_t* data() const { return data_; }

 private:
  size_t page_;
  size_t inner_;
  uint8_t* map_;
  uint8_t* data_;
};

}  // namespace harness
