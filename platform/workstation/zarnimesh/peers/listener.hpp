// A node's bound socket, and its exclusive claim to the endpoint.
#pragma once

#include <memory>

#include "zarnimesh/configuration/settings.hpp"
#include "zarnimesh/transport/address_lock.hpp"
#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/ipc_socket.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// For one thread at a time. Opened and closed once.
class Listener {
 public:
  ~Listener() { close(); }

  // Claims the endpoint of `address` and binds to it.
  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context, const Settings& settings,
                                 uint32_t address);

  // ipc: listens again when somebody removed the socket's file or its lock. Fails when another node
  // claimed the endpoint meanwhile.
  [[nodiscard]] mesh_result listenAgain();

  // Ends all connections.
  void stopListening();

  // Releases the endpoint. Any process can then bind to it at once.
  void close();

  bool isOpen() const { return static_cast<bool>(socket_); }
  Socket& socket() { return socket_; }
  const Endpoint& endpoint() const { return endpoint_; }

 private:
  [[nodiscard]] mesh_result claim();
  [[nodiscard]] mesh_result openSocket(const Settings& settings, uint32_t address);
  [[nodiscard]] mesh_result bind();
  [[nodiscard]] mesh_result listenOnIpc();
  [[nodiscard]] mesh_result requireKeys(const KeyRing& keys, uint32_t address);

  std::shared_ptr<Context> context_;
  Endpoint endpoint_;
  std::string bound_;       // as passed to zmq_bind; empty when not bound
  bool isInTable_ = false;  // inproc
  AddressLock lock_;        // ipc
  SocketFile file_{};       // ipc
  std::string domain_;      // tcp with keys: names the keys that may connect
  Socket socket_;
};

}  // namespace zarnimesh
