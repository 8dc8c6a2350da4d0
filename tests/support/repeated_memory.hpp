// Gigabytes of addresses over little real memory.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace harness {

// The thread sanitizer keeps some bytes for each that is touched: it would need the gigabytes.
#if defined(__SANITIZE_THREAD__)
inline constexpr bool canRepeatMemory = false;
#elif defined(__has_feature)
inline constexpr bool canRepeatMemory = !__has_feature(thread_sanitizer);
#else
inline constexpr bool canRepeatMemory = true;
#endif

// `size` bytes, of which every stretch of 2 MiB is the same real memory, but for the first page and
// the last one, which are memory of their own. A page that cannot be touched follows.
class RepeatedMemory {
 public:
  static constexpr size_t stretch = size_t{2} << 20;

  RepeatedMemory(uint64_t size, uint8_t fill)
      : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
        inner_((size + page_ - 1) / page_ * page_) {
    const int file = memfd_create("repeated", 0);
    data_ =
        map(nullptr, inner_ + page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1);
    if (file < 0 || ftruncate(file, stretch) != 0) {
      std::abort();
    }
    for (size_t at = 0; at < inner_; at += stretch) {
      map(data_ + at, std::min(stretch, inner_ - at), PROT_READ | PROT_WRITE,
          MAP_SHARED | MAP_FIXED, file);
    }
    close(file);
    std::memset(data_, fill, std::min(stretch, inner_));
    for (uint8_t* const edge : {data_, data_ + inner_ - page_}) {
      map(edge, page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1);
      std::memset(edge, fill, page_);
    }
  }
  ~RepeatedMemory() { munmap(data_, inner_ + page_); }
  RepeatedMemory(const RepeatedMemory&) = delete;
  RepeatedMemory& operator=(const RepeatedMemory&) = delete;

  [[nodiscard]] uint8_t* data() const { return data_; }

 private:
  static uint8_t* map(void* at, size_t size, int protection, int flags, int file) {
    void* const mapped = mmap(at, size, protection, flags, file, 0);
    if (mapped == MAP_FAILED) {
      std::abort();
    }
    return static_cast<uint8_t*>(mapped);
  }

  size_t page_;
  size_t inner_;
  uint8_t* data_;
};

}  // namespace harness
