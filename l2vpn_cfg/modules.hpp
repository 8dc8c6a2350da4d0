// The two modules of the configuration service.
#pragma once

#include "host/serial_env.hpp"

namespace mesh::l2vpn_cfg {

extern host::Module receiveModule;
extern host::Module sendModule;

}  // namespace mesh::l2vpn_cfg
