/* Nodes of the workstation's middleware: who sends, who receives, and over what.
 *
 * 1. A node has a 32-bit address and an endpoint at which it receives. A process opens one or more;
 *    MESH_SendMsg and MESH_SendToMsg send in the name of the calling thread's node (see
 *    mesh_node_attach), or of the oldest open one.
 * 2. Endpoints are found without any configuration: a Unix socket in a directory private to the
 *    user. An address book may name others, one per line: an address (decimal, or hexadecimal with
 *    0x) and an endpoint (ipc://path, inproc://name or tcp://host:port); # starts a comment.
 *    A tcp endpoint to receive at must be a loopback one with its port (127.x.y.z, [::1] or
 *    localhost) unless the node has keys.
 * 3. Functions return a mesh_result. mesh_node_last_error tells more about the latest failure.
 * 4. Any function may be called from any thread, with two limits: one thread at a time receives
 *    on a node, and a node is not closed while a thread receives on it; the second comer gets
 *    MESH_BUSY.
 * 5. A forked child must not use its parent's nodes, nor open one while it has them: every
 *    function returns MESH_NOT_OPEN to it. It may exec.
 * 6. Hooks, handlers and callbacks must not throw.
 * 7. A node with a key file speaks CURVE over tcp, and over tcp alone: it sends only to nodes whose
 *    public keys are in the file, and lets only those connect, each in its own name. */
#ifndef ZARNIMESH_NODE_H
#define ZARNIMESH_NODE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What the middleware's functions return, the MESH_ ones of zarnimesh/mesh.h among them. */
typedef enum mesh_result {
  MESH_OK = 0,
  MESH_NO_DESTINATION = 1, /* nobody answered at the endpoint within the connect timeout */
  MESH_QUEUE_FULL = 2,     /* the receiver left no room within the send timeout */
  MESH_NOT_OPEN = 3,       /* there is no such node, or none to send from */
  MESH_REFUSED = 4,        /* the message: null data with a length, or over a limit */
  MESH_ADDRESS_IN_USE = 5, /* a live node receives there already */
  MESH_OUT_OF_MEMORY = 6,
  MESH_SYSTEM_ERROR = 7,      /* the system or the transport failed; see the text */
  MESH_BAD_ARGUMENT = 8,      /* a null pointer or a value out of range */
  MESH_BUSY = 9,              /* another thread is receiving on the node */
  MESH_BAD_CONFIGURATION = 10 /* address book, private directory, endpoint or keys; see the text */
} mesh_result;

/* Where addresses that the address book does not name are found. */
typedef enum mesh_transport {
  MESH_TRANSPORT_IPC = 0,   /* other processes of this user on this machine */
  MESH_TRANSPORT_INPROC = 1 /* other threads of this process */
} mesh_transport;

/* Told of a received table whose identifier has no hook. `data` is valid during the call only. */
typedef void (*mesh_unknown_hook)(uint32_t source, uint32_t msg_id, const uint8_t* data,
                                  uint32_t length, void* user);

/* Filled with the defaults by mesh_node_options_default; texts are read during mesh_node_open only.
 * Every number is taken as it stands: a timeout of 0 does not wait, so that a connect timeout of 0
 * finds only nodes of the same process, over inproc. */
typedef struct mesh_node_options {
  uint32_t transport;       /* a mesh_transport; MESH_TRANSPORT_IPC */
  const char* address_book; /* the book's text; null: the file $ZARNIMESH_ADDRESS_BOOK if set */
  const char* runtime_directory; /* null: $ZARNIMESH_RUNTIME_DIR, else $XDG_RUNTIME_DIR/zarnimesh,
                                    else /tmp/zarnimesh-<uid> */
  const char* key_file;          /* null: the file $ZARNIMESH_KEYS if set; see 7 above */
  uint32_t send_queue_calls;     /* 64: calls held for each destination, at least 1 */
  uint32_t receive_queue_calls;  /* 64: calls held from each sender, at least 1 */
  uint32_t connect_timeout_ms;   /* 2000: how long a send waits for a receiver to be there */
  uint32_t send_timeout_ms;      /* 5000: how long a send waits for room, the lock included */
  uint32_t linger_ms;            /* 2000: how long closing waits to hand over what was sent */
  uint32_t payload_limit;        /* 67108864: bytes of one call's tables, both ways; at least 1.
                                    Nodes that talk need the same limit. A call's count of tables
                                    is limited to an eighth of it, at least 8 */
  mesh_unknown_hook unknown;     /* null: unknown identifiers are only counted */
  void* unknown_user;            /* handed to `unknown` */
} mesh_node_options;

/* Since the node was opened; all counts wrap at 2^64. */
typedef struct mesh_node_statistics {
  uint64_t sent_calls;
  uint64_t sent_records;
  uint64_t sent_bytes; /* of tables */

  uint64_t failed_no_destination; /* calls that ended in that result, and so on */
  uint64_t failed_queue_full;
  uint64_t failed_refused;
  uint64_t failed_other;

  uint64_t received_calls; /* well-formed ones */
  uint64_t received_records;
  uint64_t received_bytes;
  uint64_t malformed;           /* messages dropped because they were not well-formed, came in
                                   another node's name, or (over tcp) had no end */
  uint64_t unknown_identifiers; /* tables without a hook; not among received_records */

  /* From the numbers that each sending node gives its calls to this node: */
  uint64_t lost_calls;          /* missing between two that arrived */
  uint64_t missed_before_first; /* sent before the first that arrived */
  uint64_t duplicate_calls;     /* sent twice or overtaken; delivered all the same */
} mesh_node_statistics;

/* One received record, valid during the handler's call only. The record lies in an area of 1 MiB
 * that starts on a page, is zero before decoding and ends at a page that traps: message types with
 * larger records cannot be received. */
typedef struct mesh_received {
  uint32_t source; /* address of the node that sent it */
  uint32_t msg_id;
  void* record;         /* as the unpack hook filled it; the free hook is called afterwards */
  uint32_t record_size; /* as the unpack hook returned it, in bytes */
  uint32_t table_length;
  const uint8_t* table; /* the encoded table, of any alignment */
  uint64_t extra;       /* as passed to MESH_SendToMsg, otherwise 0 */
} mesh_received;

typedef void (*mesh_record_handler)(const mesh_received* received, void* user);

typedef struct mesh_node mesh_node;

/* Fills `options` with the defaults. */
void mesh_node_options_default(mesh_node_options* options);

/* Opens a node that receives at `address`. `options` may be null for the defaults. On success
 * `*out` is a node that the caller closes with mesh_node_close; otherwise it is null. */
mesh_result mesh_node_open(uint32_t address, const mesh_node_options* options, mesh_node** out);

/* Closes the node, having waited up to its linger time for what was sent to be handed over (when
 * other nodes stay open that goes on behind the scenes). Sends in progress end in MESH_NOT_OPEN.
 * Closing the last node calls every registered clean hook once. */
mesh_result mesh_node_close(mesh_node* node);

/* Makes `node` the one in whose name the calling thread sends. Null goes back to the oldest open
 * node. Once an attached node is closed, the thread's sends end in MESH_NOT_OPEN until it attaches
 * another. */
mesh_result mesh_node_attach(mesh_node* node);

/* Waits up to `timeout_ms` (negative: without end) for one call's message and hands its records to
 * `handler` in the order they were sent. Returns how many were delivered, or the negative of a
 * mesh_result. 0 means that the time passed, a signal arrived, or the message had nothing to
 * deliver. `handler` may send; it may be null, which decodes and releases without handing over. */
int64_t mesh_node_receive(mesh_node* node, int32_t timeout_ms, mesh_record_handler handler,
                          void* user);

/* Copies the node's counters to `*out`. They are read one by one while other threads may count. */
mesh_result mesh_node_stats(mesh_node* node, mesh_node_statistics* out);

/* A short English text for a result; never null. */
const char* mesh_result_text(uint32_t result);

/* What went wrong in the calling thread's latest failed call; never null, empty at first, valid
 * until the thread's next call. */
const char* mesh_node_last_error(void);

#ifdef __cplusplus
}
#endif

#endif
