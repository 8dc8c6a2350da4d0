/** @file
 * The configuration and debug-information service.
 *
 * 1. Ownership. The caller owns buffers and records. Records with byte strings or items (fN_len or
 *    fN_count beside fN) own what X__unpack allocated for them, until X_free__unpacked. The other
 *    records own nothing, and their release does nothing. Unpacking into a record that still holds
 *    blocks leaks them. Packing and sending only read records.
 * 2. Results. X__unpack returns sizeof(X) for every buffer; look at the record. X__pack
 *    returns 0 or 0xFFFFFFFF. Sending returns the middleware's result, or 0xFFFFFFFF if it never
 *    reached the middleware.
 * 3. Threads. Any thread may call any function, on records that no other thread writes. No setup is
 *    needed.
 * 4. Byte order. Records and messages have the host's byte order. The devices are little-endian.
 * 5. Null. A null byte string or item pointer means "none", whatever its length is. The exception:
 *    l2vpn_cfg_query_dfx_rec with a count and null items cannot be encoded. After X__unpack, test
 *    the pointer, not the length. X__unpack refuses and logs a null record or buffer. X__pack
 *    refuses a null record or length; with a null buffer it reports the size.
 * 6. Sending. Four messages (l2vpn_cfg_query_dfx_cond and _item, dbginfo_cmd_ipc_l2vpn and
 *    dbginfo_dedata_l2vpn) are sent in the fixed arrangement; their records must not be null. The
 *    others are sent in the compact arrangement; a batch of them takes 65,536 bytes at most.
 *
 * See mesh_l2vpn/operations.h for each operation, mesh_l2vpn/l2vpn_cfg_functions.h for every
 * function by its full name, docs/messages.md for every message.
 */
#ifndef MESH_L2VPN_L2VPN_CFG_H
#define MESH_L2VPN_L2VPN_CFG_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/** Key of a debug-information query. Sent in the compact arrangement. */
typedef struct dbginfo_key_l2vpn {
  uint16_t f0;
  uint16_t f1;
  uint32_t f2;
  uint32_t f3_len; /* bytes at f3 */
  uint8_t* f3;
} dbginfo_key_l2vpn;

/** Parameters of a debug-information query. Sent in the compact arrangement. */
typedef struct dbginfo_para_l2vpn {
  uint16_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint32_t f4;
  uint16_t f5;
  uint32_t f6;
  uint32_t f7_len; /* bytes at f7 */
  uint8_t* f7;
} dbginfo_para_l2vpn;

/** Condition of a configuration query. Sent in the fixed arrangement. */
typedef struct l2vpn_cfg_query_dfx_cond {
  uint32_t f0;
  uint32_t f1;
  uint8_t f2[128];
} l2vpn_cfg_query_dfx_cond;

/** Common parameters of a configuration query. Sent in the compact arrangement. */
typedef struct l2vpn_cfg_query_comm_param {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2_len; /* bytes at f2 */
  uint8_t* f2;
} l2vpn_cfg_query_comm_param;

/** Common result of a configuration query. Sent in the compact arrangement. */
typedef struct l2vpn_cfg_query_comm_rec {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3_len; /* bytes at f3 */
  uint8_t* f3;
  uint32_t f4;
} l2vpn_cfg_query_comm_rec;

/** Debug command: its own fields, parameters and key. Sent in the compact arrangement. */
typedef struct dbginfo_cmd_key_l2vpn {
  uint32_t f0;
  uint32_t f1;
  uint16_t f2;
  dbginfo_para_l2vpn f3;
  dbginfo_key_l2vpn f4;
} dbginfo_cmd_key_l2vpn;

/** Debug command between processes. Sent in the fixed arrangement. */
typedef struct dbginfo_cmd_ipc_l2vpn {
  uint32_t f0;
  uint32_t f1;
  uint16_t f2;
  uint16_t f3;
  uint32_t f4;
  uint32_t f5;
  uint32_t f6;
  uint32_t f7;
  uint16_t f8;
  uint32_t f9;
  uint16_t f10;
  uint16_t f11;
  uint32_t f12;
} dbginfo_cmd_ipc_l2vpn;

/** Debug information with two byte strings. Sent in the compact arrangement. */
typedef struct dbginfo_endata_l2vpn {
  uint32_t f0;
  uint32_t f1;
  uint16_t f2;
  uint16_t f3;
  uint16_t f4;
  uint16_t f5;
  uint16_t f6;
  uint16_t f7;
  uint32_t f8;
  uint32_t f9;
  uint16_t f10;
  uint32_t f11;
  uint32_t f12_len; /* bytes at f12 */
  uint8_t* f12;
  uint32_t f13;
  uint32_t f14_len; /* bytes at f14 */
  uint8_t* f14;
} dbginfo_endata_l2vpn;

/** Debug information without byte strings. Sent in the fixed arrangement. */
typedef struct dbginfo_dedata_l2vpn {
  uint32_t f0;
  uint32_t f1;
  uint16_t f2;
  uint16_t f3;
  uint16_t f4;
  uint16_t f5;
  uint16_t f6;
  uint16_t f7;
  uint32_t f8;
  uint32_t f9;
  uint16_t f10;
  uint32_t f11;
  uint32_t f12;
} dbginfo_dedata_l2vpn;

/** One item of a configuration query's result. Sent in the fixed arrangement. */
typedef struct l2vpn_cfg_query_dfx_item {
  uint8_t f0[32];
  uint32_t f1;
  uint8_t f2[24];
  uint8_t f3[128];
  uint8_t f4[16384];
} l2vpn_cfg_query_dfx_item;

/** A configuration query: its common parameters and its condition. Sent in the compact
 * arrangement. */
typedef struct l2vpn_cfg_query_dfx_key {
  l2vpn_cfg_query_comm_param f0;
  l2vpn_cfg_query_dfx_cond f1;
} l2vpn_cfg_query_dfx_key;

/** A configuration query's result: the common result and its items. Sent in the compact
 * arrangement. */
typedef struct l2vpn_cfg_query_dfx_rec {
  l2vpn_cfg_query_comm_rec f0;
  uint32_t f1_count; /* records at f1 */
  l2vpn_cfg_query_dfx_item* f1;
} l2vpn_cfg_query_dfx_rec;

/* The service's messages in registration order, each with its identifier. */
#define L2VPN_CFG_MESSAGES(X)               \
  X(dbginfo_key_l2vpn, 0xFEB5D38D)          \
  X(dbginfo_para_l2vpn, 0xF5550D12)         \
  X(l2vpn_cfg_query_dfx_cond, 0xE11ADDEF)   \
  X(l2vpn_cfg_query_comm_param, 0xDC5527DE) \
  X(l2vpn_cfg_query_comm_rec, 0x345542C5)   \
  X(dbginfo_cmd_key_l2vpn, 0x8B614502)      \
  X(dbginfo_cmd_ipc_l2vpn, 0x110045FB)      \
  X(dbginfo_endata_l2vpn, 0x494B03FB)       \
  X(dbginfo_dedata_l2vpn, 0x3CF15A13)       \
  X(l2vpn_cfg_query_dfx_item, 0x77B787DC)   \
  X(l2vpn_cfg_query_dfx_key, 0xD5542082)    \
  X(l2vpn_cfg_query_dfx_rec, 0xC900380B)

MESH_L2VPN_END

/* Every function and identifier of the service. */
#include "mesh_l2vpn/l2vpn_cfg_functions.h"

#endif
