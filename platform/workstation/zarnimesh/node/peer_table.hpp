// The statistics of a node's peers, by address.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>

#include "zarnimesh/node.h"

namespace zarnimesh {

using PeerTable = std::map<uint32_t, mesh_peer_statistics>;

// Finds or adds the peer.
inline mesh_peer_statistics& peerAt(PeerTable& peers, uint32_t address) {
  const auto [peer, isNew] = peers.try_emplace(address);
  if (isNew) {
    peer->second.address = address;
    peer->second.last_heard_ms = UINT64_MAX;
  }
  return peer->second;
}

// UINT64_MAX for a moment that never was.
inline uint64_t millisecondsSince(std::chrono::steady_clock::time_point moment) {
  using std::chrono::milliseconds;
  if (moment == std::chrono::steady_clock::time_point{}) {
    return UINT64_MAX;
  }
  const auto passed = std::chrono::steady_clock::now() - moment;
  return static_cast<uint64_t>(std::chrono::duration_cast<milliseconds>(passed).count());
}

}  // namespace zarnimesh
