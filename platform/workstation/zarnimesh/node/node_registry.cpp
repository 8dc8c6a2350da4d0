#include "zarnimesh/node/node_registry.hpp"

#include <algorithm>
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

// Requires the registry's mutex. Null as for findNode.
std::shared_ptr<Node> findLocked(const Node* wanted) {
  const auto& nodes = registry().nodes;
  const auto found = std::find_if(nodes.begin(), nodes.end(),
                                  [&](const auto& node) { return node.get() == wanted; });
  return found != nodes.end() && (*found)->process() == getpid() ? *found : nullptr;
}

struct Attachment {
  bool attached = false;
  std::weak_ptr<Node> node;
};

thread_local Attachment attachment;

}  // namespace

mesh_node* handleOf(const Node& node) {
  return reinterpret_cast<mesh_node*>(const_cast<Node*>(&node));
}

bool hasNodesOfAnotherProcess() {
  const std::lock_guard lock(registry().mutex);
  const auto& nodes = registry().nodes;
  return !nodes.empty() && nodes.front()->process() != getpid();
}

void addNode(std::shared_ptr<Node> node) {
  const std::lock_guard lock(registry().mutex);
  registry().nodes.push_back(std::move(node));
}

std::shared_ptr<Node> findNode(const mesh_node* handle) {
  const std::lock_guard lock(registry().mutex);
  return findLocked(reinterpret_cast<const Node*>(handle));
}

bool removeNode(const Node& node) {
  const std::lock_guard lock(registry().mutex);
  std::erase_if(registry().nodes, [&](const auto& other) { return other.get() == &node; });
  return registry().nodes.empty();
}

void attachToThread(const std::shared_ptr<Node>& node) {
  attachment = {.attached = node != nullptr, .node = node};
}

std::shared_ptr<Node> sendingNode() {
  const std::lock_guard lock(registry().mutex);
  if (attachment.attached) {
    const std::shared_ptr<Node> node = attachment.node.lock();
    return node == nullptr ? nullptr : findLocked(node.get());
  }
  const auto& nodes = registry().nodes;
  return nodes.empty() ? nullptr : findLocked(nodes.front().get());
}

}  // namespace zarnimesh
