// Late binding of the host's functions, once per module.
#pragma once

#include "host/serial_env.hpp"

namespace mesh::host {

// The owner id of everything that decoding allocates, and the one the host is asked about.
inline constexpr uint32_t unpackOwner = 12;

void bindHostOnce(serial_env& env);
void bindUnpackAllocatorOnce(Module& module);

// Ensures that logWrite, memAlloc and memFree are bound. logWrite may stay null.
[[gnu::always_inline]] inline void bindHost(serial_env& env) {
  if (env.hostBound.load(std::memory_order_acquire) == 0) [[unlikely]] {
    bindHostOnce(env);
  }
}

[[gnu::always_inline]] inline bool isUnpackAllocatorBound(const Module& module) {
  return module.env.unpackBound.load(std::memory_order_acquire) != 0;
}

// Ensures that unpackAlloc and unpackFree are bound; the binding clears swapBytes.
[[gnu::always_inline]] inline void bindUnpackAllocator(Module& module) {
  if (!isUnpackAllocatorBound(module)) [[unlikely]] {
    bindUnpackAllocatorOnce(module);
  }
}

}  // namespace mesh::host
