// The receiving end of a node: the bound socket, and what makes it the only one at its endpoint.
#pragma once

#include <memory>
#include <optional>

#include "zarnimesh/configuration/settings.hpp"
#include "zarnimesh/transport/address_lock.hpp"
#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// Opened and closed once, and used by one thread at a time.
class Listener {
 public:
  ~Listener() { close(); }

  // Owns the endpoint of `address` from now on.
  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context, const Settings& settings,
                                 uint32_t address);

  // Gives the endpoint up: it can be opened again at once, by anyone.
  void close();

  Socket& socket() { return socket_; }
  const Endpoint& endpoint() const { return endpoint_; }

 private:
  [[nodiscard]] mesh_result claim();
  [[nodiscard]] mesh_result openSocket(const Settings& settings, uint32_t address);
  [[nodiscard]] mesh_result listenOnIpc();
  [[nodiscard]] mesh_result askForKeys(const KeyRing& keys, uint32_t address);
  void stopListening();

  std::shared_ptr<Context> context_;
  Endpoint endpoint_;
  std::string bound_;                   // as given to the transport; empty when not bound
  std::optional<uint64_t> generation_;  // inproc
  AddressLock lock_;                    // ipc
  std::string domain_;                  // tcp with keys: of those who may connect
  Socket socket_;
};

}  // namespace zarnimesh
