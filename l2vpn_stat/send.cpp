#include "l2vpn_stat/modules.hpp"
#include "l2vpn_stat/schema.hpp"
#include "msg/exports.hpp"

constinit mesh::host::Module mesh::l2vpn_stat::sendModule;

static constexpr mesh::host::Module& module = mesh::l2vpn_stat::sendModule;

MESH_DEFINE_SEND_MODULE(l2vpn_stat, L2VPN_STAT_MESSAGES)
