// Tells the thread sanitizer that a message's receiver sees what its sender wrote. The sanitizer
// cannot see that inside ZeroMQ. Does nothing in other builds.
#pragma once

#if defined(__SANITIZE_THREAD__)
#define ZARNIMESH_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZARNIMESH_THREAD_SANITIZER
#endif
#endif

#include "zarnimesh/transport/message_part.hpp"

#ifdef ZARNIMESH_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace zarnimesh {

// Both threads see the bytes of `part` at the same address.
inline void handOver([[maybe_unused]] MessagePart& part) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_release(part.data());
#endif
}

inline void takeOver([[maybe_unused]] MessagePart& part) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_acquire(part.data());
#endif
}

// For the thread that releases the bytes of a message.
inline void takeOver([[maybe_unused]] uint8_t* bytes) {
#ifdef ZARNIMESH_THREAD_SANITIZER
  __tsan_acquire(bytes);
#endif
}

}  // namespace zarnimesh
