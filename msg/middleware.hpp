// The device's messaging middleware, as this library calls it. Its functions stay undefined in the
// shared object and are found in the process at the first call of each.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

// One encoded table. Native byte order.
struct mesh_msg_desc {
  uint64_t data;  // address of the table's first byte
  uint32_t msg_id;
  uint32_t length;  // of the table, in bytes
};

using mesh_unpack_hook = uint32_t (*)(const uint8_t* data, uint32_t length, void* record);
using mesh_free_hook = void (*)(void* record);
using mesh_clean_hook = void (*)();

uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count);
uint32_t MESH_SendToMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                        uint64_t extra);
uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, mesh_unpack_hook unpack, mesh_free_hook release);
uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook clean);

}  // extern "C"

static_assert(sizeof(mesh_msg_desc) == 16);
static_assert(offsetof(mesh_msg_desc, data) == 0);
static_assert(offsetof(mesh_msg_desc, msg_id) == 8);
static_assert(offsetof(mesh_msg_desc, length) == 12);
