// The two modules of the synchronisation service.
#pragma once

#include "host/serial_env.hpp"

namespace mesh::l2vpn_sync {

extern host::Module receiveModule;
extern host::Module sendModule;

}  // namespace mesh::l2vpn_sync
