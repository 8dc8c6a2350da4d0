// The binding record of one codec module, and the module itself.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace mesh::host {

using LogWriteFn = void (*)(const void* env, uint32_t level, uint32_t code, const char* file,
                            uint32_t line, const char* function, const char* format, ...);
// Blocks are aligned for any type, as malloc's are.
using AllocFn = void* (*)(uint32_t size, uint32_t owner, const char* caller);
using FreeFn = void (*)(void* block, uint32_t owner, const char* caller);
using MemUseFlagGetFn = uint32_t (*)(uint32_t owner);

// The standard allocator behind the host allocator's signature.
void* mallocWrapper(uint32_t size, uint32_t owner, const char* caller);
void freeWrapper(void* block, uint32_t owner, const char* caller);

// What one module knows of its host. The host receives its address with every log call and reads
// the first word, so the order of the fields is part of the interface.
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

static_assert(sizeof(void*) == 8, "records, descriptors and this layout are those of 64-bit hosts");
static_assert(std::is_standard_layout_v<serial_env>);
static_assert(offsetof(serial_env, frameworkName) == 0);
static_assert(offsetof(serial_env, moduleName) == 8);
static_assert(offsetof(serial_env, memModuleId) == 16);
static_assert(offsetof(serial_env, hostLock) == 24);
static_assert(offsetof(serial_env, logWrite) == 24 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, memAlloc) == 32 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, memFree) == 40 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, hostBound) == 48 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackLock) == 56 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackBound) == 56 + 2 * sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackAlloc) == 64 + 2 * sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackFree) == 72 + 2 * sizeof(pthread_mutex_t));
static_assert(std::atomic<uint32_t>::is_always_lock_free);

// One direction of one service. Modules share nothing.
struct Module {
  serial_env env;

  // Nonzero: every multi-byte value on the wire is byte-reversed. It is read once a message; the
  // load-time constructor and the unpack-side binding store 0.
  std::atomic<uint32_t> swapBytes = 0;
};

}  // namespace mesh::host
