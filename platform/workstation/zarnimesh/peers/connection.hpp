// A connection to one destination: its sending end.
#pragma once

#include <array>
#include <chrono>
#include <memory>

#include "zarnimesh/configuration/settings.hpp"
#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/frame.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// For one thread at a time. `settings` must outlive it.
class Connection {
 public:
  using Parts = std::array<MessagePart, partCount>;

  enum class Attempt {
    Sent,
    NoRoom,
    Broken,  // the receiver disappeared during the call; nothing was sent
    Failed,  // ZeroMQ failed; the error text is set
  };

  Connection(const Settings& settings, uint32_t destination)
      : settings_(settings),
        destination_(destination),
        endpoint_(settings.endpointOf(destination)) {}
  ~Connection() { close(); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool isOpen() const { return static_cast<bool>(socket_); }

  // Starts connecting. Over inproc the connection stays closed when there is no receiver.
  [[nodiscard]] mesh_result open(const std::shared_ptr<Context>& context);

  // Sent messages linger in the background.
  void close();

  // Whether a receiver is connected now. Closes an inproc connection whose receiver is gone.
  [[nodiscard]] bool answered();

  // Sends all parts or none, without waiting. Does not change `parts`.
  [[nodiscard]] Attempt trySend(Parts& parts);

  // Waits until a receiver may have connected, disconnected or made room.
  void waitForChange(std::chrono::milliseconds atMost);

  const Endpoint& endpoint() const { return endpoint_; }

 private:
  [[nodiscard]] mesh_result openInproc(Context& context);
  [[nodiscard]] mesh_result openSocket(Context& context, const std::string& endpoint);
  [[nodiscard]] mesh_result secure(Socket& socket);
  void readEvents();

  const Settings& settings_;
  const uint32_t destination_;
  Endpoint endpoint_;
  Socket socket_;
  Socket watcher_;            // ipc and tcp: reports that a receiver connected or disconnected
  bool peerPresent_ = false;  // ipc and tcp: as the watcher reported
  uint64_t generation_ = 0;   // inproc: of the connected receiver
};

}  // namespace zarnimesh
