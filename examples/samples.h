/* Records that both processes of the demonstration can make, so that the receiver can prove that
 * it received what was sent. */
#ifndef EXAMPLES_SAMPLES_H
#define EXAMPLES_SAMPLES_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "mesh_l2vpn/l2vpn_sync.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The addresses of the two processes. */
enum { announcer_address = 1, watcher_address = 2 };

/* The purpose of a message; it travels as `extra`. */
enum purpose { purpose_show = 1, purpose_sample = 2, purpose_stream = 3 };

/* One message type. The types of its functions do not name its record. */
typedef struct sample_message {
  const char* name;
  uint32_t id;
  uint32_t record_size;
  /* Fills a record with values that depend only on the message. Its pointers lead to shared
   * data, which must not be freed. */
  void (*fill)(void* record);
  uint32_t (*pack)(const void* record, uint8_t* buffer, uint32_t* length);
  uint32_t (*send)(uint32_t destination, const void* record, uint64_t extra);
} sample_message;

/* All message types of the library. */
extern const sample_message sample_messages[];
extern const size_t sample_message_count;

/* The type with this identifier, or null. */
const sample_message* sample_find(uint32_t id);

/* Whether `record` holds the values of fill: packs both and compares the bytes. Not thread-safe. */
bool sample_is_equal(const sample_message* message, const void* record);

/* Makes record number `index` of a long stream; checks whether a record is that one. */
void stream_fill(l2vpn_sync_vpls_ac* record, uint64_t index);
bool stream_is_equal(const l2vpn_sync_vpls_ac* record, uint64_t index);

#ifdef __cplusplus
}
#endif

#endif
