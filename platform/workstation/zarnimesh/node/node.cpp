#include "zarnimesh/node/node.hpp"

#include "zarnimesh/node/in_handler.hpp"
#include "zarnimesh/transport/descriptors.hpp"

namespace zarnimesh {

mesh_result Node::open(const mesh_node_options& options) {
  if (const mesh_result result = settings_.read(options); result != MESH_OK) {
    return result;
  }
  if (const mesh_result result = reserveDescriptors(); result != MESH_OK) {
    return result;
  }
  const std::shared_ptr<Context> context = Context::shared(settings_.ioThreads);
  if (context == nullptr) {
    return failFromTransport("context");
  }
  if (const mesh_result result = sender_.open(context); result != MESH_OK) {
    return result;
  }
  return receiver_.open(context);
}

bool Node::takeReceiver(const char* frame) {
  if (!isInHandler(frame)) {
    handlerFrame() = nullptr;  // the handler was left
  }
  const void* const thread = &handlerFrame();
  const char* holder = nullptr;
  if (receiverFrame_.compare_exchange_strong(holder, frame, std::memory_order_acquire)) {
    receiverThread_.store(thread, std::memory_order_relaxed);
    return true;
  }
  // The stack grows downwards. A call within a handler has a lower frame than the call that runs
  // the handler. Any other call of the thread tells that the handler was left.
  if (receiverThread_.load() == thread && frame >= holder) {
    receiverFrame_.store(frame);
    return true;
  }
  return false;
}

void Node::giveReceiverBack() {
  receiverThread_.store(nullptr, std::memory_order_relaxed);
  receiverFrame_.store(nullptr, std::memory_order_release);
}

uint64_t Node::close(mesh_node_statistics& last) {
  // The receiver goes last. It may hold the last reference to the context, whose destructor waits
  // for the sender's last messages.
  uint64_t undelivered = 0;
  const uint64_t missing = sender_.close(undelivered);
  receiver_.close();
  last = statistics_.read();
  last.undelivered_calls = undelivered;
  return missing;
}

void Node::tend() {
  sender_.tend();
  receiver_.tend();
  tellOfPeers();
}

// While a hook waited for room, the thread would look after no node.
void Node::tellOfPeers() {
  const InHandler marked;
  events_.deliver();
}

bool Node::addFiles(std::vector<pollfd>& files) {
  const Sender::Files ofSender = sender_.files();
  for (const int file : {ofSender.state, ofSender.event, receiver_.file()}) {
    files.push_back({.fd = file, .events = POLLIN, .revents = 0});
  }
  return ofSender.isBehind || receiver_.isBehind();
}

mesh_node_statistics Node::statistics() {
  mesh_node_statistics statistics = statistics_.read();
  sender_.count(statistics);
  return statistics;
}

PeerTable Node::peers() {
  PeerTable peers;
  sender_.describe(peers);
  receiver_.describe(peers);
  return peers;
}

}  // namespace zarnimesh
