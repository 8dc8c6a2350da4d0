/** @file
 * Every message of the library: the three services' headers, and their lists in one.
 */
#ifndef MESH_L2VPN_MESSAGES_H
#define MESH_L2VPN_MESSAGES_H

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"

/** Expands X(name, identifier) for every message, service by service, in registration order. */
#define L2VPN_MESSAGES(X) \
  L2VPN_CFG_MESSAGES(X)   \
  L2VPN_STAT_MESSAGES(X)  \
  L2VPN_SYNC_MESSAGES(X)

#endif
