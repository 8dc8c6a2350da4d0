#include "host/observed_host.hpp"

#include <pthread.h>

#include <atomic>
#include <initializer_list>
#include <memory>
#include <utility>

#include "ddm/osal.h"
#include "host/binding.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/recorder.hpp"

// The linker (--wrap) redirects every call of these in this executable to the __wrap_ functions.
extern "C" {
void* __real_dlsym(void* handle, const char* symbol);
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
void* __real_malloc(size_t size);
}

namespace harness {
namespace {

using mesh::host::Module;
using mesh::host::serial_env;

bool observed = false;
Host met;
size_t mallocSize = 0;
// The flag of the side that is being bound, while its mutex is held.
const std::atomic<uint32_t>* heldFlag = nullptr;

const std::initializer_list<std::pair<const char*, Module*>> modules{
    {"l2vpn_cfg receive", &mesh::l2vpn_cfg::receiveModule},
    {"l2vpn_cfg send", &mesh::l2vpn_cfg::sendModule},
    {"l2vpn_stat receive", &mesh::l2vpn_stat::receiveModule},
    {"l2vpn_stat send", &mesh::l2vpn_stat::sendModule},
    {"l2vpn_sync receive", &mesh::l2vpn_sync::receiveModule},
    {"l2vpn_sync send", &mesh::l2vpn_sync::sendModule}};

void trace(const std::string& line) {
  recorder().trace.push_back(line);
}

uint32_t answerUseFlag(uint32_t owner) {
  trace(owner == 12 ? useFlagLine() : "useFlagGet of another owner");
  return met.useFlag;
}

struct Function {
  HostFunction bit;
  std::string name;
  const void* address;
};

template <typename Pointer>
const void* address(Pointer function) {
  return reinterpret_cast<const void*>(function);
}

const std::initializer_list<Function> hostFunctions{
    {LogWrite, "DDM_OsalLogWrite", address(&DDM_OsalLogWrite)},
    {MemAlloc, "DDM_OsalMemAlloc", address(&DDM_OsalMemAlloc)},
    {MemFree, "DDM_OsalMemFree", address(&DDM_OsalMemFree)},
    {MemCacheAlloc, "DDM_OsalMemCacheAlloc", address(&DDM_OsalMemCacheAlloc)},
    {MemUseFlagGet, "DDM_OsalMemUseFlagGet", address(&answerUseFlag)}};

void* answerLookUp(const std::string& symbol) {
  trace(heldFlag == nullptr ? "look up without a lock" : lookUpLine(symbol, heldFlag->load()));
  for (const Function& function : hostFunctions) {
    if (function.name == symbol && met.has(function.bit)) {
      return const_cast<void*>(function.address);
    }
  }
  return nullptr;
}

std::string nameOf(const void* pointer) {
  for (const Function& function : hostFunctions) {
    if (function.address == pointer) {
      return function.name;
    }
  }
  return pointer == nullptr                               ? "none"
         : pointer == address(&mesh::host::mallocWrapper) ? "malloc"
         : pointer == address(&mesh::host::freeWrapper)   ? "free"
                                                          : "something else";
}

Contents contentsOf(const serial_env& env) {
  return {
      std::string(env.frameworkName) + " " + env.moduleName + " " + std::to_string(env.memModuleId),
      env.hostBound.load(),
      nameOf(address(env.logWrite)),
      nameOf(address(env.memAlloc)),
      nameOf(address(env.memFree)),
      env.unpackBound.load(),
      nameOf(address(env.unpackAlloc)),
      nameOf(address(env.unpackFree))};
}

void noteLocked(const pthread_mutex_t* mutex) {
  for (const auto& [name, module] : modules) {
    const serial_env& env = module->env;
    if (mutex == &env.hostLock) {
      trace(lockLine(name, "hostLock", contentsOf(env)));
      heldFlag = &env.hostBound;
    } else if (mutex == &env.unpackLock) {
      trace(lockLine(name, "unpackLock", contentsOf(env)));
      heldFlag = &env.unpackBound;
    }
  }
}

void noteUnlocking(const pthread_mutex_t* mutex) {
  for (const auto& [name, module] : modules) {
    const serial_env& env = module->env;
    if (mutex == &env.hostLock || mutex == &env.unpackLock) {
      trace(unlockLine(name, mutex == &env.hostLock ? "hostLock" : "unpackLock", contentsOf(env)));
      heldFlag = nullptr;
    }
  }
}

std::string mutexLine(const char* what, const std::string& module, const char* mutex,
                      const Contents& contents) {
  return what + (" " + module) + " " + mutex + ": " + contents.identity + ", hostBound " +
         std::to_string(contents.hostBound) + " " + contents.logWrite + " " + contents.memAlloc +
         " " + contents.memFree + ", unpackBound " + std::to_string(contents.unpackBound) + " " +
         contents.unpackAlloc + " " + contents.unpackFree;
}

}  // namespace

std::string lookUpLine(const std::string& symbol, uint32_t flag) {
  return "look up " + symbol + ", flag " + std::to_string(flag);
}

std::string useFlagLine() {
  return "useFlagGet 12";
}

std::string lockLine(const std::string& module, const char* mutex, const Contents& contents) {
  return mutexLine("lock", module, mutex, contents);
}

std::string unlockLine(const std::string& module, const char* mutex, const Contents& contents) {
  return mutexLine("unlock", module, mutex, contents);
}

void meet(const Host& host) {
  for (const auto& [name, module] : modules) {
    std::destroy_at(module);
    std::construct_at(module);
  }
  met = host;
  observed = true;
}

size_t lastMalloc() {
  return mallocSize;
}

}  // namespace harness

extern "C" {

// A sanitizer's runtime makes lookups before it can serve instrumented code.
#if defined(__clang__)
[[clang::disable_sanitizer_instrumentation]]
#endif
[[gnu::no_sanitize_address]] void*
__wrap_dlsym(void* handle, const char* symbol) {
  const bool isHosts = handle == nullptr && symbol[0] == 'D' && symbol[1] == 'D' &&
                       symbol[2] == 'M' && symbol[3] == '_';
  return harness::observed && isHosts ? harness::answerLookUp(symbol)
                                      : __real_dlsym(handle, symbol);
}

// Notes a lock after it is taken and an unlock before it is released: both lines show what the
// holder sees.
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  const int result = __real_pthread_mutex_lock(mutex);
  if (harness::observed) {
    harness::noteLocked(mutex);
  }
  return result;
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  if (harness::observed) {
    harness::noteUnlocking(mutex);
  }
  return __real_pthread_mutex_unlock(mutex);
}

void* __wrap_malloc(size_t size) {
  harness::mallocSize = size;
  return __real_malloc(size);
}

}  // extern "C"
