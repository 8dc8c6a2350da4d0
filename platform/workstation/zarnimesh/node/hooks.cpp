#include "zarnimesh/node/hooks.hpp"

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

namespace zarnimesh {
namespace {

struct Hooks {
  std::shared_mutex mutex;  // guards the members below
  std::unordered_map<uint32_t, Hook> byId;
  std::vector<mesh_clean_hook> clean;
};

// Never destroyed: a thread may still receive while the process exits.
Hooks& hooks() {
  static Hooks& instance = *new Hooks;
  return instance;
}

}  // namespace

void registerHook(uint32_t id, Hook hook) {
  const std::unique_lock lock(hooks().mutex);
  hooks().byId.insert_or_assign(id, hook);
  hookVersion.fetch_add(1, std::memory_order_release);
}

std::optional<Hook> findHook(uint32_t id) {
  const std::shared_lock lock(hooks().mutex);
  const auto found = hooks().byId.find(id);
  if (found == hooks().byId.end()) {
    return std::nullopt;
  }
  return found->second;
}

void registerCleanHook(mesh_clean_hook clean) {
  const std::unique_lock lock(hooks().mutex);
  auto& list = hooks().clean;
  if (std::find(list.begin(), list.end(), clean) == list.end()) {
    list.push_back(clean);
  }
}

void callCleanHooks() {
  // Without a copy of the list, which might find no memory.
  for (size_t i = 0;; ++i) {
    mesh_clean_hook clean = nullptr;
    {
      const std::shared_lock lock(hooks().mutex);
      if (i == hooks().clean.size()) {
        return;
      }
      clean = hooks().clean[i];
    }
    clean();
  }
}

}  // namespace zarnimesh
