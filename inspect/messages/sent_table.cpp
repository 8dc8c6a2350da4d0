#include "inspect/messages/sent_table.hpp"

#include "zarnimesh/mesh.h"

namespace inspect {
namespace {

thread_local std::vector<uint8_t>* taken = nullptr;

uint32_t keep(const mesh_msg_desc* descriptors, uint32_t count) {
  if (taken == nullptr || count != 1) {
    return UINT32_MAX;
  }
  const auto* const table = reinterpret_cast<const uint8_t*>(descriptors->data);
  taken->assign(table, table + descriptors->length);
  return 0;
}

}  // namespace

std::vector<uint8_t> takeSent(const std::function<void()>& send) {
  std::vector<uint8_t> table;
  taken = &table;
  send();
  taken = nullptr;
  return table;
}

}  // namespace inspect

extern "C" {

[[gnu::visibility("default")]] uint32_t MESH_SendMsg(uint32_t /*destination*/,
                                                     const mesh_msg_desc* descriptors,
                                                     uint32_t count) {
  return inspect::keep(descriptors, count);
}

[[gnu::visibility("default")]] uint32_t MESH_SendToMsg(uint32_t /*destination*/,
                                                       const mesh_msg_desc* descriptors,
                                                       uint32_t count, uint64_t /*extra*/) {
  return inspect::keep(descriptors, count);
}

[[gnu::visibility("default")]] uint32_t MESH_RegIDLFuncHook(uint32_t /*msg_id*/,
                                                            mesh_unpack_hook /*unpack*/,
                                                            mesh_free_hook /*release*/) {
  return UINT32_MAX;
}

[[gnu::visibility("default")]] uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook /*clean*/) {
  return UINT32_MAX;
}

}  // extern "C"
