// A connection that implements ZeroMQ's protocol (ZMTP 3.0 without security). It can begin a
// message and never end it, which ZeroMQ's own sockets cannot.
#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "support/free_port.hpp"

namespace platform_test {

class RawConnection {
 public:
  explicit RawConnection(uint16_t port) : file_(socket(AF_INET, SOCK_STREAM, 0)) {
    begin(loopback(port));
  }
  // Over a Unix socket.
  explicit RawConnection(const std::string& path) : file_(socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    begin(address);
  }
  ~RawConnection() { close(file_); }
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  // Sends a part. `more` says that another part follows. False when the peer has closed the
  // connection, or has read nothing for five seconds.
  bool sendPart(const std::string& bytes, bool more) {
    return send(head(bytes.size(), more)) && send(bytes);
  }

  // Sends a message of `size` bytes up to the end of `begin`.
  bool beginPart(size_t size, const std::string& begin) {
    return send(head(size, false)) && send(begin);
  }

  bool send(const std::string& bytes) {
    for (size_t at = 0; at < bytes.size();) {
      pollfd room{.fd = file_, .events = POLLOUT | POLLRDHUP, .revents = 0};
      if (poll(&room, 1, 5000) != 1 || room.revents != POLLOUT) {
        return false;
      }
      const ssize_t sent = ::send(file_, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
      if (sent <= 0) {
        return false;
      }
      at += static_cast<size_t>(sent);
    }
    return true;
  }

 private:
  template <typename Address>
  void begin(const Address& address) {
    if (connect(file_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("no listener");
    }
    const std::string greeting =
        std::string("\xFF\0\0\0\0\0\0\0\x01\x7F\x03\0NULL", 16) + std::string(48, '\0');
    const std::string ready = std::string(
        "\x05READY\x0BSocket-Type\0\0\0\x06"
        "DEALER",
        28);
    send(greeting + std::string(1, '\x04') + static_cast<char>(ready.size()) + ready);
    // The other side accepts messages only after its own handshake.
    awaitBytes(greeting.size() + 2 + ready.size());
  }

  static std::string head(size_t size, bool more) {
    std::string bytes(1, more ? '\x03' : '\x02');
    for (int shift = 56; shift >= 0; shift -= 8) {
      bytes += static_cast<char>(size >> shift & 0xFF);
    }
    return bytes;
  }

  void awaitBytes(size_t count) {
    char byte;
    pollfd readable{.fd = file_, .events = POLLIN, .revents = 0};
    while (count > 0 && poll(&readable, 1, 5000) == 1 && recv(file_, &byte, 1, 0) == 1) {
      --count;
    }
  }

  int file_;
};

}  // namespace platform_test
