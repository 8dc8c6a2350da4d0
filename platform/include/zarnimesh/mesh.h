/* The messaging middleware as its users link against it: sending encoded tables, and registering
 * the functions that decode received ones.
 *
 * Every function returns 0 for success and a nonzero code of the middleware's own otherwise. All
 * may be called from any thread. */
#ifndef ZARNIMESH_MESH_H
#define ZARNIMESH_MESH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One encoded table to send: 16 bytes, in the host's byte order. */
typedef struct mesh_msg_desc {
  uint64_t data;   /* address of the table's first byte; read only during the call */
  uint32_t msg_id; /* identifier of the message type */
  uint32_t length; /* bytes of the table */
} mesh_msg_desc;

/* Sends `count` tables to the node `destination` as one message: the receiver gets all of them or
 * none. The bytes are taken before the call returns. `descriptors` may be null only when `count` is
 * 0, which sends a message without tables. */
uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count);

/* As MESH_SendMsg, with a word that the receiver is handed beside every record. */
uint32_t MESH_SendToMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                        uint64_t extra);

/* Decodes the `length` bytes at `data` (of any alignment) into `record` and returns the record's
 * size in bytes. What it allocates belongs to the record until the release hook is called. */
typedef uint32_t (*mesh_unpack_hook)(const uint8_t* data, uint32_t length, void* record);

/* Releases what decoding allocated inside `record`, never the record itself. */
typedef void (*mesh_free_hook)(void* record);

/* Registers the two functions of the message type `msg_id`; neither may be null. A second
 * registration of an identifier replaces the first. */
uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, mesh_unpack_hook unpack, mesh_free_hook release);

/* Releases what a sending service keeps between calls. */
typedef void (*mesh_clean_hook)(void);

/* Registers a function that the middleware calls when it shuts down; not null. */
uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook clean);

#ifdef __cplusplus
}
#endif

#endif
