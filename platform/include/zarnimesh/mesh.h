/* The messaging middleware's interface: sends encoded tables, and registers the functions that
 * decode received tables.
 *
 * Every function returns 0 on success, otherwise a nonzero code of the middleware. All are
 * thread-safe. */
#ifndef ZARNIMESH_MESH_H
#define ZARNIMESH_MESH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One encoded table to send: 16 bytes, in the host's byte order. */
typedef struct mesh_msg_desc {
  uint64_t data;   /* address of the table's first byte; read during the call only */
  uint32_t msg_id; /* identifier of the message type */
  uint32_t length; /* bytes of the table */
} mesh_msg_desc;

/* Sends `count` tables to the node `destination` as one message: the receiver gets all or none. The
 * tables are copied before the call returns. A `count` of 0 sends a message without tables;
 * `descriptors` may then be null. */
uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count);

/* As MESH_SendMsg. The receiver gets `extra` with every record. */
uint32_t MESH_SendToMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                        uint64_t extra);

/* Decodes the `length` bytes at `data` (of any alignment) into `record`. Returns the record's size
 * in bytes. The record owns what this allocates until the release hook frees it. */
typedef uint32_t (*mesh_unpack_hook)(const uint8_t* data, uint32_t length, void* record);

/* Frees what decoding allocated inside `record`, but not the record itself. */
typedef void (*mesh_free_hook)(void* record);

/* Registers both functions of the message type `msg_id`. Neither may be null. A second registration
 * of the same identifier replaces the first. */
uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, mesh_unpack_hook unpack, mesh_free_hook release);

/* Frees what a sending service keeps between calls. */
typedef void (*mesh_clean_hook)(void);

/* Registers a function that the middleware calls at shutdown. It must not be null. */
uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook clean);

#ifdef __cplusplus
}
#endif

#endif
