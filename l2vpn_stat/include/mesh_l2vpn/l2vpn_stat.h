/** @file
 * The statistics service.
 *
 * 1. Ownership. Buffers and records are the caller's. The record owns no memory: its release does
 *    nothing.
 * 2. Results. X__unpack returns sizeof(X) whatever the buffer held; a rejected one leaves a record
 *    of zeros or of what came before the fault. X__pack returns 0 or 0xFFFFFFFF. Sending returns
 *    the middleware's result, or 0xFFFFFFFF when it never came so far.
 * 3. Threads. Every function may be called from any thread, on records that no other thread
 *    writes. Nothing needs to be set up first.
 * 4. Byte order. Records and messages have the host's; the devices are little-endian.
 * 5. Null. There is nothing in the record that can be null. A null record or buffer is refused and
 *    logged by l2vpn_stat_pw_stat__unpack; __pack refuses a null record or length, and takes a null
 *    buffer for a question of the size; the sending functions must not be given a null record.
 * 6. Sending. The message goes in the fixed arrangement: 128 bytes, whatever its values.
 *
 * The details of each operation are in mesh_l2vpn/operations.h, every function by its full name in
 * mesh_l2vpn/l2vpn_stat_functions.h, the message's bytes in docs/messages.md.
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
