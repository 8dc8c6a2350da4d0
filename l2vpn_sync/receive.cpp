#include "msg/receive.hpp"

#include "l2vpn_sync/schema.hpp"

MESH_DEFINE_RECEIVE_MODULE(l2vpn_sync, L2VPN_SYNC_MESSAGES)
