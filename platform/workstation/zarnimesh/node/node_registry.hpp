// The process's open nodes, and which of them each thread sends from.
#pragma once

#include <memory>

#include "zarnimesh/node/node.hpp"

namespace zarnimesh {

// All are safe from any thread.

// What a caller holds of a node. It is never dereferenced before it was found among the open ones.
mesh_node* handleOf(const Node& node);

// Whether this is a forked child of a process with open nodes, whose transport it must not touch.
bool hasNodesOfAnotherProcess();

void addNode(std::shared_ptr<Node> node);

// The open node of the handle; null when there is none, or when it is a parent process's.
std::shared_ptr<Node> findNode(const mesh_node* handle);

// True when that was the last one.
[[nodiscard]] bool removeNode(const Node& node);

// Null goes back to the oldest open node.
void attachToThread(const std::shared_ptr<Node>& node);

// The node that the calling thread sends from; null when there is none or its node is closed.
std::shared_ptr<Node> sendingNode();

}  // namespace zarnimesh
