#include "l2vpn_cfg/modules.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "msg/exports.hpp"

constinit mesh::host::Module mesh::l2vpn_cfg::sendModule;

static constexpr mesh::host::Module& module = mesh::l2vpn_cfg::sendModule;

MESH_DEFINE_SEND_MODULE(l2vpn_cfg, L2VPN_CFG_MESSAGES)
