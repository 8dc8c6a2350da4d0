#include "l2vpn_cfg/modules.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "msg/exports.hpp"

constinit mesh::host::Module mesh::l2vpn_cfg::receiveModule;

static constexpr mesh::host::Module& module = mesh::l2vpn_cfg::receiveModule;

MESH_DEFINE_RECEIVE_MODULE(l2vpn_cfg, L2VPN_CFG_MESSAGES)
