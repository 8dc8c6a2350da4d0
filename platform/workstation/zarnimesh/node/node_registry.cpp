#include "zarnimesh/node/node_registry.hpp"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace zarnimesh {
namespace {

struct Registry {
  struct Entry {
    std::shared_ptr<Node> node;
    uint64_t number;  // in order of opening
  };

  std::mutex mutex;  // guards the members below
  std::unordered_map<const Node*, Entry> nodes;
  uint64_t latest = 0;
};

// Never destroyed: a thread may still send while the process exits. Nodes that are still open end
// with the process.
Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

// Changes whenever the open nodes change. Threads remember what they found until then.
std::atomic<uint64_t> nodesVersion = 1;

std::atomic<bool> hasNodes = false;

// Requires the registry's mutex. Null as for findNode.
std::shared_ptr<Node> findLocked(const Node* wanted) {
  const auto found = registry().nodes.find(wanted);
  return found != registry().nodes.end() ? found->second.node : nullptr;
}

// Null as for sendingNode.
std::shared_ptr<Node> findSending(bool attached, const std::weak_ptr<Node>& attachment) {
  const std::lock_guard lock(registry().mutex);
  if (attached) {
    const std::shared_ptr<Node> node = attachment.lock();
    return node == nullptr ? nullptr : findLocked(node.get());
  }
  const auto& nodes = registry().nodes;
  const auto oldest = std::min_element(
      nodes.begin(), nodes.end(),
      [](const auto& a, const auto& b) { return a.second.number < b.second.number; });
  return oldest != nodes.end() ? oldest->second.node : nullptr;
}

// What a thread has found. The references cost a lookup less than weak ones. They keep a node's
// memory until the thread looks again, but not the node open.
struct Thread {
  bool attached = false;
  std::weak_ptr<Node> attachment;

  uint64_t sendingVersion = 0;
  std::shared_ptr<Node> sending;

  uint64_t foundVersion = 0;
  const mesh_node* handle = nullptr;
  std::shared_ptr<Node> found;
};

Thread& thisThread() {
  static thread_local Thread thread;
  return thread;
}

}  // namespace

mesh_node* handleOf(const Node& node) {
  return reinterpret_cast<mesh_node*>(const_cast<Node*>(&node));
}

void addNode(std::shared_ptr<Node> node) {
  static const int watching = pthread_atfork(nullptr, nullptr, [] {
    if (hasNodes.load()) {
      forkedChild.store(true);
    }
  });
  static_cast<void>(watching);
  const std::lock_guard lock(registry().mutex);
  const Node* const handle = node.get();
  registry().nodes.emplace(handle,
                           Registry::Entry{.node = std::move(node), .number = ++registry().latest});
  hasNodes.store(true);
  nodesVersion.fetch_add(1);
}

const std::shared_ptr<Node>& findNode(const mesh_node* handle) {
  Thread& thread = thisThread();
  const uint64_t current = nodesVersion.load();
  if (thread.foundVersion != current || thread.handle != handle) {
    const std::lock_guard lock(registry().mutex);
    thread.found = findLocked(reinterpret_cast<const Node*>(handle));
    thread.handle = handle;
    thread.foundVersion = current;
  }
  return thread.found;
}

bool removeNode(const Node& node) {
  const std::lock_guard lock(registry().mutex);
  registry().nodes.erase(&node);
  nodesVersion.fetch_add(1);
  hasNodes.store(!registry().nodes.empty());
  return registry().nodes.empty();
}

void attachToThread(const std::shared_ptr<Node>& node) {
  Thread& thread = thisThread();
  thread.attached = node != nullptr;
  thread.attachment = node;
  thread.sendingVersion = 0;
}

const std::shared_ptr<Node>& sendingNode() {
  Thread& thread = thisThread();
  const uint64_t current = nodesVersion.load();
  if (thread.sendingVersion != current) {
    thread.sending = findSending(thread.attached, thread.attachment);
    thread.sendingVersion = current;
  }
  return thread.sending;
}

}  // namespace zarnimesh
