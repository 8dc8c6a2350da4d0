// The exported functions of zarnimesh/mesh.h.
#include "zarnimesh/mesh.h"

#include "zarnimesh/api/export.hpp"
#include "zarnimesh/api/guarded.hpp"
#include "zarnimesh/node/hooks.hpp"

namespace {

using namespace zarnimesh;

[[nodiscard]] mesh_result send(const char* frame, uint32_t destination,
                               const mesh_msg_desc* descriptors, uint32_t count, uint64_t extra) {
  return guarded([&] {
    Node* const node = sendingNode().get();
    if (node == nullptr) {
      return fail(MESH_NOT_OPEN, "no open node to send from");
    }
    return node->send(frame, destination, descriptors, count, extra, -1);
  });
}

}  // namespace

ZARNIMESH_EXPORT uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors,
                                       uint32_t count) {
  return send(exportedFrame(), destination, descriptors, count, 0);
}

ZARNIMESH_EXPORT uint32_t MESH_SendToMsg(uint32_t destination, const mesh_msg_desc* descriptors,
                                         uint32_t count, uint64_t extra) {
  return send(exportedFrame(), destination, descriptors, count, extra);
}

ZARNIMESH_EXPORT uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, mesh_unpack_hook unpack,
                                              mesh_free_hook release) {
  return guarded([&] {
    if (unpack == nullptr || release == nullptr) {
      return fail(MESH_BAD_ARGUMENT, "null hook for the identifier 0x%08X", msg_id);
    }
    registerHook(msg_id, {.unpack = unpack, .release = release});
    return MESH_OK;
  });
}

ZARNIMESH_EXPORT uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook clean) {
  return guarded([&] {
    if (clean == nullptr) {
      return fail(MESH_BAD_ARGUMENT, "null clean hook");
    }
    registerCleanHook(clean);
    return MESH_OK;
  });
}
