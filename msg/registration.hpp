// Registers a service with the middleware.
#pragma once

#include <span>

#include "msg/middleware.hpp"

namespace mesh::msg {

// What the middleware needs of one message to deliver it.
struct Hook {
  uint32_t id;
  mesh_unpack_hook unpack;
  mesh_free_hook release;
};

// Registers the hooks in order, up to the first result that is not 0, and returns the last result.
// Registrations made before a failure stay.
uint32_t registerHooks(std::span<const Hook> hooks);

}  // namespace mesh::msg
