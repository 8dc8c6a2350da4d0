/* The statistics service.
 *
 * Its message is sent in the fixed arrangement and owns no memory: the release of an unpacked
 * record does nothing. The operations and the conventions are those of mesh_l2vpn/operations.h.
 */
#ifndef MESH_L2VPN_L2VPN_STAT_H
#define MESH_L2VPN_L2VPN_STAT_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/* Pseudowire statistics: two keys, and eight counters. */
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

L2VPN_STAT_MESSAGES(MESH_L2VPN_DECLARE)
MESH_L2VPN_DECLARE_SERVICE(l2vpn_stat)

MESH_L2VPN_END

#endif
