#include "zarnimesh/peers/connection.hpp"

#include <cerrno>
#include <optional>

#include "zarnimesh/transport/inproc_table.hpp"

namespace zarnimesh {
namespace {

// A new receiver is found within this time.
constexpr int reconnectMs = 20;

constexpr int watchedEvents = ZMQ_EVENT_HANDSHAKE_SUCCEEDED | ZMQ_EVENT_DISCONNECTED;

}  // namespace

mesh_result Connection::open(const std::shared_ptr<Context>& context) {
  if (endpoint_.transport == Transport::Inproc) {
    return openInproc(*context);
  }
  return openSocket(*context, endpoint_.text());
}

mesh_result Connection::openInproc(Context& context) {
  const std::optional<uint64_t> generation = InprocTable::instance().find(endpoint_.rest);
  if (!generation) {
    return MESH_OK;
  }
  generation_ = *generation;
  return openSocket(context, InprocTable::boundEndpoint(endpoint_.rest, generation_));
}

mesh_result Connection::openSocket(Context& context, const std::string& endpoint) {
  const bool inproc = endpoint_.transport == Transport::Inproc;
  Socket socket(zmq_socket(context.handle(), ZMQ_PUSH));
  // ZMQ_IMMEDIATE: queue messages only for a connected receiver. Inproc connects at once and does
  // not need it.
  bool ready = socket && socket.set(ZMQ_SNDHWM, settings_.sendQueueCalls) &&
               socket.set(ZMQ_LINGER, static_cast<int>(settings_.linger.count())) &&
               socket.set(ZMQ_IMMEDIATE, inproc ? 0 : 1) &&
               socket.set(ZMQ_RECONNECT_IVL, reconnectMs) &&
               socket.set(ZMQ_IPV6, endpoint.starts_with("tcp://[") ? 1 : 0);
  if (ready && endpoint_.transport == Transport::Tcp && settings_.keys) {
    if (const mesh_result result = secure(socket); result != MESH_OK) {
      return result;
    }
  }
  Socket watcher;
  if (ready && !inproc) {
    watcher = watchEvents(context.handle(), socket, watchedEvents);
    ready = static_cast<bool>(watcher);
  }
  if (!ready || zmq_connect(socket.handle(), endpoint.c_str()) != 0) {
    const mesh_result result = failFromTransport(endpoint.c_str());
    stopWatching(socket, watcher);
    return result;
  }
  socket_ = std::move(socket);
  watcher_ = std::move(watcher);
  peerPresent_ = false;
  return MESH_OK;
}

mesh_result Connection::secure(Socket& socket) {
  const KeyRing& keys = *settings_.keys;
  const std::string* theirs = keys.publicKeyOf(destination_);
  if (theirs == nullptr) {
    return fail(MESH_BAD_CONFIGURATION, "%s: the key file has no key of node %u",
                endpoint_.text().c_str(), destination_);
  }
  if (!socket.set(ZMQ_CURVE_SERVERKEY, *theirs) ||
      !socket.set(ZMQ_CURVE_PUBLICKEY, keys.ownPublic()) ||
      !socket.set(ZMQ_CURVE_SECRETKEY, keys.ownSecret())) {
    return failFromTransport("keys");
  }
  return MESH_OK;
}

void Connection::close() {
  stopWatching(socket_, watcher_);
  socket_.close();
  peerPresent_ = false;
}

bool Connection::answered() {
  if (!isOpen()) {
    return false;
  }
  if (endpoint_.transport != Transport::Inproc) {
    readEvents();
    return peerPresent_;
  }
  if (InprocTable::instance().find(endpoint_.rest) == generation_) {
    return true;
  }
  close();
  return false;
}

void Connection::readEvents() {
  while (const auto event = nextEvent(watcher_)) {
    peerPresent_ = event->number == ZMQ_EVENT_HANDSHAKE_SUCCEEDED;
  }
}

Connection::Attempt Connection::trySend(Parts& parts) {
  for (size_t i = 0; i < parts.size(); ++i) {
    const int flags = ZMQ_DONTWAIT | (i + 1 < parts.size() ? ZMQ_SNDMORE : 0);
    // Send a shared copy: the call may be retried, and sending consumes the part.
    MessagePart part;
    if (!part.share(parts[i])) {
      static_cast<void>(failFromTransport("message"));
      return Attempt::Failed;
    }
    if (zmq_msg_send(part.raw(), socket_.handle(), flags) >= 0) {
      continue;
    }
    const int error = zmq_errno();
    if (error != EAGAIN && error != EINTR) {
      static_cast<void>(failFromTransport(endpoint_.text().c_str()));
      return Attempt::Failed;
    }
    return i == 0 ? Attempt::NoRoom : Attempt::Broken;
  }
  return Attempt::Sent;
}

void Connection::waitForChange(std::chrono::milliseconds atMost) {
  const bool inproc = endpoint_.transport == Transport::Inproc;
  if (!isOpen()) {
    // Only inproc: over ipc and tcp open() succeeds or ends the call.
    InprocTable::instance().waitFor(endpoint_.rest, atMost);
    return;
  }
  zmq_pollitem_t items[2] = {};
  int count = 0;
  if (!inproc) {
    items[count++] = {.socket = watcher_.handle(), .fd = 0, .events = ZMQ_POLLIN, .revents = 0};
  }
  if (inproc || peerPresent_) {
    items[count++] = {.socket = socket_.handle(), .fd = 0, .events = ZMQ_POLLOUT, .revents = 0};
  }
  // The caller checks again in any case.
  static_cast<void>(zmq_poll(items, count, static_cast<long>(atMost.count())));
}

}  // namespace zarnimesh
