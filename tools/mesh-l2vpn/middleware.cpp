#include "middleware.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>

#include "inspect/bytes/failure.hpp"
#include "inspect/messages/messages.hpp"

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

// The commands need the table, not the record.
uint32_t unpackNothing(const uint8_t* /*data*/, uint32_t /*length*/, void* /*record*/) {
  return 0;
}

void freeNothing(void* /*record*/) {}

}  // namespace

struct Node::Functions {
  explicit Functions(void* handle) {
    find(handle, "MESH_SendToMsg", send);
    find(handle, "MESH_RegIDLFuncHook", registerHook);
    find(handle, "mesh_node_options_default", defaults);
    find(handle, "mesh_node_open", open);
    find(handle, "mesh_node_close", close);
    find(handle, "mesh_node_receive", receive);
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
  decltype(&MESH_RegIDLFuncHook) registerHook = nullptr;
  decltype(&mesh_node_options_default) defaults = nullptr;
  decltype(&mesh_node_open) open = nullptr;
  decltype(&mesh_node_close) close = nullptr;
  decltype(&mesh_node_receive) receive = nullptr;
  decltype(&mesh_node_stats) stats = nullptr;
  decltype(&mesh_result_text) resultText = nullptr;
  decltype(&mesh_node_last_error) lastError = nullptr;
};

Node::Node(const std::string& library, uint32_t address)
    : functions_(std::make_unique<Functions>(load(library))), address_(address) {
  for (const KnownMessage& message : messages()) {
    functions_->registerHook(message.id(), &unpackNothing, &freeNothing);
  }
  mesh_node_options options;
  functions_->defaults(&options);
  options.unknown = &takeUnknown;
  options.unknown_user = this;
  const uint32_t result = functions_->open(address, &options, &node_);
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
  handler_ = &handler;
  const int64_t count = functions_->receive(node_, timeoutMs, &takeRecord, this);
  handler_ = nullptr;
  if (!failure_.empty()) {
    throw Failure(Cause::System, failure_);
  }
  if (count < 0) {
    functions_->fail("receiving", static_cast<uint32_t>(-count));
  }
  return count > 0;
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

void Node::takeRecord(const mesh_received* received, void* self) {
  static_cast<Node*>(self)->take(received->source, received->msg_id,
                                 {received->table, received->table_length}, received->extra);
}

void Node::takeUnknown(uint32_t source, uint32_t id, const uint8_t* data, uint32_t length,
                       uint64_t extra, void* self) {
  static_cast<Node*>(self)->take(source, id, {data, length}, extra);
}

// Exceptions must not pass through the middleware: receive() throws this one again.
void Node::take(uint32_t source, uint32_t id, std::span<const uint8_t> bytes, uint64_t extra) {
  if (!failure_.empty() || handler_ == nullptr) {
    return;
  }
  try {
    const uint64_t missed = missedCalls();
    (*handler_)({nowInNanoseconds(), source, address_, id, extra, bytes, missed - missedSoFar_});
    missedSoFar_ = missed;
  } catch (const std::exception& error) {
    failure_ = error.what();
  }
}

uint32_t sendingAddress(uint32_t wanted) {
  return wanted != 0 ? wanted : 0xF0000000 | static_cast<uint32_t>(getpid());
}

}  // namespace tool
