// The host whose functions come from libraries, and a middleware.

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "host/functions/observer.hpp"
#include "host/process.hpp"
#include "zarnimesh/mesh.h"

namespace harness {
namespace {

std::atomic<uint32_t> flag{0};

}  // namespace

void bring(unsigned functions, uint32_t useFlag) {
  flag = useFlag;
  for (const auto& [function, name] : std::initializer_list<std::pair<unsigned, const char*>>{
           {LogWrite, "log_write"},
           {MemAlloc, "mem_alloc"},
           {MemFree, "mem_free"},
           {MemCacheAlloc, "mem_cache_alloc"},
           {MemUseFlagGet, "mem_use_flag_get"}}) {
    if ((functions & function) != 0) {
      const std::string path = std::string(HOST_FUNCTIONS_DIRECTORY "/host_") + name + ".so";
      if (dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        _exit(3);
      }
    }
  }
}

}  // namespace harness

extern "C" {

void hostNote(const char* line) {
  harness::note(line);
}

uint32_t hostUseFlag() {
  return harness::flag;
}

// A middleware that accepts everything.
uint32_t MESH_SendMsg(uint32_t, const mesh_msg_desc*, uint32_t) {
  return 0;
}
uint32_t MESH_SendToMsg(uint32_t, const mesh_msg_desc*, uint32_t, uint64_t) {
  return 0;
}
uint32_t MESH_RegIDLFuncHook(uint32_t, mesh_unpack_hook, mesh_free_hook) {
  return 0;
}
uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook) {
  return 0;
}

}  // extern "C"
