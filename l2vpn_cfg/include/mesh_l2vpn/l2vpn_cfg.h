/* The configuration and debug-information service.
 *
 * Records with byte strings own what unpacking allocated for them until their release. The
 * operations and the conventions are those of mesh_l2vpn/operations.h.
 */
#ifndef MESH_L2VPN_L2VPN_CFG_H
#define MESH_L2VPN_L2VPN_CFG_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/* Key of a debug-information query. Sent in the compact arrangement. */
typedef struct dbginfo_key_l2vpn {
  uint16_t f0;
  uint16_t f1;
  uint32_t f2;
  uint32_t f3_len; /* bytes at f3 */
  uint8_t* f3;
} dbginfo_key_l2vpn;

/* The service's messages in registration order. */
#define L2VPN_CFG_MESSAGES(X) X(dbginfo_key_l2vpn)

L2VPN_CFG_MESSAGES(MESH_L2VPN_DECLARE)
MESH_L2VPN_DECLARE_SERVICE(l2vpn_cfg)

MESH_L2VPN_END

#endif
