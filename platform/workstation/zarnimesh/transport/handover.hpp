// Tells the thread sanitizer that a message's receiver sees what its sender wrote. The sanitizer
// cannot see that inside ZeroMQ. Does nothing in other builds.
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

// `bytes` are those of a part that both threads see at the same address.
inline void handOver([[maybe_unused]] void* bytes) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_release(bytes);
#endif
}

inline void takeOver([[maybe_unused]] const void* bytes) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_acquire(const_cast<void*>(bytes));
#endif
}

}  // namespace zarnimesh
