/* Announces that an attachment circuit changed, and receives the announcement: the shortest program
 * with two nodes. Both nodes are in this process; node.h says how nodes of different processes find
 * each other.
 *
 *   announce_and_receive
 */
#include <stdio.h>

#include "mesh_l2vpn/l2vpn_sync.h"
#include "zarnimesh/node.h"

enum { announcer_address = 1, receiver_address = 2 };

/* Called for every record. The record is valid only during the call. */
static void handle(const mesh_received* received, void* user) {
  unsigned* const count = user;
  if (received->msg_id == l2vpn_sync_vpls_ac_update__msg_id) {
    const l2vpn_sync_vpls_ac_update* const update = received->record;
    printf("node %u announced circuit %u, value %u\n", received->source, update->f1.f0, update->f0);
    ++*count;
  }
}

/* Sends one message from `announcer` to the other node. */
static uint32_t announce(mesh_node* announcer) {
  l2vpn_sync_vpls_ac_update update = {.f0 = 7};
  update.f1.f0 = 42;
  mesh_node_attach(announcer);
  return l2vpn_sync_vpls_ac_update__sendmsg(receiver_address, &update, 1);
}

int main(void) {
  mesh_node* announcer = NULL;
  mesh_node* receiver = NULL;
  unsigned count = 0;
  mesh_node_options options;
  mesh_node_options_default(&options);
  options.transport = MESH_TRANSPORT_INPROC;

  if (mesh_node_open(announcer_address, &options, &announcer) != MESH_OK ||
      mesh_node_open(receiver_address, &options, &receiver) != MESH_OK ||
      l2vpn_sync_recv_init() != 0 || l2vpn_sync_send_init() != 0 || announce(announcer) != 0 ||
      mesh_node_receive(receiver, 5000, handle, &count) < 0) {
    fprintf(stderr, "announce_and_receive: %s\n", mesh_node_last_error());
  }
  mesh_node_close(announcer);
  mesh_node_close(receiver);
  return count == 1 ? 0 : 1;
}
