#include "l2vpn_sync/modules.hpp"
#include "l2vpn_sync/schema.hpp"
#include "msg/exports.hpp"

constinit mesh::host::Module mesh::l2vpn_sync::receiveModule;

static constexpr mesh::host::Module& module = mesh::l2vpn_sync::receiveModule;

MESH_DEFINE_RECEIVE_MODULE(l2vpn_sync, L2VPN_SYNC_MESSAGES)
