// Changes of a node's peers, on their way to the node's hook.
#pragma once

#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "zarnimesh/configuration/settings.hpp"

namespace zarnimesh {

// Thread-safe. `settings` must outlive it.
class PeerEvents {
 public:
  explicit PeerEvents(const Settings& settings) : settings_(settings) {}

  void add(mesh_peer_change change, uint32_t address, uint64_t from = 0, uint64_t to = 0) {
    if (settings_.peerHook != nullptr) {
      const std::lock_guard lock(mutex_);
      try {
        events_.push_back({.change = change, .address = address, .from = from, .to = to});
      } catch (const std::bad_alloc&) {
        // The hook misses the change. Calls and counters go on.
      }
    }
  }

  // Calls the hook. Must not be called under a lock that the hook's sends need.
  void deliver() {
    std::vector<mesh_peer_event> events;
    {
      const std::lock_guard lock(mutex_);
      events.swap(events_);
    }
    for (const mesh_peer_event& event : events) {
      settings_.peerHook(&event, settings_.peerUser);
    }
  }

 private:
  const Settings& settings_;
  std::mutex mutex_;  // guards events_; no other lock is taken under it
  std::vector<mesh_peer_event> events_;
};

}  // namespace zarnimesh
