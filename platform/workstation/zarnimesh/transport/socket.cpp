#include "zarnimesh/transport/socket.hpp"

#include <algorithm>
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

bool setKeepAlive(Socket& socket, std::chrono::milliseconds interval) {
  constexpr int64_t longest = 32767;  // the kernel refuses more, and ZeroMQ then the connection
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(interval).count();
  const auto time = static_cast<int>(std::min<int64_t>(seconds, longest));
  return time == 0 ||
         (socket.set(ZMQ_TCP_KEEPALIVE, 1) && socket.set(ZMQ_TCP_KEEPALIVE_IDLE, time) &&
          socket.set(ZMQ_TCP_KEEPALIVE_INTVL, time) && socket.set(ZMQ_TCP_KEEPALIVE_CNT, 2));
}

Socket watchEvents(void* context, Socket& watched, int events) {
  static std::atomic<uint64_t> counter = 0;
  char endpoint[64];
  std::snprintf(endpoint, sizeof endpoint, "inproc://zarnimesh-events-%llu",
                static_cast<unsigned long long>(counter.fetch_add(1)));
  if (uninterrupted([&] { return zmq_socket_monitor(watched.handle(), endpoint, events); }) != 0) {
    return {};
  }
  Socket watcher(zmq_socket(context, ZMQ_PAIR));
  // No limit: events are read only during sends and receives. ZeroMQ's I/O thread must not block.
  if (!watcher || !watcher.set(ZMQ_RCVHWM, 0) || !watcher.set(ZMQ_LINGER, 0) ||
      uninterrupted([&] { return zmq_connect(watcher.handle(), endpoint); }) != 0) {
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
  MessagePart part;
  if (!takePart(part, watcher)) {
    return std::nullopt;
  }
  TransportEvent event;
  if (part.size() >= sizeof event.number + sizeof event.value) {
    std::memcpy(&event.number, part.data(), sizeof event.number);
    std::memcpy(&event.value, part.data() + sizeof event.number, sizeof event.value);
  }
  for (bool more = part.more(); more && takePart(event.name, watcher);) {
    more = event.name.more();
  }
  return event;
}

}  // namespace zarnimesh
