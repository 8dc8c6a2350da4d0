#include "middleware.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "inspect/bytes/failure.hpp"

namespace tool {
namespace {

constexpr const char* libraryName = "libzarnimesh.so";

// The library is installed in a directory that the loader does not search.
std::string installedLibrary() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  const auto path = program.parent_path() / ".." / MESH_L2VPN_WORKSTATION_LIBDIR / libraryName;
  return std::filesystem::exists(path, error) ? path.string() : libraryName;
}

void* load(const std::string& library) {
  const std::string path = library.empty() ? installedLibrary() : library;
  // Local: only this handle finds its functions.
  void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw Failure(Cause::System, std::string("cannot load the middleware: ") + dlerror() +
                                     "; set --middleware or MESH_L2VPN_MIDDLEWARE");
  }
  return handle;
}

}  // namespace

struct Node::Functions {
  explicit Functions(void* handle) {
    find(handle, "MESH_SendToMsg", send);
    find(handle, "mesh_node_open", open);
    find(handle, "mesh_node_close", close);
    find(handle, "mesh_node_receive_tables", receiveTables);
    find(handle, "mesh_node_free_tables", freeTables);
    find(handle, "mesh_node_stats", stats);
    find(handle, "mesh_result_text", resultText);
    find(handle, "mesh_node_last_error", lastError);
  }

  template <typename Function>
  static void find(void* handle, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(handle, name));
    if (function == nullptr) {
      throw Failure(Cause::System, std::string("the middleware has no ") + name);
    }
  }

  [[noreturn]] void fail(const std::string& what, uint32_t result) const {
    const std::string more = lastError();
    throw Failure(Cause::System,
                  what + ": " + (more.empty() ? std::string(resultText(result)) : more));
  }

  decltype(&MESH_SendToMsg) send = nullptr;
  decltype(&mesh_node_open) open = nullptr;
  decltype(&mesh_node_close) close = nullptr;
  decltype(&mesh_node_receive_tables) receiveTables = nullptr;
  decltype(&mesh_node_free_tables) freeTables = nullptr;
  decltype(&mesh_node_stats) stats = nullptr;
  decltype(&mesh_result_text) resultText = nullptr;
  decltype(&mesh_node_last_error) lastError = nullptr;
};

Node::Node(const std::string& library, uint32_t address)
    : functions_(std::make_unique<Functions>(load(library))), address_(address) {
  const uint32_t result = functions_->open(address, nullptr, &node_);
  if (result != MESH_OK) {
    functions_->fail("node " + std::to_string(address), result);
  }
}

Node::~Node() {
  if (node_ != nullptr) {
    functions_->close(node_);
  }
}

void Node::close() {
  const uint32_t result = functions_->close(node_);
  node_ = nullptr;
  if (result != MESH_OK) {
    functions_->fail("closing", result);
  }
}

void Node::send(uint32_t destination, uint32_t id, std::span<const uint8_t> table, uint64_t extra) {
  const mesh_msg_desc descriptor = {reinterpret_cast<uintptr_t>(table.data()), id,
                                    static_cast<uint32_t>(table.size())};
  const uint32_t result = functions_->send(destination, &descriptor, 1, extra);
  if (result != MESH_OK) {
    functions_->fail("sending to node " + std::to_string(destination), result);
  }
}

bool Node::receive(int timeoutMs, const std::function<void(const Table&)>& handler) {
  mesh_tables tables{};
  const int64_t count = functions_->receiveTables(node_, timeoutMs, &tables);
  const std::unique_ptr<mesh_tables, decltype(&mesh_node_free_tables)> owner(
      &tables, functions_->freeTables);
  for (const mesh_received& received : std::span(tables.received, tables.count)) {
    handler({nowInNanoseconds(),
             received.source,
             address_,
             received.msg_id,
             received.extra,
             {received.table, received.table_length},
             missedBefore(received)});
  }
  if (count < 0) {
    functions_->fail("receiving", static_cast<uint32_t>(-count));
  }
  return count > 0;
}

// The node's counters include calls that it has taken and not yet handed over. Only the numbers of
// the calls tell where a gap is. What was missed before a sender's first call only the counters
// tell.
uint64_t Node::missedBefore(const mesh_received& received) {
  if (senders_.size() == mostSenders && !senders_.contains(received.source)) {
    senders_.clear();
  }
  Sender& sender = senders_[received.source];
  uint64_t missed = 0;
  if (received.after_gap != 0 && received.incarnation != sender.incarnation) {
    const uint64_t all = statistics().missed_before_first;
    missed = all - std::min(all, missedBeforeFirst_);
    missedBeforeFirst_ = all;
  } else if (received.after_gap != 0 && received.sequence > sender.sequence) {
    missed = received.sequence - sender.sequence - 1;
  }
  sender = {received.incarnation, received.incarnation == sender.incarnation
                                      ? std::max(sender.sequence, received.sequence)
                                      : received.sequence};
  return missed;
}

mesh_node_statistics Node::statistics() const {
  mesh_node_statistics statistics{};
  functions_->stats(node_, &statistics);
  return statistics;
}

uint64_t Node::missedCalls() const {
  const mesh_node_statistics counted = statistics();
  return counted.lost_calls + counted.missed_before_first;
}

uint32_t sendingAddress(uint32_t wanted) {
  return wanted != 0 ? wanted : 0xF0000000 | static_cast<uint32_t>(getpid());
}

}  // namespace tool
