// The process's ZeroMQ context, and owners of its sockets and messages.
#pragma once

#include <zmq.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

class Authenticator;

// Made with the first node and ended with the last: ending waits until the lingering sockets have
// handed over what they hold.
class Context {
 public:
  // The context that the open nodes share, or a new one. Null when the system refuses.
  static std::shared_ptr<Context> shared();

  explicit Context(void* handle);
  // Ends the transport, and with it the authenticator's thread.
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  void* handle() const { return handle_; }

  // Who answers for nodes that ask for keys: started when first asked for. Null, and a text kept,
  // when it cannot be.
  Authenticator* authenticator();

 private:
  void* handle_;
  std::mutex mutex_;  // guards the starting
  std::unique_ptr<Authenticator> authenticator_;
};

// Used by one thread at a time.
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
class Message {
 public:
  Message() { zmq_msg_init(&message_); }
  ~Message() { zmq_msg_close(&message_); }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  // Replaces an empty message by one of `size` bytes, contents undefined.
  [[nodiscard]] bool allocate(size_t size) {
    if (zmq_msg_init_size(&message_, size) != 0) {
      zmq_msg_init(&message_);
      return false;
    }
    return true;
  }

  // Makes this message share the bytes of `other`, which must not be written any more.
  [[nodiscard]] bool share(Message& other) { return zmq_msg_copy(&message_, &other.message_) == 0; }

  uint8_t* data() { return static_cast<uint8_t*>(zmq_msg_data(&message_)); }
  size_t size() const { return zmq_msg_size(&message_); }
  bool more() const { return zmq_msg_more(&message_) != 0; }
  zmq_msg_t* raw() { return &message_; }

 private:
  zmq_msg_t message_;
};

// A result for the failure of a ZeroMQ call, from its errno.
[[nodiscard]] mesh_result failFromTransport(const char* what);

// A PAIR socket that reads the `events` of `watched`; closed on failure.
[[nodiscard]] Socket watchEvents(Context& context, Socket& watched, int events);

// Ends watchEvents, if it is going on, before `watched` is closed: the transport's own thread would
// wait for ever to tell an event to a watcher that is gone.
void stopWatching(Socket& watched, Socket& watcher);

struct TransportEvent {
  uint16_t number;
  uint32_t value;  // a file's number, or an error's
};

// Takes one event without waiting, when there is one.
[[nodiscard]] std::optional<TransportEvent> nextEvent(Socket& watcher);

}  // namespace zarnimesh
