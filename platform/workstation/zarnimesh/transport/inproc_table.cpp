#include "zarnimesh/transport/inproc_table.hpp"

namespace zarnimesh {

InprocTable& InprocTable::instance() {
  // Never destroyed: a thread may still send while the process exits.
  static InprocTable& table = *new InprocTable;
  return table;
}

bool InprocTable::add(const std::string& name, uint64_t generation) {
  const std::lock_guard lock(mutex_);
  if (!generations_.emplace(name, generation).second) {
    return false;
  }
  version_.fetch_add(1);
  return true;
}

void InprocTable::remove(const std::string& name) {
  const std::lock_guard lock(mutex_);
  generations_.erase(name);
  version_.fetch_add(1);
}

std::optional<uint64_t> InprocTable::find(const std::string& name) {
  const std::lock_guard lock(mutex_);
  const auto found = generations_.find(name);
  if (found == generations_.end()) {
    return std::nullopt;
  }
  return found->second;
}

std::string InprocTable::boundEndpoint(const std::string& name, uint64_t generation) {
  return "inproc://zarnimesh/" + name + "#" + std::to_string(generation);
}

}  // namespace zarnimesh
