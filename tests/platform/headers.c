/* A C program that includes every public header and calls the libraries. */
#include <bounded/memory.h>
#include <ddm/osal.h>
#include <ddm/osal_workstation.h>
#include <zarnimesh/mesh.h>
#include <zarnimesh/node.h>

int main(void) {
  mesh_node_options options;
  ddm_osal_memory_usage usage;
  mesh_msg_desc descriptor = {0, 0, 0};
  void* block = DDM_OsalMemAlloc(1, 1, "main");
  DDM_OsalMemFree(block, 1, "main");
  mesh_node_options_default(&options);
  return options.payload_limit == 67108864 && ddm_osal_memory_usage_get(1, &usage) == 0 &&
                 usage.total_blocks == 1 && sizeof descriptor == 16 &&
                 MESH_SendMsg(1, &descriptor, 1) == MESH_NOT_OPEN
             ? 0
             : 1;
}
