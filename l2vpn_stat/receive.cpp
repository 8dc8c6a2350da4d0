#include "msg/receive.hpp"

#include "l2vpn_stat/schema.hpp"

MESH_DEFINE_RECEIVE_MODULE(l2vpn_stat, L2VPN_STAT_MESSAGES)
