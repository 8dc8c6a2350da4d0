#include "msg/receive.hpp"

#include "l2vpn_cfg/schema.hpp"

MESH_DEFINE_RECEIVE_MODULE(l2vpn_cfg, L2VPN_CFG_MESSAGES)
