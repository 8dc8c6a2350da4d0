/* The synchronisation service: the state of VPLS and VLL services and of what belongs to them.
 *
 * Every record R travels in three messages: R itself, R_update and R_delete, which carry the whole
 * record and a 16-bit value. The message's name alone says which. All of them are sent in the fixed
 * arrangement, and none owns memory: the release of an unpacked record does nothing.
 *
 * The operations and the conventions are those of mesh_l2vpn/operations.h.
 */
#ifndef MESH_L2VPN_L2VPN_SYNC_H
#define MESH_L2VPN_L2VPN_SYNC_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/* The two messages that carry record R: f0 is the announcing process's own, f1 the record. */
#define L2VPN_SYNC_DEFINE_WRAPPERS(R) \
  typedef struct R##_update {         \
    uint16_t f0;                      \
    R f1;                             \
  } R##_update;                       \
  typedef struct R##_delete {         \
    uint16_t f0;                      \
    R f1;                             \
  } R##_delete;

/* VPLS attachment circuit. */
typedef struct l2vpn_sync_vpls_ac {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
  uint8_t f7;
  uint8_t f8[12];
  uint8_t f9[12];
} l2vpn_sync_vpls_ac;

/* The service's records in registration order, each given to F with X. */
#define L2VPN_SYNC_RECORDS(F, X) F(X, l2vpn_sync_vpls_ac)

/* The service's messages in registration order: every record, then each record's two wrappers. */
#define L2VPN_SYNC_MESSAGES(X)                 \
  L2VPN_SYNC_RECORDS(L2VPN_SYNC_ITSELF, X)     \
  L2VPN_SYNC_RECORDS(L2VPN_SYNC_ITS_WRAPPERS, X)
#define L2VPN_SYNC_ITSELF(X, R) X(R)
#define L2VPN_SYNC_ITS_WRAPPERS(X, R) X(R##_update) X(R##_delete)

#define L2VPN_SYNC_DEFINE_ITS_WRAPPERS(X, R) L2VPN_SYNC_DEFINE_WRAPPERS(R)
L2VPN_SYNC_RECORDS(L2VPN_SYNC_DEFINE_ITS_WRAPPERS, )

L2VPN_SYNC_MESSAGES(MESH_L2VPN_DECLARE)
MESH_L2VPN_DECLARE_SERVICE(l2vpn_sync)

MESH_L2VPN_END

#endif
