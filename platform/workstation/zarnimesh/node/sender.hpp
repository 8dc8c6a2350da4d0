// A node's sender.
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

// Thread-safe. `settings` and `statistics` must outlive it.
class Sender {
 public:
  Sender(const Settings& settings, Statistics& statistics, uint32_t source)
      : settings_(settings), statistics_(statistics), source_(source) {}

  // Picks the random incarnation.
  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // Sends one call and counts the result.
  [[nodiscard]] mesh_result send(uint32_t destination, const mesh_msg_desc* descriptors,
                                 uint32_t count, uint64_t extra);

  // Ends sends in progress and refuses new ones. Called once.
  void close();

 private:
  [[nodiscard]] mesh_result trySend(uint32_t destination,
                                    std::span<const mesh_msg_desc> descriptors, uint64_t extra,
                                    uint64_t payloadBytes);
  // Finds or adds the destination. Null when the node is being closed.
  Destination* find(uint32_t address);

  const Settings& settings_;
  Statistics& statistics_;
  const uint32_t source_;
  uint64_t incarnation_ = 0;
  std::shared_ptr<Context> context_;  // sends read it until `closing_` is set

  std::atomic<bool> closing_ = false;
  std::mutex mutex_;  // guards destinations_; no other lock is taken under it
  std::unordered_map<uint32_t, std::unique_ptr<Destination>> destinations_;
};

}  // namespace zarnimesh
