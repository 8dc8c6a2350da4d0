#include "zarnimesh/peers/connection.hpp"

#include <cerrno>
#include <optional>

#include "zarnimesh/transport/inproc_table.hpp"

namespace zarnimesh {
namespace {

// A receiver that has just been started is found within this time.
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
  // Immediate: only a receiver that is there gets a queue, so nothing waits for one that may never
  // come. Inproc connects at once and has no use for it.
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
    return fail(MESH_BAD_CONFIGURATION, "%s: the keys do not name node %u",
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
    // Shared, since the parts before a failing one are gone and the call may be tried again.
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
    // Only inproc waits without a socket: elsewhere opening has succeeded or ended the call.
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
  // Interrupted or not, the caller looks again.
  static_cast<void>(zmq_poll(items, count, static_cast<long>(atMost.count())));
}

}  // namespace zarnimesh
