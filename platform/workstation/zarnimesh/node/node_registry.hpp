// The process's open nodes, and the node from which each thread sends.
#pragma once

#include <atomic>
#include <memory>

#include "zarnimesh/node/node.hpp"

namespace zarnimesh {

// All functions are thread-safe.

// The caller's handle of a node. It is dereferenced only after it was found among the open nodes.
mesh_node* handleOf(const Node& node);

// Set in the child, by a handler of fork().
inline std::atomic<bool> forkedChild = false;

// Whether this is a forked child of a process with open nodes. It must not use their sockets, and
// other threads of the parent may have held any lock.
inline bool isForkedChild() {
  return forkedChild.load(std::memory_order_relaxed);
}

void addNode(std::shared_ptr<Node> node);

// The open node of the handle. Null when there is none. The calling thread remembers what it found:
// the reference and the node are valid until its next call of this function.
const std::shared_ptr<Node>& findNode(const mesh_node* handle);

// True when it was the last open node.
[[nodiscard]] bool removeNode(const Node& node);

// Null selects the oldest open node again.
void attachToThread(const std::shared_ptr<Node>& node);

// The node from which the calling thread sends. Null when there is none or it is closed. Valid
// until the thread's next call of this function.
const std::shared_ptr<Node>& sendingNode();

}  // namespace zarnimesh
