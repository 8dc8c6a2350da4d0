// Owners of ZeroMQ sockets, and the events of a socket.
#pragma once

#include <zmq.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "zarnimesh/error.hpp"
#include "zarnimesh/transport/message_part.hpp"

namespace zarnimesh {

// For one thread at a time.
class Socket {
 public:
  Socket() = default;
  explicit Socket(void* handle) : handle_(handle) {}
  Socket(Socket&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Socket() { close(); }

  explicit operator bool() const { return handle_ != nullptr; }
  void* handle() const { return handle_; }

  [[nodiscard]] bool set(int option, int value) {
    return zmq_setsockopt(handle_, option, &value, sizeof value) == 0;
  }
  [[nodiscard]] bool set(int option, int64_t value) {
    return zmq_setsockopt(handle_, option, &value, sizeof value) == 0;
  }
  [[nodiscard]] bool set(int option, std::string_view value) {
    return zmq_setsockopt(handle_, option, value.data(), value.size()) == 0;
  }

  void close() {
    if (handle_ != nullptr) {
      zmq_close(std::exchange(handle_, nullptr));
    }
  }

 private:
  void* handle_ = nullptr;
};

// Repeats a call of ZeroMQ that a signal interrupted. Also calls that do not wait fail then, before
// they have had an effect. A part of a message that were missing would make the next message a part
// of this one.
template <typename Call>
int uninterrupted(Call&& call) {
  int result = 0;
  do {
    result = call();
  } while (result < 0 && zmq_errno() == EINTR);
  return result;
}

// A ROUTER socket names each connection. Nodes choose the names of those that they open; ZeroMQ
// chooses the others. Both have five bytes, which fit into a number.
inline constexpr size_t routeSize = 5;

inline std::array<char, routeSize> routeName(uint64_t route) {
  std::array<char, routeSize> name;
  for (char& byte : name) {
    byte = static_cast<char>(route);
    route >>= 8;
  }
  return name;
}

inline std::optional<uint64_t> readRoute(std::span<const uint8_t> name) {
  if (name.size() != routeSize) {
    return std::nullopt;
  }
  uint64_t route = 0;
  for (size_t i = 0; i < routeSize; ++i) {
    route |= uint64_t{name[i]} << (8 * i);
  }
  return route;
}

// Sends a message over one connection and empties it. Does not wait. False when that failed; the
// message is then unchanged.
[[nodiscard]] inline bool sendTo(uint64_t route, MessagePart& message, Socket& socket) {
  const auto name = routeName(route);
  return uninterrupted([&] {
           return zmq_send(socket.handle(), name.data(), name.size(), ZMQ_DONTWAIT | ZMQ_SNDMORE);
         }) >= 0 &&
         uninterrupted(
             [&] { return zmq_msg_send(message.raw(), socket.handle(), ZMQ_DONTWAIT); }) >= 0;
}

// Takes the next part, if there is one. Does not wait.
[[nodiscard]] inline bool takePart(MessagePart& part, Socket& socket) {
  return uninterrupted([&] { return zmq_msg_recv(part.raw(), socket.handle(), ZMQ_DONTWAIT); }) >=
         0;
}

// Over tcp, ends connections whose peer's machine has not answered for three times `interval`, in
// whole seconds. 0: never. ZeroMQ's own heartbeats end the process if one is due at a connection
// that is being closed and whose peer has ended.
[[nodiscard]] bool setKeepAlive(Socket& socket, std::chrono::milliseconds interval);

// The result for a failed ZeroMQ call, from its errno.
[[nodiscard]] mesh_result failFromTransport(const char* what);

// A PAIR socket that reads the `events` of `watched`, or a closed socket on failure. `context` is
// ZeroMQ's context.
[[nodiscard]] Socket watchEvents(void* context, Socket& watched, int events);

// Ends watchEvents, if it is active. Call this before `watched` is closed. Otherwise ZeroMQ's I/O
// thread would wait forever to deliver an event to a watcher that is gone.
void stopWatching(Socket& watched, Socket& watcher);

struct TransportEvent {
  uint16_t number = 0;
  uint32_t value = 0;  // a file descriptor or an error number
  MessagePart name;    // of the endpoint. A copy could find no memory, and the event would be lost

  std::string_view endpoint() const {
    return {reinterpret_cast<const char*>(name.data()), name.size()};
  }
};

// Takes one event if there is one. Does not wait.
[[nodiscard]] std::optional<TransportEvent> nextEvent(Socket& watcher);

}  // namespace zarnimesh
