#include "zarnimesh/node/node_registry.hpp"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace zarnimesh {
namespace {

struct Registry {
  std::mutex mutex;                          // guards nodes
  std::vector<std::shared_ptr<Node>> nodes;  // in order of opening
};

// Never destroyed: a thread may still send while the process exits. Nodes that are still open end
// with the process.
Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

// Changes whenever the open nodes change. Threads remember what they found until then.
std::atomic<uint64_t> version = 1;

std::atomic<bool> hasNodes = false;
std::atomic<bool> forkedChild = false;

// Requires the registry's mutex. Null as for findNode.
std::shared_ptr<Node> findLocked(const Node* wanted) {
  const auto& nodes = registry().nodes;
  const auto found = std::find_if(nodes.begin(), nodes.end(),
                                  [&](const auto& node) { return node.get() == wanted; });
  return found != nodes.end() ? *found : nullptr;
}

// Null as for sendingNode.
std::shared_ptr<Node> findSending(bool attached, const std::weak_ptr<Node>& attachment) {
  const std::lock_guard lock(registry().mutex);
  if (attached) {
    const std::shared_ptr<Node> node = attachment.lock();
    return node == nullptr ? nullptr : findLocked(node.get());
  }
  const auto& nodes = registry().nodes;
  return nodes.empty() ? nullptr : nodes.front();
}

// What a thread has found.
struct Thread {
  bool attached = false;
  std::weak_ptr<Node> attachment;

  uint64_t sendingVersion = 0;
  std::weak_ptr<Node> sending;

  uint64_t foundVersion = 0;
  const mesh_node* handle = nullptr;
  std::weak_ptr<Node> found;
};

Thread& thisThread() {
  static thread_local Thread thread;
  return thread;
}

}  // namespace

mesh_node* handleOf(const Node& node) {
  return reinterpret_cast<mesh_node*>(const_cast<Node*>(&node));
}

bool isForkedChild() {
  return forkedChild.load(std::memory_order_relaxed);
}

void addNode(std::shared_ptr<Node> node) {
  static const int watching = pthread_atfork(nullptr, nullptr, [] {
    if (hasNodes.load()) {
      forkedChild.store(true);
    }
  });
  static_cast<void>(watching);
  const std::lock_guard lock(registry().mutex);
  registry().nodes.push_back(std::move(node));
  hasNodes.store(true);
  version.fetch_add(1);
}

std::shared_ptr<Node> findNode(const mesh_node* handle) {
  Thread& thread = thisThread();
  const uint64_t current = version.load();
  if (thread.foundVersion != current || thread.handle != handle) {
    const std::lock_guard lock(registry().mutex);
    thread.found = findLocked(reinterpret_cast<const Node*>(handle));
    thread.handle = handle;
    thread.foundVersion = current;
  }
  return thread.found.lock();
}

bool removeNode(const Node& node) {
  const std::lock_guard lock(registry().mutex);
  std::erase_if(registry().nodes, [&](const auto& other) { return other.get() == &node; });
  version.fetch_add(1);
  hasNodes.store(!registry().nodes.empty());
  return registry().nodes.empty();
}

void attachToThread(const std::shared_ptr<Node>& node) {
  Thread& thread = thisThread();
  thread.attached = node != nullptr;
  thread.attachment = node;
  thread.sendingVersion = 0;
}

std::shared_ptr<Node> sendingNode() {
  Thread& thread = thisThread();
  const uint64_t current = version.load();
  if (thread.sendingVersion != current) {
    thread.sending = findSending(thread.attached, thread.attachment);
    thread.sendingVersion = current;
  }
  return thread.sending.lock();
}

}  // namespace zarnimesh
