// Decides which peers may connect to this process's nodes with keys.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Answers ZeroMQ's authentication requests (ZAP protocol) on its own thread until its context ends.
// Without an answer ZeroMQ accepts every peer but does not name it. Receivers drop messages of
// peers without a name.
class Authenticator {
 public:
  // The node address of each binary public key.
  using Known = std::unordered_map<std::string, uint32_t>;

  ~Authenticator();

  // `context` is ZeroMQ's context. Called once.
  [[nodiscard]] mesh_result start(void* context);

  // Registers the keys that may connect and returns the name of their domain.
  std::string addDomain(Known known);
  void removeDomain(const std::string& name);

 private:
  void serve(void* socket);
  // The address of the key's node, as text. Empty when the key may not connect.
  std::string nodeOf(const std::string& domain, const std::string& key);

  std::mutex mutex_;  // guards domains_ and latest_
  std::unordered_map<std::string, Known> domains_;
  uint64_t latest_ = 0;
  std::thread thread_;
};

}  // namespace zarnimesh
