// Ends tcp connections whose peers send a message without end.
//
// The transport bounds each part of a message and how many messages wait, but not how many parts a
// message has, and shows none of it before its last part is there. The system, though, counts what
// a tcp connection received. (It does not for Unix sockets, whose peers are the user's own
// programs.)
#pragma once

#include <chrono>
#include <cstdint>
#include <unordered_map>

#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// Used by the thread that receives.
class ConnectionWatch {
 public:
  using Clock = std::chrono::steady_clock;

  // How often to look while there are connections.
  static constexpr std::chrono::milliseconds interval{20};

  // Watches who connects to `listener`, on which no message may take more than `limit` bytes.
  [[nodiscard]] mesh_result open(Context& context, Socket& listener, uint64_t limit);
  // Before `listener` is closed.
  void close(Socket& listener);

  bool isOpen() const { return static_cast<bool>(events_); }

  // A message was taken; the time counts from now for its connection.
  void noteMessage(MessagePart& message);

  // Nothing was there to be taken.
  void noteIdle() { idle_ = true; }

  // Looks when it is time. How many connections it ended.
  uint64_t look();

 private:
  struct Connection {
    uint64_t cookie;        // tells the connection from a later one of the same number
    uint64_t bytesAtStart;  // received when it last had nothing unfinished, as far as we know
    bool delivered = false;
    bool suspect = false;
  };

  void readEvents();
  void add(int file);
  bool endIfEndless(int file, Connection& connection);

  Socket events_;
  uint64_t limit_ = 0;
  std::unordered_map<int, Connection> connections_;
  Clock::time_point nextLook_{};
  uint64_t taken_ = 0;  // messages since the last look
  bool idle_ = false;   // since the last look
};

}  // namespace zarnimesh
