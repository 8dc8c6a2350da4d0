/* A receiver that misses messages and catches up by a snapshot. docs/resynchronise.md explains it.
 *
 * The owner of a table of circuits announces every change, one message each. The follower keeps a
 * copy. It is restarted while announcements are on their way, so some are lost. It learns of that,
 * asks for a snapshot, and has the same table as the owner again.
 *
 *   resynchronise
 */
#include <stdio.h>
#include <string.h>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_sync.h"
#include "zarnimesh/node.h"

enum { owner_address = 1, follower_address = 2, circuits = 64 };

static mesh_node* owner;
static mesh_node* follower;
static l2vpn_sync_vpls_ac owned[circuits];
static l2vpn_sync_vpls_ac copied[circuits];

/* Changes a circuit and announces it. */
static uint32_t change(unsigned circuit, uint32_t value) {
  owned[circuit].f0 = circuit;
  owned[circuit].f1 = value;
  mesh_node_attach(owner);
  return l2vpn_sync_vpls_ac__sendmsg(follower_address, &owned[circuit], 1);
}

/* The owner answers a query with the whole table: one call, so it arrives whole or not at all. */
static void at_owner(const mesh_received* received, void* user) {
  (void)user;
  if (received->msg_id == l2vpn_cfg_query_dfx_key__msg_id) {
    mesh_node_attach(owner);
    l2vpn_sync_vpls_ac__sendbatch(received->source, owned, circuits, 0);
  }
}

/* After a gap the follower asks once. Announcements that follow the gap are newer than its copy,
 * and older than the snapshot or part of it: calls of one sender arrive in order. */
static void at_follower(const mesh_received* received, void* user) {
  unsigned* const gaps = user;
  if (received->after_gap && received->msg_id == l2vpn_sync_vpls_ac__msg_id) {
    l2vpn_cfg_query_dfx_key query;
    memset(&query, 0, sizeof query);
    ++*gaps;
    mesh_node_attach(follower);
    l2vpn_cfg_query_dfx_key__sendmsg(received->source, &query, 1);
  }
  if (received->msg_id == l2vpn_sync_vpls_ac__msg_id) {
    const l2vpn_sync_vpls_ac* const circuit = received->record;
    copied[circuit->f0 % circuits] = *circuit;
  }
}

static void exchange(unsigned* gaps) {
  while (mesh_node_receive(follower, 200, at_follower, gaps) > 0 ||
         mesh_node_receive(owner, 200, at_owner, NULL) > 0) {
  }
}

static int restart_follower(const mesh_node_options* options) {
  mesh_node_close(follower);
  return mesh_node_open(follower_address, options, &follower) == MESH_OK;
}

int main(void) {
  unsigned gaps = 0;
  mesh_node_options options;
  mesh_node_options_default(&options);
  options.transport = MESH_TRANSPORT_INPROC; /* both are in this process */
  if (mesh_node_open(owner_address, &options, &owner) != MESH_OK ||
      mesh_node_open(follower_address, &options, &follower) != MESH_OK ||
      l2vpn_cfg_recv_init() != 0 || l2vpn_cfg_send_init() != 0 || l2vpn_sync_recv_init() != 0 ||
      l2vpn_sync_send_init() != 0) {
    fprintf(stderr, "resynchronise: %s\n", mesh_node_last_error());
    return 1;
  }
  for (unsigned circuit = 0; circuit < circuits; ++circuit) {
    change(circuit, 1);
  }
  exchange(&gaps);
  printf("in step: %s\n", memcmp(owned, copied, sizeof owned) == 0 ? "yes" : "no");

  for (unsigned circuit = 0; circuit < circuits; ++circuit) {
    change(circuit, 2);
  }
  if (!restart_follower(&options)) {
    fprintf(stderr, "resynchronise: %s\n", mesh_node_last_error());
    return 1;
  }
  printf("after the restart: %s\n", memcmp(owned, copied, sizeof owned) == 0 ? "yes" : "no");

  change(0, 3);
  exchange(&gaps);
  const int in_step = memcmp(owned, copied, sizeof owned) == 0;
  mesh_node_statistics statistics;
  mesh_node_stats(owner, &statistics);
  printf("%u gap, %u calls lost, in step again: %s\n", gaps, (unsigned)statistics.undelivered_calls,
         in_step ? "yes" : "no");
  mesh_node_close(owner);
  mesh_node_close(follower);
  return in_step && gaps == 1 ? 0 : 1;
}
