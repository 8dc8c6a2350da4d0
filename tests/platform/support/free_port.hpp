// Ports of 127.0.0.1.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace platform_test {

inline sockaddr_in loopback(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// A port that is currently free.
inline uint16_t freePort() {
  const int file = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = loopback(0);
  socklen_t length = sizeof address;
  if (bind(file, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      getsockname(file, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("no free port");
  }
  close(file);
  return ntohs(address.sin_port);
}

inline std::string tcpEndpoint(uint16_t port) {
  return "tcp://127.0.0.1:" + std::to_string(port);
}

}  // namespace platform_test
