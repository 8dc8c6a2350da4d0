// Ends tcp connections whose peers send an endless message.
//
// ZeroMQ limits the size of each part and the number of queued messages. It does not limit the
// number of parts, and it shows no part before the last one has arrived. But the kernel counts the
// bytes that a tcp connection received. It does not count them for Unix sockets; their peers are
// the user's own programs.
#pragma once

#include <chrono>
#include <cstdint>
#include <unordered_map>

#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// For one thread at a time.
class ConnectionWatch {
 public:
  using Clock = std::chrono::steady_clock;

  // The time between checks.
  static constexpr std::chrono::milliseconds interval{20};

  // Watches the connections of `listener`. A message may take at most `limit` bytes.
  [[nodiscard]] mesh_result open(Context& context, Socket& listener, uint64_t limit);
  // Must be called before `listener` is closed.
  void close(Socket& listener);

  bool isOpen() const { return static_cast<bool>(events_); }

  // A message was received: the count of its connection starts again.
  void noteMessage(MessagePart& message);

  bool hasConnections() const { return !connections_.empty(); }

  struct Ended {
    uint64_t endless = 0;
    uint64_t refused = 0;  // in the handshake
  };

  // Checks if the interval has passed. Every complete message must have been taken before: it is
  // not told from an incomplete one.
  Ended check();

 private:
  struct Connection {
    uint64_t cookie;            // identifies the connection: file descriptors are reused
    uint64_t bytesAtStart = 0;  // received up to its latest complete message, as far as known
    // A message since the last check. The first check finds what was received before: those
    // messages may have been noted at the connection that had the descriptor before.
    bool delivered = true;
    bool suspect = false;
  };

  void readEvents();
  void add(int file);
  bool endIfEndless(int file, Connection& connection);

  Socket events_;
  uint64_t limit_ = 0;
  std::unordered_map<int, Connection> connections_;
  Clock::time_point nextCheck_{};
  uint64_t refused_ = 0;  // since the last check
};

}  // namespace zarnimesh
