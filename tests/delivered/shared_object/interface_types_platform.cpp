#include <cstddef>

#include "bounded/memory.h"
#include "ddm/osal.h"
#include "delivered/shared_object/interface_types.hpp"
#include "zarnimesh/mesh.h"

std::vector<std::string> interfaces::asThePlatformHasThem() {
  return {nameOf<decltype(&MESH_SendMsg)>(),
          nameOf<decltype(&MESH_SendToMsg)>(),
          nameOf<decltype(&MESH_RegIDLFuncHook)>(),
          nameOf<decltype(&MESH_RegIDLResorceCleanFuncHook)>(),
          nameOf<decltype(&DDM_OsalLogWrite)>(),
          nameOf<decltype(&DDM_OsalMemAlloc)>(),
          nameOf<decltype(&DDM_OsalMemCacheAlloc)>(),
          nameOf<decltype(&DDM_OsalMemFree)>(),
          nameOf<decltype(&DDM_OsalMemUseFlagGet)>(),
          nameOf<decltype(&memcpy_s)>(),
          nameOf<decltype(&memset_s)>(),
          nameOf<decltype(&memcpy_sOptAsm)>(),
          std::to_string(sizeof(mesh_msg_desc)),
          std::to_string(offsetof(mesh_msg_desc, data)),
          std::to_string(offsetof(mesh_msg_desc, msg_id)),
          std::to_string(offsetof(mesh_msg_desc, length))};
}
