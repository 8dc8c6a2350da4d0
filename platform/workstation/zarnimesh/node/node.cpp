#include "zarnimesh/node/node.hpp"

namespace zarnimesh {

mesh_result Node::open(const mesh_node_options& options) {
  if (const mesh_result result = settings_.read(options); result != MESH_OK) {
    return result;
  }
  const std::shared_ptr<Context> context = Context::shared();
  if (context == nullptr) {
    return failFromTransport("context");
  }
  if (const mesh_result result = sender_.open(context); result != MESH_OK) {
    return result;
  }
  return receiver_.open(context);
}

void Node::close() {
  // The receiver goes last. It may hold the last reference to the context, whose destructor waits
  // for the sender's lingering messages.
  sender_.close();
  receiver_.close();
}

}  // namespace zarnimesh
