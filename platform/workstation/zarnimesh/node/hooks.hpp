// The decoding functions of each message type, and the services' clean functions. The process has
// one registry. It works without open nodes.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "zarnimesh/mesh.h"

namespace zarnimesh {

struct Hook {
  mesh_unpack_hook unpack;
  mesh_free_hook release;
};

// Thread-safe. A second registration replaces the first.
void registerHook(uint32_t id, Hook hook);
std::optional<Hook> findHook(uint32_t id);
// Changes with each registration.
inline std::atomic<uint64_t> hookVersion = 1;

// callCleanHooks calls each function once, in order of registration, without holding a lock. The
// functions stay registered.
void registerCleanHook(mesh_clean_hook clean);
void callCleanHooks();

}  // namespace zarnimesh
