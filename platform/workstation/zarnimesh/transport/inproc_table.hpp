// The nodes of this process that receive over inproc. ZeroMQ cannot tell: it lets sockets connect
// to a name that is not bound yet.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace zarnimesh {

class InprocTable {
 public:
  // The only one of the process.
  static InprocTable& instance();

  // Adds a receiver at the name and returns its generation. Nothing when the name is in use.
  std::optional<uint64_t> add(const std::string& name);
  void remove(const std::string& name);

  std::optional<uint64_t> find(const std::string& name);

  // Changes whenever a receiver comes or goes.
  uint64_t version() const { return version_.load(); }

  // The endpoint for ZeroMQ. Each generation has its own, so that a late sender cannot reach the
  // successor of the node that it looked up.
  static std::string boundEndpoint(const std::string& name, uint64_t generation);

 private:
  std::atomic<uint64_t> version_ = 0;
  std::mutex mutex_;  // guards the members below
  std::unordered_map<std::string, uint64_t> generations_;
  uint64_t latest_ = 0;
};

}  // namespace zarnimesh
