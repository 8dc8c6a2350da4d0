#include "delivered/shared_object/interface_types.hpp"
#include "host/binding.hpp"
#include "host/memory.hpp"
#include "msg/middleware.hpp"

std::vector<std::string> interfaces::asTheLibraryHasThem() {
  return {nameOf<decltype(&MESH_SendMsg)>(),
          nameOf<decltype(&MESH_SendToMsg)>(),
          nameOf<decltype(&MESH_RegIDLFuncHook)>(),
          nameOf<decltype(&MESH_RegIDLResorceCleanFuncHook)>(),
          nameOf<mesh::host::LogWriteFn>(),
          nameOf<mesh::host::AllocFn>(),
          nameOf<mesh::host::AllocFn>(),
          nameOf<mesh::host::FreeFn>(),
          nameOf<mesh::host::MemUseFlagGetFn>(),
          nameOf<decltype(&memcpy_s)>(),
          nameOf<decltype(&memset_s)>(),
          nameOf<decltype(&memcpy_sOptAsm)>(),
          std::to_string(sizeof(mesh_msg_desc)),
          std::to_string(offsetof(mesh_msg_desc, data)),
          std::to_string(offsetof(mesh_msg_desc, msg_id)),
          std::to_string(offsetof(mesh_msg_desc, length))};
}
