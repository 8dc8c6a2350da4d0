// What one codec module knows of its host, and how it finds out: lazily, once, by symbol name.
#pragma once

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>

#include "host/memory.hpp"
#include "host/probes.hpp"

namespace mesh::host {

using LogWriteFn = void (*)(const void* env, uint32_t level, uint32_t code, const char* file,
                            uint32_t line, const char* function, const char* format, ...);
// Blocks are aligned for any type, as malloc's are.
using AllocFn = void* (*)(uint32_t size, uint32_t owner, const char* caller);
using FreeFn = void (*)(void* block, uint32_t owner, const char* caller);
using MemUseFlagGetFn = uint32_t (*)(uint32_t owner);

// The owner id of everything that decoding allocates. DDM_OsalMemUseFlagGet is asked about it.
inline constexpr uint32_t unpackOwner = 12;

// The standard allocator behind the host allocator's signature.
inline void* mallocWrapper(uint32_t size, uint32_t /*owner*/, const char* /*caller*/) {
  return std::malloc(size);
}
inline void freeWrapper(void* block, uint32_t /*owner*/, const char* /*caller*/) {
  std::free(block);
}

// The binding record. The host receives its address with every log call and reads the first word,
// so the order of the fields is part of the interface.
//
// hostBound guards logWrite, memAlloc and memFree; unpackBound guards unpackAlloc and unpackFree.
// Each flag is stored last, with release; whoever reads it nonzero with acquire sees the functions.
struct serial_env {
  const char* frameworkName = "VELTA";
  const char* moduleName = "VELTA_PLOVANE_SERIAL";
  uint16_t memModuleId = 0x6200;

  pthread_mutex_t hostLock = PTHREAD_MUTEX_INITIALIZER;
  LogWriteFn logWrite = nullptr;
  AllocFn memAlloc = nullptr;
  FreeFn memFree = nullptr;
  std::atomic<uint32_t> hostBound = 0;

  pthread_mutex_t unpackLock = PTHREAD_MUTEX_INITIALIZER;
  std::atomic<uint32_t> unpackBound = 0;
  AllocFn unpackAlloc = &mallocWrapper;
  FreeFn unpackFree = &freeWrapper;
};

// One direction of one service. Modules share nothing.
struct Module {
  serial_env env;

  // Nonzero: every multi-byte value on the wire is byte-reversed. Read before each message. The
  // load-time constructor and the unpack-side binding store 0.
  std::atomic<uint32_t> swapBytes = 0;
};

inline ByteOrder byteOrder(const Module& module) {
  return module.swapBytes.load(std::memory_order_relaxed) == 0 ? ByteOrder::Host
                                                               : ByteOrder::Reversed;
}

// A null handle searches the global namespace, in load order.
template <typename Function>
Function lookUp(const char* symbol) {
  return reinterpret_cast<Function>(dlsym(nullptr, symbol));
}

// Both functions are the host's or both ours: a block goes back to where it came from.
inline void completePair(AllocFn& alloc, FreeFn& release) {
  if (alloc == nullptr || release == nullptr) {
    alloc = &mallocWrapper;
    release = &freeWrapper;
  }
}

[[gnu::cold, gnu::noinline]] inline void bindHostOnce(serial_env& env) {
  pthread_mutex_lock(&env.hostLock);
  if (env.hostBound.load(std::memory_order_relaxed) == 0) {
    if (env.logWrite == nullptr) {
      env.logWrite = lookUp<LogWriteFn>("DDM_OsalLogWrite");
    }
    env.memAlloc = lookUp<AllocFn>("DDM_OsalMemAlloc");
    env.memFree = lookUp<FreeFn>("DDM_OsalMemFree");
    completePair(env.memAlloc, env.memFree);
    env.hostBound.store(1, std::memory_order_release);
    MESH_PROBE2(bound, &env, "host");
  }
  pthread_mutex_unlock(&env.hostLock);
}

[[gnu::cold, gnu::noinline]] inline void bindUnpackAllocator(Module& module) {
  serial_env& env = module.env;
  pthread_mutex_lock(&env.unpackLock);
  if (env.unpackBound.load(std::memory_order_relaxed) == 0) {
    module.swapBytes.store(0, std::memory_order_relaxed);
    const auto useFlagGet = lookUp<MemUseFlagGetFn>("DDM_OsalMemUseFlagGet");
    if (useFlagGet != nullptr && useFlagGet(unpackOwner) == 1) {
      env.unpackAlloc = lookUp<AllocFn>("DDM_OsalMemCacheAlloc");
      env.unpackFree = lookUp<FreeFn>("DDM_OsalMemFree");
    }
    completePair(env.unpackAlloc, env.unpackFree);
    env.unpackBound.store(1, std::memory_order_release);
    MESH_PROBE2(bound, &env, "codec");
  }
  pthread_mutex_unlock(&env.unpackLock);
}

// Ensures that logWrite, memAlloc and memFree are bound. logWrite may stay null.
inline void bindHost(serial_env& env) {
  if (env.hostBound.load(std::memory_order_acquire) == 0) [[unlikely]] {
    bindHostOnce(env);
  }
}

inline bool isCodecBound(const Module& module) {
  return module.env.unpackBound.load(std::memory_order_acquire) != 0;
}

// Call this before you read, write or release a message. Readers and releases need the unpack
// allocator. Writers need the byte order, which the same binding clears.
inline void bindCodec(Module& module) {
  if (!isCodecBound(module)) [[unlikely]] {
    bindUnpackAllocator(module);
  }
}

}  // namespace mesh::host
