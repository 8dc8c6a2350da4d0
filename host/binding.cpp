#include "host/binding.hpp"

#include <dlfcn.h>

#include <cstdlib>

namespace mesh::host {
namespace {

// A null handle searches the global namespace, in load order.
template <typename Function>
Function lookUp(const char* symbol) {
  return reinterpret_cast<Function>(dlsym(nullptr, symbol));
}

class Guard {
 public:
  explicit Guard(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
  ~Guard() { pthread_mutex_unlock(&mutex_); }
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  pthread_mutex_t& mutex_;
};

// A block must go back to the allocator it came from, so a pair is the host's or ours as a whole.
void completePair(AllocFn& alloc, FreeFn& release) {
  if (alloc == nullptr || release == nullptr) {
    alloc = &mallocWrapper;
    release = &freeWrapper;
  }
}

}  // namespace

void* mallocWrapper(uint32_t size, uint32_t /*owner*/, const char* /*caller*/) {
  return std::malloc(size);
}

void freeWrapper(void* block, uint32_t /*owner*/, const char* /*caller*/) {
  std::free(block);
}

[[gnu::cold]] void bindHostOnce(serial_env& env) {
  const Guard guard(env.hostLock);
  if (env.hostBound.load(std::memory_order_relaxed) != 0) {
    return;
  }
  if (env.logWrite == nullptr) {
    env.logWrite = lookUp<LogWriteFn>("DDM_OsalLogWrite");
  }
  env.memAlloc = lookUp<AllocFn>("DDM_OsalMemAlloc");
  env.memFree = lookUp<FreeFn>("DDM_OsalMemFree");
  completePair(env.memAlloc, env.memFree);
  env.hostBound.store(1, std::memory_order_release);
}

[[gnu::cold]] void bindUnpackAllocatorOnce(Module& module) {
  serial_env& env = module.env;
  const Guard guard(env.unpackLock);
  if (env.unpackBound.load(std::memory_order_relaxed) != 0) {
    return;
  }
  module.swapBytes.store(0, std::memory_order_relaxed);
  const auto useFlagGet = lookUp<MemUseFlagGetFn>("DDM_OsalMemUseFlagGet");
  if (useFlagGet != nullptr && useFlagGet(unpackOwner) == 1) {
    env.unpackAlloc = lookUp<AllocFn>("DDM_OsalMemCacheAlloc");
    env.unpackFree = lookUp<FreeFn>("DDM_OsalMemFree");
  }
  completePair(env.unpackAlloc, env.unpackFree);
  env.unpackBound.store(1, std::memory_order_release);
}

}  // namespace mesh::host
