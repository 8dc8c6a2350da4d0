#include "msg/registration.hpp"

#include "msg/result.hpp"

namespace mesh::msg {

uint32_t registerHooks(std::span<const Hook> hooks) {
  for (const Hook& hook : hooks) {
    const uint32_t result = MESH_RegIDLFuncHook(hook.id, hook.unpack, hook.release);
    if (result != success) {
      return result;
    }
  }
  return success;
}

}  // namespace mesh::msg
