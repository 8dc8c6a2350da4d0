/* A program that sends a message to itself through the middleware it was linked with. */
#include <stdio.h>

#include "mesh_l2vpn/l2vpn_sync.h"
#include "zarnimesh/node.h"

static void handle(const mesh_received* received, void* user) {
  if (received->msg_id == l2vpn_sync_stp__msg_id) {
    *(uint32_t*)user = ((const l2vpn_sync_stp*)received->record)->f3;
  }
}

int main(void) {
  const l2vpn_sync_stp sent = {1, 2, 3, 4};
  uint32_t value = 0;
  mesh_node_options options;
  mesh_node* node;
  mesh_node_options_default(&options);
  options.transport = MESH_TRANSPORT_INPROC;
  if (mesh_node_open(7, &options, &node) != MESH_OK || l2vpn_sync_recv_init() != 0 ||
      l2vpn_sync_send_init() != 0 || l2vpn_sync_stp__sendmsg(7, &sent, 1) != 0) {
    printf("%s\n", mesh_node_last_error());
    return 1;
  }
  mesh_node_receive(node, 5000, handle, &value);
  mesh_node_close(node);
  printf("sent 4, received %u\n", value);
  return value == 4 ? 0 : 1;
}
