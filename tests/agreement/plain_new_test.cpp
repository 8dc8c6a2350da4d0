// Under the address sanitizer: memory of the tests' own containers without red zones, quarantine
// and stack traces, which would take most of the time. What the engine is given keeps them, as it
// comes from malloc(), new[] and aligned new.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)

#include <gtest/gtest.h>

#include <new>

#include "oracle/values/record_image.hpp"
#include "support/block.hpp"

extern "C" {
void* __libc_malloc(size_t size);
void __libc_free(void* block);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return __libc_malloc(size > 0 ? size : 1);
}

void* operator new(size_t size) {
  void* const block = operator new(size, std::nothrow);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void operator delete(void* block) noexcept {
  __libc_free(block);
}

void operator delete(void* block, size_t) noexcept {
  __libc_free(block);
}

namespace {

void read(const void* byte) {
  static_cast<void>(*static_cast<const volatile uint8_t*>(byte));
}

TEST(PlainNew, IsNotForBlocks) {
  const harness::Block block(13, 0);
  read(block.data() + 12);
  EXPECT_DEATH(read(block.data() + 13), "heap-buffer-overflow");
}

TEST(PlainNew, IsNotForRecords) {
  const oracle::Description& message = oracle::descriptions().front();
  const oracle::RecordImage record(message, uint8_t{0});
  read(static_cast<const uint8_t*>(record.data()) + record.size() - 1);
  EXPECT_DEATH(read(static_cast<const uint8_t*>(record.data()) + record.size()),
               "heap-buffer-overflow");
}

}  // namespace

#endif
#endif
