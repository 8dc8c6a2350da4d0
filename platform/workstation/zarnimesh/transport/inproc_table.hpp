// Which nodes of this process receive over inproc. The transport itself cannot tell: it lets anyone
// connect to a name that nobody has bound yet.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace zarnimesh {

class InprocTable {
 public:
  // The process's one.
  static InprocTable& instance();

  // The generation of the node that receives at the name from now on; nothing when one does
  // already.
  std::optional<uint64_t> add(const std::string& name);
  void remove(const std::string& name);

  std::optional<uint64_t> find(const std::string& name);
  // Waits for a node to receive at the name.
  void waitFor(const std::string& name, std::chrono::milliseconds atMost);

  // What the transport binds and connects: each generation has a name of its own, so that a late
  // sender cannot reach the successor of the node it looked up.
  static std::string boundEndpoint(const std::string& name, uint64_t generation);

 private:
  std::mutex mutex_;  // guards all below
  std::condition_variable added_;
  std::unordered_map<std::string, uint64_t> generations_;
  uint64_t latest_ = 0;
};

}  // namespace zarnimesh
