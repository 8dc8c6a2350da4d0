// Owners of ZeroMQ sockets and message parts, and the events of a socket.
#pragma once

#include <zmq.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "zarnimesh/error.hpp"

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
  [[nodiscard]] bool set(int option, const std::string& value) {
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

// One part of a multipart message.
class MessagePart {
 public:
  MessagePart() { zmq_msg_init(&message_); }
  ~MessagePart() { zmq_msg_close(&message_); }
  MessagePart(const MessagePart&) = delete;
  MessagePart& operator=(const MessagePart&) = delete;

  // Replaces an empty part by one of `size` bytes. Its contents are undefined.
  [[nodiscard]] bool allocate(size_t size) {
    if (zmq_msg_init_size(&message_, size) != 0) {
      zmq_msg_init(&message_);
      return false;
    }
    return true;
  }

  // Shares the bytes of `other`. Nobody may write them afterwards.
  [[nodiscard]] bool share(MessagePart& other) {
    return zmq_msg_copy(&message_, &other.message_) == 0;
  }

  uint8_t* data() { return static_cast<uint8_t*>(zmq_msg_data(&message_)); }
  size_t size() const { return zmq_msg_size(&message_); }
  bool more() const { return zmq_msg_more(&message_) != 0; }
  zmq_msg_t* raw() { return &message_; }

 private:
  zmq_msg_t message_;
};

// The result for a failed ZeroMQ call, from its errno.
[[nodiscard]] mesh_result failFromTransport(const char* what);

// A PAIR socket that reads the `events` of `watched`, or a closed socket on failure. `context` is
// ZeroMQ's context.
[[nodiscard]] Socket watchEvents(void* context, Socket& watched, int events);

// Ends watchEvents, if it is active. Call this before `watched` is closed. Otherwise ZeroMQ's I/O
// thread would wait forever to deliver an event to a watcher that is gone.
void stopWatching(Socket& watched, Socket& watcher);

struct TransportEvent {
  uint16_t number;
  uint32_t value;  // a file descriptor or an error number
};

// Takes one event if there is one. Does not wait.
[[nodiscard]] std::optional<TransportEvent> nextEvent(Socket& watcher);

}  // namespace zarnimesh
