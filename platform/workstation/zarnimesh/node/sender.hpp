// A node's sending half.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <unordered_map>

#include "zarnimesh/mesh.h"
#include "zarnimesh/node/statistics.hpp"
#include "zarnimesh/peers/destination.hpp"

namespace zarnimesh {

// Safe from any thread. `settings` and `statistics` outlive it.
class Sender {
 public:
  Sender(const Settings& settings, Statistics& statistics, uint32_t source)
      : settings_(settings), statistics_(statistics), source_(source) {}

  // Draws the incarnation.
  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // The C interface's send, counted.
  [[nodiscard]] mesh_result send(uint32_t destination, const mesh_msg_desc* descriptors,
                                 uint32_t count, uint64_t extra);

  // Ends sends in progress and refuses later ones. Called once, by one thread.
  void close();

 private:
  [[nodiscard]] mesh_result trySend(uint32_t destination,
                                    std::span<const mesh_msg_desc> descriptors, uint64_t extra,
                                    uint64_t payloadBytes);
  // The destination, known from now on; null when the node is being closed.
  Destination* find(uint32_t address);

  const Settings& settings_;
  Statistics& statistics_;
  const uint32_t source_;
  uint64_t incarnation_ = 0;
  std::shared_ptr<Context> context_;  // read by sends until `closing_` keeps them off

  std::atomic<bool> closing_ = false;
  std::mutex mutex_;  // guards the map; taken before no other lock
  std::unordered_map<uint32_t, std::unique_ptr<Destination>> destinations_;
};

}  // namespace zarnimesh
