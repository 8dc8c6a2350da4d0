// The sending end of one way to one destination.
#pragma once

#include <array>
#include <chrono>
#include <memory>

#include "zarnimesh/configuration/settings.hpp"
#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/frame.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// Used by one thread at a time. `settings` outlives it.
class Connection {
 public:
  using Parts = std::array<MessagePart, partCount>;

  enum class Attempt {
    Sent,
    NoRoom,
    Broken,  // the receiver went away in the middle; nothing was sent
    Failed,  // by the transport; the text is kept
  };

  Connection(const Settings& settings, uint32_t destination)
      : settings_(settings),
        destination_(destination),
        endpoint_(settings.endpointOf(destination)) {}
  ~Connection() { close(); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool isOpen() const { return static_cast<bool>(socket_); }

  // Starts connecting. Over inproc it leaves the connection closed when nobody receives there.
  [[nodiscard]] mesh_result open(const std::shared_ptr<Context>& context);

  // Bytes that were sent linger behind the scenes.
  void close();

  // Whether a receiver is there now. Closes an inproc connection whose receiver is gone.
  [[nodiscard]] bool answered();

  // Hands over all parts or none, without waiting. They stay as they are unless sent.
  [[nodiscard]] Attempt trySend(Parts& parts);

  // Waits until something may have changed: a receiver has come or gone, or, while one is there, it
  // has made room.
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
  Socket watcher_;            // ipc and tcp: tells when a receiver has come or gone
  bool peerPresent_ = false;  // ipc and tcp: by the watcher
  uint64_t generation_ = 0;   // inproc: the receiver connected to
};

}  // namespace zarnimesh
