#include "samples.h"

#include <stdlib.h>
#include <string.h>

#include "mesh_l2vpn/messages.h"

static uint8_t text[] = "pseudowire 4711 towards 192.0.2.7";
static l2vpn_cfg_query_dfx_item items[2];

static void fill_bytes(void* record, size_t size, uint32_t seed) {
  uint8_t* const bytes = record;
  for (size_t at = 0; at < size; ++at) {
    bytes[at] = (uint8_t)(seed + 31 * at + (at >> 8));
  }
}

/* Filled bytes are no valid pointers: these functions set them. */
static void complete_dbginfo_key_l2vpn(dbginfo_key_l2vpn* record) {
  record->f3_len = sizeof text;
  record->f3 = text;
}

static void complete_dbginfo_para_l2vpn(dbginfo_para_l2vpn* record) {
  record->f7_len = 5;
  record->f7 = text;
}

static void complete_l2vpn_cfg_query_comm_param(l2vpn_cfg_query_comm_param* record) {
  record->f2_len = 1;
  record->f2 = text;
}

static void complete_l2vpn_cfg_query_comm_rec(l2vpn_cfg_query_comm_rec* record) {
  record->f3_len = 12;
  record->f3 = text;
}

static void complete(uint32_t id, void* record) {
  if (id == dbginfo_key_l2vpn__msg_id) {
    complete_dbginfo_key_l2vpn(record);
  } else if (id == dbginfo_para_l2vpn__msg_id) {
    complete_dbginfo_para_l2vpn(record);
  } else if (id == l2vpn_cfg_query_comm_param__msg_id) {
    complete_l2vpn_cfg_query_comm_param(record);
  } else if (id == l2vpn_cfg_query_comm_rec__msg_id) {
    complete_l2vpn_cfg_query_comm_rec(record);
  } else if (id == dbginfo_cmd_key_l2vpn__msg_id) {
    dbginfo_cmd_key_l2vpn* const command = record;
    complete_dbginfo_para_l2vpn(&command->f3);
    complete_dbginfo_key_l2vpn(&command->f4);
  } else if (id == dbginfo_endata_l2vpn__msg_id) {
    dbginfo_endata_l2vpn* const data = record;
    data->f12_len = sizeof text;
    data->f12 = text;
    data->f14_len = 0;
    data->f14 = NULL;
  } else if (id == l2vpn_cfg_query_dfx_key__msg_id) {
    complete_l2vpn_cfg_query_comm_param(&((l2vpn_cfg_query_dfx_key*)record)->f0);
  } else if (id == l2vpn_cfg_query_dfx_rec__msg_id) {
    l2vpn_cfg_query_dfx_rec* const result = record;
    complete_l2vpn_cfg_query_comm_rec(&result->f0);
    fill_bytes(items, sizeof items, 99);
    result->f1_count = 2;
    result->f1 = items;
  }
}

#define DEFINE_SAMPLE(X, identifier)                                                   \
  static void fill_##X(void* record) {                                                 \
    fill_bytes(record, sizeof(X), identifier);                                         \
    complete(identifier, record);                                                      \
  }                                                                                    \
  static uint32_t pack_##X(const void* record, uint8_t* buffer, uint32_t* length) {    \
    return X##__pack(record, buffer, length);                                          \
  }                                                                                    \
  static uint32_t send_##X(uint32_t destination, const void* record, uint64_t extra) { \
    return X##__sendtomsg(destination, record, 1, extra);                              \
  }

L2VPN_MESSAGES(DEFINE_SAMPLE)

#define SAMPLE(X, identifier) {#X, identifier, sizeof(X), fill_##X, pack_##X, send_##X},

const sample_message sample_messages[] = {L2VPN_MESSAGES(SAMPLE)};

const size_t sample_message_count = sizeof sample_messages / sizeof sample_messages[0];

const sample_message* sample_find(uint32_t id) {
  for (size_t index = 0; index < sample_message_count; ++index) {
    if (sample_messages[index].id == id) {
      return &sample_messages[index];
    }
  }
  return NULL;
}

bool sample_is_equal(const sample_message* message, const void* record) {
  static uint8_t expected_bytes[65536];
  static uint8_t bytes[65536];
  uint32_t expected_length = sizeof expected_bytes;
  uint32_t length = sizeof bytes;
  bool equal = false;
  void* const expected = calloc(1, message->record_size);
  if (expected != NULL) {
    message->fill(expected);
    equal = message->pack(expected, expected_bytes, &expected_length) == 0 &&
            message->pack(record, bytes, &length) == 0 && length == expected_length &&
            memcmp(bytes, expected_bytes, length) == 0;
    free(expected);
  }
  return equal;
}

void stream_fill(l2vpn_sync_vpls_ac* record, uint64_t index) {
  memset(record, 0, sizeof *record);
  record->f0 = (uint32_t)index;
  record->f1 = (uint32_t)(index >> 32);
  record->f2 = (uint32_t)(index * 2654435761U);
  record->f3 = ~(uint32_t)index;
  record->f4 = (uint8_t)(index % 251);
  record->f5 = (uint8_t)(index % 2);
  record->f6 = (uint16_t)(index % 4093);
  record->f7 = (uint8_t)(index >> 3);
  memcpy(record->f8, &index, sizeof index);
  memset(record->f9, (int)(index % 253), sizeof record->f9);
}

bool stream_is_equal(const l2vpn_sync_vpls_ac* record, uint64_t index) {
  l2vpn_sync_vpls_ac expected;
  stream_fill(&expected, index);
  /* The padding of both is zero: stream_fill and the library clear it. */
  return memcmp(record, &expected, sizeof expected) == 0;
}
