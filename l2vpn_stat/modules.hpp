// The two modules of the statistics service.
#pragma once

#include "host/serial_env.hpp"

namespace mesh::l2vpn_stat {

extern host::Module receiveModule;
extern host::Module sendModule;

}  // namespace mesh::l2vpn_stat
