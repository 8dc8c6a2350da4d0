// Tells the thread sanitizer, which cannot see into the transport, that what one thread wrote
// before it sent a message is visible to the thread that received it. Nothing in other builds.
#pragma once

#if defined(__SANITIZE_THREAD__)
#define ZARNIMESH_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZARNIMESH_THREAD_SANITIZER 1
#endif
#endif

#ifdef ZARNIMESH_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace zarnimesh {

// The bytes of a part that both threads see at one address.
inline void handOver([[maybe_unused]] void* bytes) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_release(bytes);
#endif
}

inline void takeOver([[maybe_unused]] void* bytes) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_acquire(bytes);
#endif
}

}  // namespace zarnimesh
