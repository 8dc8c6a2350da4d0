// Who may connect to the nodes of this process that ask for keys.
#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>

#include "zarnimesh/configuration/key_ring.hpp"

namespace zarnimesh {

// Answers the transport's questions about connecting peers (its ZAP protocol) on a thread of its
// own, for as long as its context lives. (Where nobody answers the transport lets everyone in, but
// names nobody, and receivers take no message without a name.)
class Authenticator {
 public:
  // Binary public keys, and the node that each belongs to.
  using Known = std::unordered_map<std::string, uint32_t>;

  ~Authenticator();

  // `context` is the transport's. Once.
  [[nodiscard]] mesh_result start(void* context);

  // A name for the nodes that `known` may connect to, until it is removed.
  std::string addDomain(Known known);
  void removeDomain(const std::string& name);

 private:
  void serve(void* socket);
  // The address of the node that the key belongs to, as text; empty when it may not connect.
  std::string nodeOf(const std::string& domain, const std::string& key);

  std::mutex mutex_;  // guards the domains
  std::unordered_map<std::string, Known> domains_;
  uint64_t latest_ = 0;
  std::thread thread_;
};

// All that may connect to a node: those whose keys it has, and itself.
Authenticator::Known knownTo(const KeyRing& keys, uint32_t ownAddress);

}  // namespace zarnimesh
