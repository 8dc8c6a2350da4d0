// The exported functions of zarnimesh/node.h.
#include "zarnimesh/node.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "zarnimesh/api/export.hpp"
#include "zarnimesh/api/guarded.hpp"
#include "zarnimesh/node/caretaker.hpp"
#include "zarnimesh/node/hooks.hpp"

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
  auto node = std::make_shared<Node>(address);
  if (const mesh_result result = node->open(options); result != MESH_OK) {
    return result;
  }
  try {
    addNode(node);
    Caretaker::instance().add(node);
  } catch (...) {
    // No memory or no thread: nothing remains of the node.
    static_cast<void>(removeNode(*node));
    mesh_node_statistics none;
    static_cast<void>(node->close(none));
    Caretaker::instance().remove(*node);
    throw;
  }
  *out = handleOf(*node);
  return MESH_OK;
}

// What mesh_node_receive_tables hands out.
struct Tables {
  std::vector<mesh_received> received;
  std::vector<uint8_t> bytes;
};

// A mesh_record_handler. The bytes move while they grow: `table` is set at the end.
void collect(const mesh_received* received, void* user) {
  auto& tables = *static_cast<Tables*>(user);
  tables.bytes.insert(tables.bytes.end(), received->table,
                      received->table + received->table_length);
  tables.received.push_back(*received);
}

void handOut(std::unique_ptr<Tables> tables, mesh_tables& out) {
  const uint8_t* table = tables->bytes.data();
  for (mesh_received& received : tables->received) {
    received.table = table;
    table += received.table_length;
  }
  out.received = tables->received.data();
  out.count = tables->received.size();
  out.owner = tables.release();
}

// Holds a node's receiver during its own lifetime.
class ReceiverHold {
 public:
  ReceiverHold(Node& node, const char* frame) : node_(node), held_(node.takeReceiver(frame)) {}
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

[[nodiscard]] mesh_result receiveAt(const char* frame, mesh_node* handle, int32_t timeoutMs,
                                    const Handler& handler, int64_t& delivered) {
  // A handler may leave by longjmp: nothing on this stack owns anything then.
  Node* const node = findNode(handle).get();
  if (node == nullptr) {
    return noSuchNode();
  }
  const ReceiverHold hold(*node, frame);
  if (!hold) {
    return busy();
  }
  Receiver* const receiver = &node->receiver();
  delivered = receiveAny({&receiver, 1}, timeoutMs, handler);
  return MESH_OK;
}

[[nodiscard]] mesh_result receiveAtAny(const char* frame, std::span<mesh_node* const> handles,
                                       int32_t timeoutMs, const Handler& handler,
                                       int64_t& delivered) {
  std::vector<std::shared_ptr<Node>> nodes;
  std::deque<ReceiverHold> holds;
  std::vector<Receiver*> receivers;
  for (mesh_node* const handle : handles) {
    nodes.push_back(findNode(handle));
    if (nodes.back() == nullptr) {
      return noSuchNode();
    }
    if (std::find(nodes.begin(), nodes.end() - 1, nodes.back()) != nodes.end() - 1) {
      return fail(MESH_BAD_ARGUMENT, "a node is there twice");
    }
    if (!holds.emplace_back(*nodes.back(), frame)) {
      return busy();
    }
    receivers.push_back(&nodes.back()->receiver());
  }
  delivered = receiveAny(receivers, timeoutMs, handler);
  return MESH_OK;
}

[[nodiscard]] mesh_result closeNode(const char* frame, mesh_node* handle,
                                    mesh_node_statistics* last) {
  const std::shared_ptr<Node> node = findNode(handle);
  if (node == nullptr) {
    return noSuchNode();
  }
  if (!node->takeReceiver(frame)) {
    return busy();
  }
  const bool wasLast = removeNode(*node);
  // The receiver may be a node of this process: the caretaker answers for it.
  mesh_node_statistics counters;
  const uint64_t missing = node->close(counters);
  if (last != nullptr) {
    *last = counters;
  }
  Caretaker::instance().remove(*node);
  // Only now: until then the caretaker may be in the hook.
  node->tellOfPeers();
  if (wasLast) {
    callCleanHooks();
  }
  // The text comes last: hooks may have failed meanwhile.
  return missing == 0 ? MESH_OK
                      : fail(MESH_UNDELIVERED, "%llu sent calls are not known to have arrived",
                             static_cast<unsigned long long>(missing));
}

}  // namespace

ZARNIMESH_EXPORT void mesh_node_options_default(mesh_node_options* options) {
  if (options != nullptr) {
    *options = {.transport = MESH_TRANSPORT_IPC,
                .address_book = nullptr,
                .runtime_directory = nullptr,
                .key_file = nullptr,
                .send_queue_calls = 1024,
                .receive_queue_calls = 1024,
                .connect_timeout_ms = 2000,
                .send_timeout_ms = 5000,
                .linger_ms = 2000,
                .payload_limit = 64u << 20,
                .unknown = nullptr,
                .unknown_user = nullptr,
                .queue_bytes = 64u << 20,
                .heartbeat_ms = 5000,
                .io_threads = 1,
                .peer = nullptr,
                .peer_user = nullptr};
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
  const char* const frame = exportedFrame();
  return guarded([&] { return closeNode(frame, handle, nullptr); });
}

ZARNIMESH_EXPORT mesh_result mesh_node_close_counted(mesh_node* handle,
                                                     mesh_node_statistics* last) {
  const char* const frame = exportedFrame();
  return guarded([&] { return closeNode(frame, handle, last); });
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
  const char* const frame = exportedFrame();
  int64_t delivered = 0;
  const mesh_result result = guarded([&] {
    return receiveAt(frame, handle, timeout_ms, {.function = handler, .user = user}, delivered);
  });
  return result == MESH_OK ? delivered : -int64_t{result};
}

ZARNIMESH_EXPORT int64_t mesh_node_receive_any(mesh_node* const* handles, uint32_t count,
                                               int32_t timeout_ms, mesh_record_handler handler,
                                               void* user) {
  const char* const frame = exportedFrame();
  int64_t delivered = 0;
  const mesh_result result = guarded([&] {
    if (handles == nullptr || count == 0) {
      return fail(MESH_BAD_ARGUMENT, "no nodes");
    }
    return receiveAtAny(frame, {handles, count}, timeout_ms, {.function = handler, .user = user},
                        delivered);
  });
  return result == MESH_OK ? delivered : -int64_t{result};
}

ZARNIMESH_EXPORT int64_t mesh_node_receive_tables(mesh_node* handle, int32_t timeout_ms,
                                                  mesh_tables* out) {
  const char* const frame = exportedFrame();
  int64_t delivered = 0;
  std::unique_ptr<Tables> tables;
  const mesh_result result = guarded([&] {
    if (out == nullptr) {
      return fail(MESH_BAD_ARGUMENT, "out is null");
    }
    *out = {};
    tables = std::make_unique<Tables>();
    return receiveAt(frame, handle, timeout_ms,
                     {.function = collect, .user = tables.get(), .decodes = false}, delivered);
  });
  if (tables != nullptr && !tables->received.empty()) {
    handOut(std::move(tables), *out);
  }
  return result == MESH_OK ? delivered : -int64_t{result};
}

ZARNIMESH_EXPORT void mesh_node_free_tables(mesh_tables* tables) {
  if (tables != nullptr) {
    delete static_cast<Tables*>(tables->owner);
    *tables = {};
  }
}

ZARNIMESH_EXPORT int32_t mesh_node_descriptor(mesh_node* handle, uint32_t* pending) {
  int32_t file = -1;
  const mesh_result result = guarded([&] {
    const std::shared_ptr<Node> node = findNode(handle);
    if (node == nullptr) {
      return noSuchNode();
    }
    if (pending != nullptr) {
      *pending = static_cast<uint32_t>(node->receiver().waiting());
    }
    file = node->receiver().callersFile();
    return file >= 0 ? MESH_OK : fail(MESH_SYSTEM_ERROR, "no descriptor: %s", std::strerror(errno));
  });
  return result == MESH_OK ? file : -int32_t{result};
}

ZARNIMESH_EXPORT mesh_result mesh_node_send(mesh_node* handle, uint32_t destination,
                                            const mesh_msg_desc* descriptors, uint32_t count,
                                            uint64_t extra, int32_t timeout_ms) {
  const char* const frame = exportedFrame();
  return guarded([&] {
    Node* const node = findNode(handle).get();
    return node == nullptr ? noSuchNode()
                           : node->send(frame, destination, descriptors, count, extra, timeout_ms);
  });
}

ZARNIMESH_EXPORT mesh_result mesh_node_peers(mesh_node* handle, mesh_peer_statistics* out,
                                             uint32_t capacity, uint32_t* count) {
  return guarded([&] {
    if ((out == nullptr && capacity > 0) || count == nullptr) {
      return fail(MESH_BAD_ARGUMENT, "out or count is null");
    }
    const std::shared_ptr<Node> node = findNode(handle);
    if (node == nullptr) {
      return noSuchNode();
    }
    *count = 0;
    for (const auto& [address, peer] : node->peers()) {
      if (*count < capacity) {
        out[*count] = peer;
      }
      ++*count;
    }
    return MESH_OK;
  });
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
    case MESH_UNDELIVERED:
      return "some sent calls are not known to have arrived";
    default:
      return "unknown result";
  }
}

ZARNIMESH_EXPORT const char* mesh_node_last_error(void) {
  return lastError();
}
