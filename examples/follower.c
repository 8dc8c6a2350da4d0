/* Keeps a copy of another process's table of circuits: a process to test. test_follower.py plays
 * the owner of the table, and docs/test-your-feature.md explains it.
 *
 *   follower
 *
 * The follower (node 2) asks the owner (node 1) for its table, with the question's number in
 * `extra`. The owner answers in one call with the same number, and later announces changes without
 * a number. If no answer comes within a second, or something is damaged or missing, the follower
 * asks again. It waits twice as long for each further answer.
 *
 * Anybody may ask the follower for its copy in the same way. It ends with SIGTERM.
 */
#include <mesh_l2vpn/inspect.h>
#include <signal.h>
#include <stdbool.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_sync.h"
#include "zarnimesh/node.h"

enum { owner_address = 1, follower_address = 2, most_circuits = 1024 };

static volatile sig_atomic_t stopped;

static l2vpn_sync_vpls_ac circuits[most_circuits];
static uint32_t count;

static uint64_t question; /* the number of the latest one */
static int64_t asked_at;
static int64_t patience_ms = 1000;
static bool is_in_step;
static uint64_t answer; /* the call that answers the question; 0: none */

static void stop(int number) {
  (void)number;
  stopped = 1;
}

static int64_t now_ms(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (int64_t)now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

/* If this fails, the next question follows after the same time. */
static void ask(void) {
  l2vpn_cfg_query_dfx_key query;
  memset(&query, 0, sizeof query);
  ++question;
  is_in_step = false;
  answer = 0;
  asked_at = now_ms();
  l2vpn_cfg_query_dfx_key__sendtomsg(owner_address, &query, 1, question);
}

static void apply(const l2vpn_sync_vpls_ac* circuit) {
  uint32_t at = 0;
  while (at < count && circuits[at].f0 != circuit->f0) {
    ++at;
  }
  if (at < most_circuits) {
    circuits[at] = *circuit;
    count += at == count;
  }
}

/* An answer replaces the copy. A late one, with an older number, must not. */
static void take(const mesh_received* received) {
  const bool is_answer = received->extra != 0;
  if (is_answer && received->extra != question) {
    return;
  }
  if (is_answer && answer != received->sequence) {
    answer = received->sequence;
    count = 0;
    is_in_step = true;
    patience_ms = 1000;
  }
  apply(received->record);
}

/* __unpack does not say whether it accepted a message: a record of zeros may be a damaged one. */
static bool is_damaged(const mesh_received* received) {
  return mesh_l2vpn_verify(mesh_l2vpn_message_by_id(received->msg_id), received->table,
                           received->table_length, NULL) != MESH_L2VPN_ACCEPTED;
}

static void handle(const mesh_received* received, void* user) {
  (void)user;
  if (is_damaged(received) || (received->after_gap && is_in_step)) {
    ask();
  } else if (received->msg_id == l2vpn_sync_vpls_ac__msg_id) {
    take(received);
  } else if (received->msg_id == l2vpn_cfg_query_dfx_key__msg_id && is_in_step && count > 0) {
    l2vpn_sync_vpls_ac__sendtomsg(received->source, circuits, count, received->extra);
  }
}

int main(void) {
  mesh_node* node = NULL;
  signal(SIGTERM, stop);
  if (mesh_node_open(follower_address, NULL, &node) != MESH_OK || l2vpn_cfg_recv_init() != 0 ||
      l2vpn_cfg_send_init() != 0 || l2vpn_sync_recv_init() != 0 || l2vpn_sync_send_init() != 0) {
    fprintf(stderr, "follower: %s\n", mesh_node_last_error());
    return 1;
  }
  ask();
  while (!stopped) {
    const int64_t received = mesh_node_receive(node, 50, handle, NULL);
    if (received < 0) {
      fprintf(stderr, "follower: %s\n", mesh_node_last_error());
      return 1;
    }
    if (!is_in_step && now_ms() - asked_at >= patience_ms) {
      patience_ms *= 2;
      ask();
    }
  }
  return mesh_node_close(node) == MESH_OK ? 0 : 1;
}
