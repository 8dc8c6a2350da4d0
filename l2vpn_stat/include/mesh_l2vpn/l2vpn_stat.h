/** @file
 * The statistics service.
 *
 * 1. Ownership. The caller owns buffers and records. The record owns no memory: its release does
 *    nothing.
 * 2. Results. X__unpack returns sizeof(X) for every buffer. A rejected buffer leaves zeros, or the
 *    fields before the fault. X__pack returns 0 or 0xFFFFFFFF. Sending returns the middleware's
 *    result, or 0xFFFFFFFF if it never reached the middleware.
 * 3. Threads. Any thread may call any function, on records that no other thread writes. No setup is
 *    needed.
 * 4. Byte order. Records and messages have the host's byte order. The devices are little-endian.
 * 5. Null. The record contains no pointers. l2vpn_stat_pw_stat__unpack refuses and logs a null
 *    record or buffer. __pack refuses a null record or length; with a null buffer it reports the
 *    size. The send functions must not get a null record.
 * 6. Sending. The message is sent in the fixed arrangement: 128 bytes, whatever its values.
 *
 * See mesh_l2vpn/operations.h for each operation, mesh_l2vpn/l2vpn_stat_functions.h for every
 * function by its full name, docs/messages.md for the message's bytes.
 */
#ifndef MESH_L2VPN_L2VPN_STAT_H
#define MESH_L2VPN_L2VPN_STAT_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/** Pseudowire statistics: two keys, and eight counters. */
typedef struct l2vpn_stat_pw_stat {
  uint32_t f0;
  uint32_t f1;
  uint8_t f2;
  uint8_t f3[3];
  uint32_t f4;
  uint64_t f5;
  uint64_t f6;
  uint64_t f7;
  uint64_t f8;
  uint64_t f9;
  uint64_t f10;
  uint64_t f11;
  uint64_t f12;
} l2vpn_stat_pw_stat;

/* The service's messages in registration order, each with its identifier. */
#define L2VPN_STAT_MESSAGES(X) X(l2vpn_stat_pw_stat, 0x98DB4DAE)

MESH_L2VPN_END

/* Every function and identifier of the service. */
#include "mesh_l2vpn/l2vpn_stat_functions.h"

#endif
