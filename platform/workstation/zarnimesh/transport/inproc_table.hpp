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

  // For a new receiver.
  uint64_t newGeneration() { return latest_.fetch_add(1) + 1; }

  // Adds a receiver. Its socket must be bound before, and until it is removed. False when the name
  // is in use.
  [[nodiscard]] bool add(const std::string& name, uint64_t generation);
  void remove(const std::string& name);

  std::optional<uint64_t> find(const std::string& name);

  // Changes whenever a receiver comes or goes.
  uint64_t version() const { return version_.load(); }

  // The endpoint for ZeroMQ. Each generation has its own, so that a late sender cannot reach the
  // successor of the node that it looked up.
  static std::string boundEndpoint(const std::string& name, uint64_t generation);

 private:
  std::atomic<uint64_t> latest_ = 0;
  std::atomic<uint64_t> version_ = 0;
  std::mutex mutex_;  // guards the member below
  std::unordered_map<std::string, uint64_t> generations_;
};

}  // namespace zarnimesh
