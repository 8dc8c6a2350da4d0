// Owner of one part of a multipart message.
#pragma once

#include <zmq.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace zarnimesh {

class MessagePart {
 public:
  MessagePart() { zmq_msg_init(&message_); }
  MessagePart(MessagePart&& other) noexcept : MessagePart() { *this = std::move(other); }
  MessagePart& operator=(MessagePart&& other) noexcept {
    zmq_msg_move(&message_, &other.message_);
    return *this;
  }
  ~MessagePart() { zmq_msg_close(&message_); }

  // Replaces an empty part by one of `size` bytes. Its contents are undefined.
  [[nodiscard]] bool allocate(size_t size);

  void clear() {
    zmq_msg_close(&message_);
    zmq_msg_init(&message_);
  }

  uint8_t* data() { return static_cast<uint8_t*>(zmq_msg_data(message())); }
  const uint8_t* data() const { return static_cast<const uint8_t*>(zmq_msg_data(message())); }
  size_t size() const { return zmq_msg_size(&message_); }
  std::span<const uint8_t> bytes() const { return {data(), size()}; }
  bool more() const { return zmq_msg_more(&message_) != 0; }
  zmq_msg_t* raw() { return &message_; }

 private:
  // ZeroMQ's functions do not know const.
  zmq_msg_t* message() const { return const_cast<zmq_msg_t*>(&message_); }

  zmq_msg_t message_;
};

}  // namespace zarnimesh
