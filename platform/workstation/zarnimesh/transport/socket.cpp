#include "zarnimesh/transport/socket.hpp"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zarnimesh {

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

Socket watchEvents(void* context, Socket& watched, int events) {
  static std::atomic<uint64_t> counter = 0;
  char endpoint[64];
  std::snprintf(endpoint, sizeof endpoint, "inproc://zarnimesh-events-%llu",
                static_cast<unsigned long long>(counter.fetch_add(1)));
  if (zmq_socket_monitor(watched.handle(), endpoint, events) != 0) {
    return {};
  }
  Socket watcher(zmq_socket(context, ZMQ_PAIR));
  // No limit: events are read only during sends and receives. ZeroMQ's I/O thread must not block.
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
  // An event has two parts: number and value (16 and 32 bits), then the endpoint.
  MessagePart first;
  if (zmq_msg_recv(first.raw(), watcher.handle(), ZMQ_DONTWAIT) < 0) {
    return std::nullopt;
  }
  bool more = first.more();
  while (more) {
    MessagePart rest;
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
