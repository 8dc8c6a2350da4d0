// One destination of a node: the connection to it, and the number of calls sent.
#pragma once

#include <atomic>
#include <memory>

#include "zarnimesh/peers/connection.hpp"
#include "zarnimesh/peers/gate.hpp"

namespace zarnimesh {

// Thread-safe: one thread at a time uses the connection.
class Destination {
 public:
  Destination(const Settings& settings, uint32_t address)
      : settings_(settings), connection_(settings, address) {}

  // Numbers the call and sends it, waiting within the timeouts. `parts` holds an empty header,
  // index and payload. Returns MESH_NOT_OPEN once `closing` is set.
  [[nodiscard]] mesh_result send(FrameHeader header, Connection::Parts& parts,
                                 const std::shared_ptr<Context>& context,
                                 const std::atomic<bool>& closing);

  // Waits for a send in progress. `closing` must be set before.
  void close();

 private:
  using Clock = Gate::Clock;

  [[nodiscard]] mesh_result sendLocked(Connection::Parts& parts,
                                       const std::shared_ptr<Context>& context,
                                       const std::atomic<bool>& closing, Clock::time_point start);

  const Settings& settings_;
  Gate gate_;  // guards the members below
  Connection connection_;
  uint64_t sentCalls_ = 0;
};

}  // namespace zarnimesh
