// The exported functions of zarnimesh/node.h.
#include "zarnimesh/node.h"

#include "zarnimesh/api/export.hpp"
#include "zarnimesh/api/guarded.hpp"
#include "zarnimesh/node/hooks.hpp"
#include "zarnimesh/node/node_registry.hpp"

namespace {

using namespace zarnimesh;

[[nodiscard]] mesh_result noSuchNode() {
  return fail(MESH_NOT_OPEN, "not an open node of this process");
}

[[nodiscard]] mesh_result busy() {
  return fail(MESH_BUSY, "another thread is receiving on the node");
}

[[nodiscard]] mesh_result openNode(uint32_t address, const mesh_node_options& options,
                                   mesh_node** out) {
  if (hasNodesOfAnotherProcess()) {
    return fail(MESH_NOT_OPEN,
                "this process is a forked child of one with open nodes; call exec first");
  }
  auto node = std::make_shared<Node>(address);
  if (const mesh_result result = node->open(options); result != MESH_OK) {
    return result;
  }
  addNode(node);
  *out = handleOf(*node);
  return MESH_OK;
}

// Holds a node's receiver during its own lifetime.
class ReceiverHold {
 public:
  explicit ReceiverHold(Node& node) : node_(node), held_(node.takeReceiver()) {}
  ~ReceiverHold() {
    if (held_) {
      node_.giveReceiverBack();
    }
  }
  ReceiverHold(const ReceiverHold&) = delete;
  ReceiverHold& operator=(const ReceiverHold&) = delete;

  explicit operator bool() const { return held_; }

 private:
  Node& node_;
  const bool held_;
};

}  // namespace

ZARNIMESH_EXPORT void mesh_node_options_default(mesh_node_options* options) {
  if (options != nullptr) {
    *options = {.transport = MESH_TRANSPORT_IPC,
                .address_book = nullptr,
                .runtime_directory = nullptr,
                .key_file = nullptr,
                .send_queue_calls = 64,
                .receive_queue_calls = 64,
                .connect_timeout_ms = 2000,
                .send_timeout_ms = 5000,
                .linger_ms = 2000,
                .payload_limit = 64u << 20,
                .unknown = nullptr,
                .unknown_user = nullptr};
  }
}

ZARNIMESH_EXPORT mesh_result mesh_node_open(uint32_t address, const mesh_node_options* options,
                                            mesh_node** out) {
  return guarded([&] {
    if (out == nullptr) {
      return fail(MESH_BAD_ARGUMENT, "out is null");
    }
    *out = nullptr;
    mesh_node_options defaults;
    mesh_node_options_default(&defaults);
    return openNode(address, options != nullptr ? *options : defaults, out);
  });
}

ZARNIMESH_EXPORT mesh_result mesh_node_close(mesh_node* handle) {
  return guarded([&] {
    const std::shared_ptr<Node> node = findNode(handle);
    if (node == nullptr) {
      return noSuchNode();
    }
    if (!node->takeReceiver()) {
      return busy();
    }
    const bool last = removeNode(*node);
    node->close();
    if (last) {
      callCleanHooks();
    }
    return MESH_OK;
  });
}

ZARNIMESH_EXPORT mesh_result mesh_node_attach(mesh_node* handle) {
  return guarded([&] {
    const std::shared_ptr<Node> node = handle != nullptr ? findNode(handle) : nullptr;
    if (handle != nullptr && node == nullptr) {
      return noSuchNode();
    }
    attachToThread(node);
    return MESH_OK;
  });
}

ZARNIMESH_EXPORT int64_t mesh_node_receive(mesh_node* handle, int32_t timeout_ms,
                                           mesh_record_handler handler, void* user) {
  int64_t delivered = 0;
  const mesh_result result = guarded([&] {
    const std::shared_ptr<Node> node = findNode(handle);
    if (node == nullptr) {
      return noSuchNode();
    }
    const ReceiverHold hold(*node);
    if (!hold) {
      return busy();
    }
    delivered = node->receiver().receive(timeout_ms, {.function = handler, .user = user});
    return MESH_OK;
  });
  return result == MESH_OK ? delivered : -int64_t{result};
}

ZARNIMESH_EXPORT mesh_result mesh_node_stats(mesh_node* handle, mesh_node_statistics* out) {
  return guarded([&] {
    if (out == nullptr) {
      return fail(MESH_BAD_ARGUMENT, "out is null");
    }
    const std::shared_ptr<Node> node = findNode(handle);
    if (node == nullptr) {
      return noSuchNode();
    }
    *out = node->statistics();
    return MESH_OK;
  });
}

ZARNIMESH_EXPORT const char* mesh_result_text(uint32_t result) {
  switch (result) {
    case MESH_OK:
      return "success";
    case MESH_NO_DESTINATION:
      return "no such destination";
    case MESH_QUEUE_FULL:
      return "the destination's queue is full";
    case MESH_NOT_OPEN:
      return "node not open";
    case MESH_REFUSED:
      return "message refused";
    case MESH_ADDRESS_IN_USE:
      return "address in use";
    case MESH_OUT_OF_MEMORY:
      return "out of memory";
    case MESH_SYSTEM_ERROR:
      return "system error";
    case MESH_BAD_ARGUMENT:
      return "bad argument";
    case MESH_BUSY:
      return "another thread is receiving";
    case MESH_BAD_CONFIGURATION:
      return "bad configuration";
    default:
      return "unknown result";
  }
}

ZARNIMESH_EXPORT const char* mesh_node_last_error(void) {
  return lastError();
}
