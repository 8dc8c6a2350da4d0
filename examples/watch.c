/* Receives what announce.cpp sends and proves that it arrived.
 *
 *   watch [RECORDS]    RECORDS: how many streamed records to wait for, 1000000 by default
 *
 * To receive your own messages: open a node, call the services' _recv_init once, then
 * mesh_node_receive in a loop with a handler that looks at msg_id.
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "ddm/osal_workstation.h"
#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"
#include "samples.h"
#include "zarnimesh/node.h"

/* If no record arrives for this long, the sender is considered gone. */
enum { patience_s = 20 };

/* The number of records in the tour: an update, a batch of four, statistics, a key, a delete. */
enum { messages_shown = 8 };

struct watcher {
  uint64_t expected;
  uint64_t streamed;
  uint64_t damaged;
  uint64_t batch_records;
  size_t shown;
  size_t samples;
  struct timespec first;
  struct timespec last;
  bool is_terminal;
};

static double seconds_between(const struct timespec* from, const struct timespec* to) {
  return (double)(to->tv_sec - from->tv_sec) + (double)(to->tv_nsec - from->tv_nsec) / 1e9;
}

static void say(const char* text) {
  printf("   watch | %s\n", text);
}

static void show_bytes(const char* field, const uint8_t* bytes, size_t count) {
  printf("   watch |     %-4s", field);
  for (size_t at = 0; at < count; ++at) {
    printf(" %02x", bytes[at]);
  }
  printf("\n");
}

static void show_number(const char* field, uint64_t value) {
  printf("   watch |     %-4s %" PRIu64 "\n", field, value);
}

static void show_circuit(const l2vpn_sync_vpls_ac* circuit) {
  show_number("f0", circuit->f0);
  show_number("f1", circuit->f1);
  show_number("f2", circuit->f2);
  show_number("f3", circuit->f3);
  show_number("f4", circuit->f4);
  show_number("f5", circuit->f5);
  show_number("f6", circuit->f6);
  show_number("f7", circuit->f7);
  show_bytes("f8", circuit->f8, sizeof circuit->f8);
  show_bytes("f9", circuit->f9, sizeof circuit->f9);
}

/* One message of each kind that the tour shows. */
static void show(struct watcher* watcher, const mesh_received* received) {
  ++watcher->shown;
  if (received->msg_id == l2vpn_sync_vpls_ac_update__msg_id) {
    const l2vpn_sync_vpls_ac_update* const update = received->record;
    printf("   watch | l2vpn_sync_vpls_ac_update from node %u: %u bytes on the wire\n",
           received->source, received->table_length);
    printf("   watch |   f0 %u, and in f1 the attachment circuit\n", update->f0);
    show_circuit(&update->f1);
  } else if (received->msg_id == l2vpn_sync_vpls_ac__msg_id) {
    const l2vpn_sync_vpls_ac* const circuit = received->record;
    ++watcher->batch_records;
    printf("   watch | l2vpn_sync_vpls_ac, number %" PRIu64 " of its batch: f0 %u, f6 %u\n",
           watcher->batch_records, circuit->f0, circuit->f6);
  } else if (received->msg_id == l2vpn_stat_pw_stat__msg_id) {
    const l2vpn_stat_pw_stat* const statistics = received->record;
    printf("   watch | l2vpn_stat_pw_stat of pseudowire %u: %" PRIu64 " packets, %" PRIu64
           " bytes\n",
           statistics->f0, statistics->f5, statistics->f6);
  } else if (received->msg_id == dbginfo_key_l2vpn__msg_id) {
    const dbginfo_key_l2vpn* const key = received->record;
    printf("   watch | dbginfo_key_l2vpn: f0 %u, f3 holds %u bytes: \"%.*s\"\n", key->f0,
           key->f3_len, (int)key->f3_len, (const char*)key->f3);
  } else if (received->msg_id == l2vpn_sync_vpls_ac_delete__msg_id) {
    const l2vpn_sync_vpls_ac_delete* const gone = received->record;
    printf("   watch | l2vpn_sync_vpls_ac_delete: circuit %u is gone\n", gone->f1.f0);
  } else {
    ++watcher->damaged;
  }
}

/* One message of every type. */
static void check_sample(struct watcher* watcher, const mesh_received* received) {
  const sample_message* const message = sample_find(received->msg_id);
  if (message == NULL || received->record_size != message->record_size ||
      !sample_is_equal(message, received->record)) {
    ++watcher->damaged;
    printf("   watch | %s arrived damaged\n", message == NULL ? "something" : message->name);
    return;
  }
  if (++watcher->samples == sample_message_count) {
    printf("   watch | one record of each of the %zu message types arrived equal\n",
           sample_message_count);
    fflush(stdout);
  }
}

static void show_progress(const struct watcher* watcher) {
  const uint64_t tenth = watcher->expected / 10 == 0 ? 1 : watcher->expected / 10;
  if (watcher->streamed % tenth != 0) {
    return;
  }
  const int parts = (int)(watcher->streamed * 40 / watcher->expected);
  printf("%s   watch | [%.*s%*s] %" PRIu64 "%s", watcher->is_terminal ? "\r" : "", parts,
         "########################################", 40 - parts, "", watcher->streamed,
         watcher->is_terminal && watcher->streamed < watcher->expected ? "" : "\n");
  fflush(stdout);
}

static void check_streamed(struct watcher* watcher, const mesh_received* received) {
  if (watcher->streamed == 0) {
    clock_gettime(CLOCK_MONOTONIC, &watcher->first);
  }
  if (received->msg_id != l2vpn_sync_vpls_ac__msg_id ||
      !stream_is_equal(received->record, watcher->streamed)) {
    ++watcher->damaged;
  }
  ++watcher->streamed;
  show_progress(watcher);
}

static void handle(const mesh_received* received, void* user) {
  struct watcher* const watcher = user;
  switch (received->extra) {
    case purpose_show:
      show(watcher, received);
      break;
    case purpose_sample:
      check_sample(watcher, received);
      break;
    case purpose_stream:
      check_streamed(watcher, received);
      break;
    default:
      ++watcher->damaged;
  }
  if (received->extra != purpose_stream) {
    fflush(stdout);
  }
}

static bool register_services(void) {
  return l2vpn_cfg_recv_init() == 0 && l2vpn_stat_recv_init() == 0 && l2vpn_sync_recv_init() == 0;
}

static bool report(const struct watcher* watcher, const mesh_node_statistics* statistics) {
  const double seconds =
      watcher->streamed == 0 ? 0 : seconds_between(&watcher->first, &watcher->last);
  const bool complete = watcher->streamed == watcher->expected && watcher->damaged == 0 &&
                        watcher->samples == sample_message_count &&
                        watcher->shown == messages_shown;
  printf("   watch | %" PRIu64 " records in %.2f s, %.2f million a second: %s\n", watcher->streamed,
         seconds, seconds > 0 ? (double)watcher->streamed / seconds / 1e6 : 0,
         complete ? "every one equal and in order" : "NOT what was sent");
  printf("   watch | lost %" PRIu64 ", duplicate %" PRIu64 ", malformed %" PRIu64
         ", unknown %" PRIu64 ", damaged %" PRIu64 "\n",
         statistics->lost_calls + statistics->missed_before_first, statistics->duplicate_calls,
         statistics->malformed, statistics->unknown_identifiers, watcher->damaged);
  return complete && statistics->lost_calls == 0 && statistics->missed_before_first == 0 &&
         statistics->malformed == 0 && statistics->unknown_identifiers == 0 &&
         statistics->duplicate_calls == 0;
}

/* Returns when everything has arrived, or when nothing more arrives. */
static void receive_all(mesh_node* node, struct watcher* watcher) {
  time_t last_delivery = time(NULL);
  while (watcher->streamed < watcher->expected) {
    const int64_t delivered = mesh_node_receive(node, 1000, handle, watcher);
    if (delivered < 0) {
      fprintf(stderr, "watch: %s\n", mesh_node_last_error());
      break;
    }
    if (delivered > 0) {
      last_delivery = time(NULL);
    } else if (time(NULL) - last_delivery > patience_s) {
      fprintf(stderr, "watch: nothing arrived for %d s\n", patience_s);
      break;
    }
  }
  clock_gettime(CLOCK_MONOTONIC, &watcher->last);
}

int main(int argc, char** argv) {
  struct watcher watcher = {.expected = argc > 1 ? strtoull(argv[1], NULL, 10) : 1000000,
                            .is_terminal = isatty(STDOUT_FILENO) != 0};
  mesh_node* node = NULL;
  if (watcher.expected == 0) {
    fprintf(stderr, "watch: RECORDS is a number above 0\n");
    return 2;
  }
  if (mesh_node_open(watcher_address, NULL, &node) != MESH_OK || !register_services()) {
    fprintf(stderr, "watch: %s\n", mesh_node_last_error());
    return 1;
  }
  say("listening");
  fflush(stdout);

  receive_all(node, &watcher);

  mesh_node_statistics statistics = {0};
  mesh_node_stats(node, &statistics);
  const bool complete = report(&watcher, &statistics);
  mesh_node_close(node);
  printf("   watch | memory taken by the codec, by owner:\n");
  const bool clean = ddm_osal_memory_report(stdout) == 0;
  return complete && clean ? EXIT_SUCCESS : EXIT_FAILURE;
}
