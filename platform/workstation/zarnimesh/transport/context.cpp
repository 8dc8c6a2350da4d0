#include "zarnimesh/transport/context.hpp"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "zarnimesh/transport/authenticator.hpp"

namespace zarnimesh {
namespace {

// Two sockets a destination and some inside; the library's own default of 1023 is soon used up.
constexpr int maxSockets = 16384;

}  // namespace

std::shared_ptr<Context> Context::shared() {
  static std::mutex mutex;
  static std::weak_ptr<Context> current;
  const std::lock_guard lock(mutex);
  if (auto context = current.lock()) {
    return context;
  }
  void* handle = zmq_ctx_new();
  if (handle == nullptr) {
    return nullptr;
  }
  auto context = std::make_shared<Context>(handle);
  if (zmq_ctx_set(handle, ZMQ_MAX_SOCKETS, maxSockets) != 0) {
    return nullptr;
  }
  current = context;
  return context;
}

Context::Context(void* handle) : handle_(handle) {}

Context::~Context() {
  while (zmq_ctx_term(handle_) != 0 && errno == EINTR) {
  }
}

Authenticator* Context::authenticator() {
  const std::lock_guard lock(mutex_);
  if (authenticator_ == nullptr) {
    auto starting = std::make_unique<Authenticator>();
    if (starting->start(handle_) != MESH_OK) {
      return nullptr;
    }
    authenticator_ = std::move(starting);
  }
  return authenticator_.get();
}

mesh_result failFromTransport(const char* what) {
  const int error = zmq_errno();
  mesh_result result = MESH_SYSTEM_ERROR;
  if (error == ENOMEM) {
    result = MESH_OUT_OF_MEMORY;
  } else if (error == EADDRINUSE) {
    result = MESH_ADDRESS_IN_USE;
  }
  return fail(result, "%s: %s", what, zmq_strerror(error));
}

Socket watchEvents(Context& context, Socket& watched, int events) {
  static std::atomic<uint64_t> counter = 0;
  char endpoint[64];
  std::snprintf(endpoint, sizeof endpoint, "inproc://zarnimesh-events-%llu",
                static_cast<unsigned long long>(counter.fetch_add(1)));
  if (zmq_socket_monitor(watched.handle(), endpoint, events) != 0) {
    return {};
  }
  Socket watcher(zmq_socket(context.handle(), ZMQ_PAIR));
  // Without a limit: events are read only when someone sends, and the transport's own thread must
  // never wait for that.
  if (!watcher || !watcher.set(ZMQ_RCVHWM, 0) || !watcher.set(ZMQ_LINGER, 0) ||
      zmq_connect(watcher.handle(), endpoint) != 0) {
    zmq_socket_monitor(watched.handle(), nullptr, 0);
    return {};
  }
  return watcher;
}

void stopWatching(Socket& watched, Socket& watcher) {
  if (watcher) {
    zmq_socket_monitor(watched.handle(), nullptr, 0);
    watcher.close();
  }
}

std::optional<TransportEvent> nextEvent(Socket& watcher) {
  // An event is two parts: its number and value (16 and 32 bits), and an endpoint.
  Message first;
  if (zmq_msg_recv(first.raw(), watcher.handle(), ZMQ_DONTWAIT) < 0) {
    return std::nullopt;
  }
  bool more = first.more();
  while (more) {
    Message rest;
    if (zmq_msg_recv(rest.raw(), watcher.handle(), ZMQ_DONTWAIT) < 0) {
      break;
    }
    more = rest.more();
  }
  TransportEvent event{};
  if (first.size() >= sizeof event.number + sizeof event.value) {
    std::memcpy(&event.number, first.data(), sizeof event.number);
    std::memcpy(&event.value, first.data() + sizeof event.number, sizeof event.value);
  }
  return event;
}

}  // namespace zarnimesh
