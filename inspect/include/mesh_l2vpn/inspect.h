/** @file
 * What a message is and says, for programs that know it only by its name or identifier: whether
 * receivers take its bytes and why not, its record as JSON, every byte explained, its schema.
 *
 * Conventions:
 *
 * 1. Messages. A mesh_l2vpn_message describes one message of the library. It lives for ever.
 * 2. Buffers. `data` and `length` are a message's bytes, in either arrangement. They may be hostile
 *    and need no alignment. Nothing outside of them is read.
 * 3. Results. Functions that return int return 0, or an errno value with a text in
 *    mesh_l2vpn_last_error(), and then hand out nothing:
 *    - EBADMSG: the input has a fault. Receivers reject the bytes, or the JSON does not fit.
 *    - EINVAL: wrong use, as a null pointer, or a form that the message does not have.
 *    - ENOMEM: the call needs more memory than the limit allows, or than there is.
 * 4. Ownership. The caller owns what is handed out and gives it back with mesh_l2vpn_free. Texts
 *    end with a zero. Records are the structs of the services' headers; the caller owns them.
 * 5. Memory. One call takes at most 64 MiB beside its arguments, whatever they ask for.
 *    mesh_l2vpn_set_limit changes this.
 * 6. Threads. Any thread may call any function. The limit and the last error are the thread's own.
 * 7. The process. The library needs neither libmesh_l2vpn nor a middleware, logs nothing, and takes
 *    its memory from malloc, never from DDM_OsalMem*.
 */
#ifndef MESH_L2VPN_INSPECT_H
#define MESH_L2VPN_INSPECT_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define MESH_L2VPN_INSPECT_API __attribute__((visibility("default")))
#else
#define MESH_L2VPN_INSPECT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A message of the library. */
typedef struct mesh_l2vpn_message mesh_l2vpn_message;

/** How many messages there are. */
MESH_L2VPN_INSPECT_API size_t mesh_l2vpn_message_count(void);

/** The message at an index, in the order of names. Null if the index is not below the count. */
MESH_L2VPN_INSPECT_API const mesh_l2vpn_message* mesh_l2vpn_message_at(size_t index);

/** The message with this name or identifier. Null if there is none. */
MESH_L2VPN_INSPECT_API const mesh_l2vpn_message* mesh_l2vpn_message_by_name(const char* name);
MESH_L2VPN_INSPECT_API const mesh_l2vpn_message* mesh_l2vpn_message_by_id(uint32_t id);

/** Name, identifier and sizeof of the record. The message must not be null. */
MESH_L2VPN_INSPECT_API const char* mesh_l2vpn_message_name(const mesh_l2vpn_message* message);
MESH_L2VPN_INSPECT_API uint32_t mesh_l2vpn_message_id(const mesh_l2vpn_message* message);
MESH_L2VPN_INSPECT_API size_t mesh_l2vpn_message_record_size(const mesh_l2vpn_message* message);

/** What receivers do with a message's bytes. */
typedef enum mesh_l2vpn_verdict {
  MESH_L2VPN_ACCEPTED = 0,
  MESH_L2VPN_TOLERATED =
      1, /**< taken, though the record within an _update or _delete is at fault */
  MESH_L2VPN_REJECTED = 2
} mesh_l2vpn_verdict;

/** The fault that decides the verdict: the first one in reading order. Longer texts are cut. */
typedef struct mesh_l2vpn_fault {
  uint32_t position; /**< of the first byte at fault */
  char path[128];    /**< the field, as "f1.f8"; empty for the root table's head */
  char text[192];    /**< what is wrong with it, as mesh_l2vpn_explain says it */
} mesh_l2vpn_fault;

/** Whether receivers take these bytes as this message: __unpack's own verdict, which it does not
 * return. `fault` may be null; it is cleared for an accepted message. A null message or null data
 * is rejected. Accepting takes no memory. */
MESH_L2VPN_INSPECT_API mesh_l2vpn_verdict mesh_l2vpn_verify(const mesh_l2vpn_message* message,
                                                            const void* data, size_t length,
                                                            mesh_l2vpn_fault* fault);

/** Fills *record, of mesh_l2vpn_message_record_size() bytes, as the message's __unpack does; its
 * earlier contents are overwritten. EBADMSG for what receivers reject: then the record is all
 * zeros. mesh_l2vpn_release gives back what the record points to, never the record itself. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_unpack(const mesh_l2vpn_message* message, const void* data,
                                             size_t length, void* record);
MESH_L2VPN_INSPECT_API void mesh_l2vpn_release(const mesh_l2vpn_message* message, void* record);

/** How a record is encoded. */
typedef enum mesh_l2vpn_form {
  MESH_L2VPN_AS_SENT = 0, /**< the arrangement in which the message is sent */
  MESH_L2VPN_FIXED = 1,   /**< EINVAL for a message that is not sent in the fixed arrangement */
  MESH_L2VPN_COMPACT = 2  /**< what __pack writes */
} mesh_l2vpn_form;

/** The message of a record. EBADMSG for a record that cannot be encoded. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_pack(const mesh_l2vpn_message* message, const void* record,
                                           mesh_l2vpn_form form, uint8_t** data, size_t* size);

/** The messages of `count` records that lie one behind the other, into the caller's `buffer` of
 * `room` bytes, one behind the other: message i ends at ends[i]. A null buffer: writes `ends`
 * alone. EBADMSG for the first record that cannot be encoded, EINVAL for the first that finds no
 * room; `*done`, which may be null, is how many were encoded before it. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_pack_many(const mesh_l2vpn_message* message,
                                                const void* records, size_t count,
                                                mesh_l2vpn_form form, void* buffer, size_t room,
                                                size_t* ends, size_t* done);

/** Fills `count` records that lie one behind the other, from messages that do: message i ends at
 * ends[i]. EBADMSG for the first message that receivers reject, EINVAL for ends that go back;
 * `*done`, which may be null, is how many records were filled before it. What a record that was
 * filled points to is given back by mesh_l2vpn_release. All of it together counts for the limit. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_unpack_many(const mesh_l2vpn_message* message,
                                                  const void* data, const size_t* ends,
                                                  size_t count, void* records, size_t* done);

/** The record in a message, or a record, as JSON on one line: an object with a member for each
 * field, scalars as numbers, byte strings as hexadecimal digits, runs as arrays. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_to_json(const mesh_l2vpn_message* message, const void* data,
                                              size_t length, char** json);
MESH_L2VPN_INSPECT_API int mesh_l2vpn_record_to_json(const mesh_l2vpn_message* message,
                                                     const void* record, char** json);

/** The message of a record in JSON. Missing members are 0; numbers may be strings with 0x. EBADMSG
 * with the path for anything else that does not fit. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_from_json(const mesh_l2vpn_message* message, const char* json,
                                                size_t length, mesh_l2vpn_form form, uint8_t** data,
                                                size_t* size);

/** How a message is explained. */
typedef enum mesh_l2vpn_view {
  MESH_L2VPN_TEXT = 0, /**< lines for a terminal, without colours */
  MESH_L2VPN_HTML = 1  /**< a web page */
} mesh_l2vpn_view;

/** Every byte with its meaning, every fault, the verdict. Also for rejected messages. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_explain(const mesh_l2vpn_message* message, const void* data,
                                              size_t length, mesh_l2vpn_view view, char** text);

/** The differences of two messages that receivers take: members "firstLength", "secondLength",
 * "fields" (path, first, second) and "bytes" (at, meaning, first, second). */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_difference(const mesh_l2vpn_message* message,
                                                 const void* first, size_t first_length,
                                                 const void* second, size_t second_length,
                                                 char** json);

/** What unknown bytes could be: their root table, and in "couldBe" the messages that fit best, best
 * first: "message", "fit" ("exact", "same slots", "damaged", "reads", "rejected"), "group" (the
 * same for messages of one layout, which no bytes tell apart), "faults". All exact ones, or else
 * those of three groups. EBADMSG with the reason for bytes whose root table cannot be read. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_identify(const void* data, size_t length, char** json);

/** Everything about a message, or about all of them for null, as a JSON document: "messages",
 * "records" with their slots, and in "jsonSchema" a JSON Schema (draft 2020-12) of the records'
 * JSON. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_schema(const mesh_l2vpn_message* message, char** json);

/** Whether programs of two schema documents understand each other, as a JSON object: "verdict"
 * ("same", "compatible with losses", "incompatible") for the worst, and in "messages" a verdict
 * with reasons for an old reader of new messages and a new reader of old ones. Messages are written
 * by one schema and read by the other to confirm it. EBADMSG for what is no schema document. */
MESH_L2VPN_INSPECT_API int mesh_l2vpn_compat(const char* old_schema, size_t old_length,
                                             const char* new_schema, size_t new_length,
                                             char** json);

/** Bounds the memory of this thread's calls, in bytes; 0: 64 MiB. */
MESH_L2VPN_INSPECT_API void mesh_l2vpn_set_limit(size_t limit);

/** Gives back what a function of this header handed out. Null is allowed. */
MESH_L2VPN_INSPECT_API void mesh_l2vpn_free(void* block);

/** The text of this thread's last failure; "" before the first. Valid until the thread's next call
 * that fails. */
MESH_L2VPN_INSPECT_API const char* mesh_l2vpn_last_error(void);

#ifdef __cplusplus
}
#endif

#endif
