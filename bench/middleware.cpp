#include "bench/middleware.hpp"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "mesh_l2vpn/l2vpn_stat.h"
#include "zarnimesh/mesh.h"

namespace bench {
namespace {

thread_local Captured captured;

[[gnu::cold, gnu::noinline]] void capture(const mesh_msg_desc* descriptors, uint32_t count) {
  for (uint32_t index = 0; index < count; ++index) {
    const auto* const table =
        reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(descriptors[index].data));
    captured.bytes.insert(captured.bytes.end(), table, table + descriptors[index].length);
    captured.ends.push_back(static_cast<uint32_t>(captured.bytes.size()));
  }
}

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "l2vpn_bench measures nothing: %s\n", what);
    std::exit(1);
  }
}

}  // namespace

Captured takeCaptured() {
  return std::exchange(captured, {});
}

void requireSurroundings() {
  Dl_info library{};
  const bool found =
      dladdr(reinterpret_cast<const void*>(&l2vpn_stat_pw_stat__pack), &library) != 0;
  require(found && std::strstr(library.dli_fname, "libmesh_l2vpn.so") != nullptr,
          "the operations are not those of the shared object");
  for (const char* name :
       {"DDM_OsalLogWrite", "DDM_OsalMemAlloc", "DDM_OsalMemFree", "DDM_OsalMemCacheAlloc",
        "DDM_OsalMemUseFlagGet", "memcpy_s", "memset_s", "memcpy_sOptAsm"}) {
    require(dlsym(RTLD_DEFAULT, name) == nullptr, "this process has services of a host");
  }
  require(dlsym(RTLD_DEFAULT, "MESH_SendMsg") == reinterpret_cast<const void*>(&MESH_SendMsg),
          "another middleware is loaded");
  const l2vpn_stat_pw_stat record{};
  require(l2vpn_stat_pw_stat__sendsingle(capturingDestination, &record, 0, 0) == 0 &&
              takeCaptured().ends.size() == 1,
          "the middleware is not reached");
}

}  // namespace bench

uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count) {
  if (destination == bench::capturingDestination) [[unlikely]] {
    bench::capture(descriptors, count);
  }
  return 0;
}

uint32_t MESH_SendToMsg(uint32_t /*destination*/, const mesh_msg_desc* /*descriptors*/,
                        uint32_t /*count*/, uint64_t /*extra*/) {
  return 0;
}

uint32_t MESH_RegIDLFuncHook(uint32_t /*id*/, mesh_unpack_hook /*unpack*/,
                             mesh_free_hook /*release*/) {
  return 0;
}

uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook /*clean*/) {
  return 0;
}
