/* Sends statistics from one machine to another over tcp.
 *
 *   two_machines receive BOOK COUNT
 *   two_machines send BOOK COUNT
 *
 * BOOK is the file of an address book. The receiver has address 2, the sender address 1.
 *
 * With keys the machines connect directly, authenticated and encrypted. On each machine
 * ZARNIMESH_KEYS names its key file, which zarnimesh-keys makes and which holds the other machine's
 * public key. Both books say
 *
 *   2  tcp://ADDRESS-OF-THE-RECEIVER:4002
 *
 * Without keys a node receives only at loopback addresses, and a tunnel connects the machines. Both
 * books say
 *
 *   2  tcp://127.0.0.1:4002
 *
 * and on the sender
 *
 *   ssh -N -L 4002:127.0.0.1:4002 receiver &
 *   two_machines send BOOK 1000
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "mesh_l2vpn/l2vpn_stat.h"
#include "zarnimesh/node.h"

enum { sender_address = 1, receiver_address = 2, patience_ms = 20000 };

static void count_up(const mesh_received* received, void* user) {
  if (received->msg_id == l2vpn_stat_pw_stat__msg_id) {
    ++*(unsigned long*)user;
  }
}

static int receive(mesh_node* node, unsigned long expected) {
  unsigned long count = 0;
  mesh_node_statistics statistics = {0};
  if (l2vpn_stat_recv_init() != 0) {
    return 1;
  }
  printf("listening\n");
  fflush(stdout);
  while (count < expected && mesh_node_receive(node, patience_ms, count_up, &count) > 0) {
  }
  mesh_node_stats(node, &statistics);
  printf("%lu of %lu arrived, %" PRIu64 " calls lost\n", count, expected, statistics.lost_calls);
  return count == expected ? 0 : 1;
}

static int send(unsigned long count) {
  l2vpn_stat_pw_stat statistics = {0};
  unsigned long index;
  if (l2vpn_stat_send_init() != 0) {
    return 1;
  }
  for (index = 0; index < count; ++index) {
    uint32_t result;
    statistics.f0 = (uint32_t)index;
    result = l2vpn_stat_pw_stat__sendmsg(receiver_address, &statistics, 1);
    if (result != 0) {
      fprintf(stderr, "two_machines: %s (%s)\n", mesh_result_text(result), mesh_node_last_error());
      return 1;
    }
  }
  printf("%lu sent\n", count);
  return 0;
}

int main(int argc, char** argv) {
  static char book[4096];
  const int receives = argc == 4 && strcmp(argv[1], "receive") == 0;
  mesh_node_options options;
  mesh_node* node = NULL;
  FILE* file;
  int result;
  if (argc != 4 || (!receives && strcmp(argv[1], "send") != 0) ||
      (file = fopen(argv[2], "r")) == NULL) {
    fprintf(stderr, "usage: two_machines receive|send BOOK COUNT\n");
    return 2;
  }
  book[fread(book, 1, sizeof book - 1, file)] = '\0';
  fclose(file);

  mesh_node_options_default(&options);
  options.address_book = book;
  if (mesh_node_open(receives ? receiver_address : sender_address, &options, &node) != MESH_OK) {
    fprintf(stderr, "two_machines: %s\n", mesh_node_last_error());
    return 1;
  }
  result = receives ? receive(node, strtoul(argv[3], NULL, 10)) : send(strtoul(argv[3], NULL, 10));
  mesh_node_close(node); /* delivers what was sent */
  return result;
}
