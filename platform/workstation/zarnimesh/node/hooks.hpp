// The decoding functions of each message type, and the services' clean functions. One registry a
// process; it needs no open node.
#pragma once

#include <optional>

#include "zarnimesh/mesh.h"

namespace zarnimesh {

struct Hook {
  mesh_unpack_hook unpack;
  mesh_free_hook release;
};

// Safe from any thread; a second registration replaces the first.
void registerHook(uint32_t id, Hook hook);
std::optional<Hook> findHook(uint32_t id);

// A function registered twice is called once. callCleanHooks calls each in the order of
// registration, without holding a lock, and keeps them for the next time.
void registerCleanHook(mesh_clean_hook clean);
void callCleanHooks();

}  // namespace zarnimesh
