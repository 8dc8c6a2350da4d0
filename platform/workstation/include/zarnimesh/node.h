/* Nodes of the workstation's middleware.
 *
 * 1. A node has a 32-bit address and receives at an endpoint. A process opens one or more nodes.
 *    MESH_SendMsg and MESH_SendToMsg send from the calling thread's node (see mesh_node_attach), or
 *    else from the oldest open node.
 * 2. The default endpoint needs no configuration: a Unix socket in the user's private directory. An
 *    address book can name other endpoints. Each line has an address (decimal, or hexadecimal with
 *    0x) and an endpoint (ipc://path, inproc://name or tcp://host:port). A # starts a comment.
 *    Without keys a node can receive over tcp only at a loopback address (127.x.y.z, [::1] or
 *    localhost).
 * 3. Functions return a mesh_result. mesh_node_last_error describes the latest failure.
 * 4. Functions are thread-safe, with two limits: only one thread at a time can receive on a node,
 *    and a node cannot be closed while a thread receives on it. The second thread gets MESH_BUSY.
 * 5. A forked child must not use its parent's nodes or open a node: every function returns
 *    MESH_NOT_OPEN. It may call exec.
 * 6. Hooks and callbacks must not throw. A handler may throw, or leave mesh_node_receive by
 *    longjmp: the node's next receive releases its record and goes on with the rest of the call.
 *    Until then a send from deeper in the stack may count as one of the handler, and not wait for
 *    room.
 * 7. A node with a key file uses CURVE over tcp (not over ipc or inproc). It sends only to nodes
 *    whose public keys are in the file, and accepts connections only from them. Each node can send
 *    only under its own address.
 * 8. MESH_OK means that a call is on its way: the receiver confirms it when its handler has seen
 *    it. A sender has at most send_queue_calls and queue_bytes unconfirmed at a destination, and
 *    no more than the receiver has room for. Calls that go missing are counted: see
 *    undelivered_calls and lost_calls. A call is never delivered twice.
 * 9. A thread of the library looks after all nodes every 20 ms: it takes what arrives at nodes that
 *    are not receiving, answers senders, and makes the calls of mesh_peer_hook.
 * 10. A tcp connection whose peer sends an endless message is ended. Over ipc such a peer, a
 *     program of the same user, can make the receiver take 64 bytes for each 2 bytes that it sends.
 *     They are freed when the message or the connection ends. */
#ifndef ZARNIMESH_NODE_H
#define ZARNIMESH_NODE_H

#include <stdint.h>

#include "zarnimesh/mesh.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The results of all functions of this header and of zarnimesh/mesh.h. */
typedef enum mesh_result {
  MESH_OK = 0,
  MESH_NO_DESTINATION = 1, /* no receiver answered within the connect timeout */
  MESH_QUEUE_FULL = 2,     /* the queue stayed full for the send timeout */
  MESH_NOT_OPEN = 3,       /* no such node, or no open node to send from */
  MESH_REFUSED = 4,        /* bad message: null data with a length, or above a limit */
  MESH_ADDRESS_IN_USE = 5, /* another node receives there */
  MESH_OUT_OF_MEMORY = 6,
  MESH_SYSTEM_ERROR = 7,       /* the system or ZeroMQ failed; see the error text */
  MESH_BAD_ARGUMENT = 8,       /* null pointer, or value out of range */
  MESH_BUSY = 9,               /* another thread is receiving on the node */
  MESH_BAD_CONFIGURATION = 10, /* address book, directory, endpoint or keys; see the error text */
  MESH_UNDELIVERED = 11        /* mesh_node_close: not every call is known to have arrived */
} mesh_result;

/* The transport of addresses that are not in the address book. */
typedef enum mesh_transport {
  MESH_TRANSPORT_IPC = 0,   /* between processes of this user on this machine */
  MESH_TRANSPORT_INPROC = 1 /* between threads of this process */
} mesh_transport;

/* Called for a received table without a hook. `data` is valid during the call only. */
typedef void (*mesh_unknown_hook)(uint32_t source, uint32_t msg_id, const uint8_t* data,
                                  uint32_t length, void* user);

typedef enum mesh_peer_change {
  MESH_PEER_UP = 0,         /* a first call or answer of the peer, or a connection to it */
  MESH_PEER_DOWN = 1,       /* it closed its node, or a connection to it ended */
  MESH_PEER_RESTARTED = 2,  /* its address is used by a new node. What the old one had is gone */
  MESH_PEER_GAP = 3,        /* calls `from` to `to` did not arrive here */
  MESH_PEER_HIGH_WATER = 4, /* three quarters of the calls to it that may be unconfirmed, are */
  MESH_PEER_LOW_WATER = 5   /* after high water: at most a quarter is */
} mesh_peer_change;

typedef struct mesh_peer_event {
  uint32_t change;  /* a mesh_peer_change */
  uint32_t address; /* of the peer */
  uint64_t from;    /* sequence numbers; MESH_PEER_GAP only */
  uint64_t to;
} mesh_peer_event;

/* Called from the library's own thread, one call at a time; from mesh_node_close for the last
 * events. It may send, but not close a node. As in a handler, a send does not wait for room. */
typedef void (*mesh_peer_hook)(const mesh_peer_event* event, void* user);

/* mesh_node_options_default fills in the defaults (given below). mesh_node_open reads the texts and
 * keeps no pointer to them. A timeout of 0 does not wait: with a connect timeout of 0 the first
 * call to a node of another process fails, but connecting goes on. */
typedef struct mesh_node_options {
  uint32_t transport;       /* a mesh_transport; MESH_TRANSPORT_IPC */
  const char* address_book; /* the book's text; null: the file $ZARNIMESH_ADDRESS_BOOK, if set */
  const char* runtime_directory; /* null: $ZARNIMESH_RUNTIME_DIR, else $XDG_RUNTIME_DIR/zarnimesh,
                                    else /tmp/zarnimesh-<uid> */
  const char* key_file;          /* null: the file $ZARNIMESH_KEYS, if set; see 7 above */
  uint32_t send_queue_calls;     /* 1024: unconfirmed calls to each destination, from 1 to 2^20 */
  uint32_t receive_queue_calls;  /* 1024: undelivered calls of each sender, from 1 to 2^20 */
  uint32_t connect_timeout_ms;   /* 2000: how long a send waits for a receiver. After a failure it
                                    waits only if there is a sign of one */
  uint32_t send_timeout_ms;      /* 5000: how long a send waits for room. In a handler or peer hook
                                    it does not wait: two nodes that answer each other would wait
                                    for ever */
  uint32_t linger_ms;            /* 2000: how long closing waits until sent calls have arrived */
  uint32_t payload_limit;        /* 67108864: bytes of one call's tables, sent or received; at
                                    least 1. Nodes that talk need the same limit. A call may have
                                    payload_limit / 8 tables, but at least 8 */
  mesh_unknown_hook unknown;     /* null: unknown identifiers are counted only */
  void* unknown_user;            /* passed to `unknown` */
  uint32_t queue_bytes;          /* 67108864: bytes of tables in each of these queues. A single call
                                    may exceed it */
  uint32_t heartbeat_ms; /* 5000: a receiver over tcp or ipc that has not answered for three of
                            these times counts as gone until it answers; a tcp connection ends
                            when the sender's machine has not. 0: never */
  uint32_t io_threads;   /* 1: of ZeroMQ, from 1 to 64. The process's first open node decides */
  mesh_peer_hook peer;   /* null: nobody is told */
  void* peer_user;       /* passed to `peer` */
} mesh_node_options;

/* Counted since the node was opened. Counts wrap at 2^64. */
typedef struct mesh_node_statistics {
  uint64_t sent_calls;
  uint64_t sent_records;
  uint64_t sent_bytes; /* of tables */

  uint64_t failed_no_destination; /* calls with this result, and so on */
  uint64_t failed_queue_full;
  uint64_t failed_refused;
  uint64_t failed_other;

  uint64_t received_calls; /* well-formed calls */
  uint64_t received_records;
  uint64_t received_bytes;
  uint64_t malformed;           /* dropped messages: not well-formed, sent under another node's
                                   address, or (over tcp) endless */
  uint64_t unknown_identifiers; /* tables without a hook; not in received_records */

  /* From the sequence numbers of each sender's calls to this node: */
  uint64_t lost_calls;          /* missing. A late call is subtracted when it arrives */
  uint64_t missed_before_first; /* sent before the first received call, and not confirmed by an
                                   earlier node of this address. Falls when its sender hears of a
                                   confirmation late */
  uint64_t duplicate_calls;     /* repeated, and delivered again. Nodes do not repeat calls */

  /* sent_calls = confirmed + undelivered_calls + unconfirmed_calls */
  uint64_t undelivered_calls; /* missing at their receiver, or never confirmed by one that ended */
  uint64_t unconfirmed_calls; /* at this moment */

  uint64_t discarded_calls;     /* not delivered when the node was closed, of senders that had ended
                                   before. The others count them as undelivered */
  uint64_t refused_connections; /* over tcp: without a known key, or not of this protocol */
} mesh_node_statistics;

/* What a node knows of one peer. Calls to it and from it are counted apart. */
typedef struct mesh_peer_statistics {
  uint32_t address;
  uint32_t connected;     /* 1: calls to it find a receiver, as far as is known */
  uint64_t incarnation;   /* of the sender that was heard last; 0 if none was */
  uint64_t last_heard_ms; /* since its latest call or answer; 2^64 - 1 if there was none */

  uint64_t sent_calls;
  uint64_t sent_bytes;
  uint64_t unconfirmed_calls;
  uint64_t most_unconfirmed_calls; /* ever */
  uint64_t undelivered_calls;

  uint64_t received_calls;
  uint64_t received_bytes;
  uint64_t waiting_calls;
  uint64_t most_waiting_calls; /* ever */
  uint64_t lost_calls;
  uint64_t missed_before_first;
} mesh_peer_statistics;

/* One received record, valid during the handler's call only. The record lies in a page-aligned area
 * of 1 MiB, followed by a guard page. The area is zero before decoding. Larger records cannot be
 * received. */
typedef struct mesh_received {
  uint32_t source; /* address of the node that sent it */
  uint32_t msg_id;
  void* record;         /* filled by the unpack hook; the free hook is called afterwards */
  uint32_t record_size; /* in bytes, as returned by the unpack hook */
  uint32_t table_length;
  const uint8_t* table; /* the encoded table; any alignment */
  uint64_t extra;       /* from MESH_SendToMsg, otherwise 0 */
  uint64_t incarnation; /* random number of the sending node, new at each open */
  uint64_t sequence;    /* of the call, from 1, for each incarnation and destination */
  uint32_t after_gap;   /* 1: calls before this one did not arrive; see docs/resynchronise.md */
} mesh_received;

typedef void (*mesh_record_handler)(const mesh_received* received, void* user);

typedef struct mesh_node mesh_node;

/* Fills `options` with the defaults. */
void mesh_node_options_default(mesh_node_options* options);

/* Opens a node that receives at `address`. Null `options` mean the defaults. On success the caller
 * closes `*out` with mesh_node_close. On failure `*out` is null. */
mesh_result mesh_node_open(uint32_t address, const mesh_node_options* options, mesh_node** out);

/* Closes the node. Waits up to its linger time until connected receivers say that all calls have
 * arrived, and up to 100 ms for a connection that broke. Returns MESH_UNDELIVERED if some are
 * missing or not confirmed then; the error text tells how many. The node is closed in any case.
 * Sends in progress return MESH_NOT_OPEN. Closing the last node calls every registered clean hook
 * once. */
mesh_result mesh_node_close(mesh_node* node);

/* As mesh_node_close. Stores the node's final counters in `*last`, if it is not null. */
mesh_result mesh_node_close_counted(mesh_node* node, mesh_node_statistics* last);

/* Makes the calling thread send from `node`. Null selects the oldest open node again. After an
 * attached node is closed, the thread's sends return MESH_NOT_OPEN until it attaches another. */
mesh_result mesh_node_attach(mesh_node* node);

/* Waits up to `timeout_ms` (negative: forever) for one message and passes its records to `handler`
 * in order. Returns the number of records, or a negated mesh_result. 0 means a timeout, a signal,
 * or a message without records. `handler` may send. With a null `handler` records are decoded and
 * released only. */
int64_t mesh_node_receive(mesh_node* node, int32_t timeout_ms, mesh_record_handler handler,
                          void* user);

/* Sends one call from `node`, as MESH_SendToMsg does, and waits at most `timeout_ms` for a receiver
 * and for room: 0 does not wait, a negative time stands for the node's options. */
mesh_result mesh_node_send(mesh_node* node, uint32_t destination, const mesh_msg_desc* descriptors,
                           uint32_t count, uint64_t extra, int32_t timeout_ms);

/* As mesh_node_receive, on the first of `count` nodes that has a message. Nodes take turns. */
int64_t mesh_node_receive_any(mesh_node* const* nodes, uint32_t count, int32_t timeout_ms,
                              mesh_record_handler handler, void* user);

/* The tables of one message, as they were sent. */
typedef struct mesh_tables {
  const mesh_received* received; /* `count` of them, in order; each has a null `record` */
  uint64_t count;
  void* owner; /* of the memory; the library's */
} mesh_tables;

/* As mesh_node_receive, but decodes nothing and calls no hook: `*out` gets the tables of one
 * message, also those of unknown identifiers. Returns their number, or a negated mesh_result. The
 * caller frees `*out` with mesh_node_free_tables. After MESH_OUT_OF_MEMORY it holds the tables
 * before the one that found no memory; those behind it come with the next receive. */
int64_t mesh_node_receive_tables(mesh_node* node, int32_t timeout_ms, mesh_tables* out);

/* Frees what mesh_node_receive_tables handed out, and empties `*tables`. */
void mesh_node_free_tables(mesh_tables* tables);

/* A descriptor for poll(), owned by the node: it becomes readable when something may have arrived.
 * It tells of changes only: call mesh_node_receive with a timeout of 0 until `pending`, if not
 * null, is 0, and then wait. Negated mesh_result on failure. */
int32_t mesh_node_descriptor(mesh_node* node, uint32_t* pending);

/* Fills up to `capacity` peers in the order of their addresses and stores their number, which may
 * be larger, in `*count`. */
mesh_result mesh_node_peers(mesh_node* node, mesh_peer_statistics* out, uint32_t capacity,
                            uint32_t* count);

/* Copies the node's counters to `*out`. They are not one snapshot: other threads may count
 * meanwhile. */
mesh_result mesh_node_stats(mesh_node* node, mesh_node_statistics* out);

/* Returns a short English text for a result, never null. */
const char* mesh_result_text(uint32_t result);

/* Describes the calling thread's latest failure. Never null; empty before the first failure. Valid
 * until the thread's next call. */
const char* mesh_node_last_error(void);

#ifdef __cplusplus
}
#endif

#endif
