#include "zarnimesh/peers/connection_watch.hpp"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <optional>
#include <utility>

namespace zarnimesh {
namespace {

constexpr int failures = ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL |
                         ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL | ZMQ_EVENT_HANDSHAKE_FAILED_AUTH;
constexpr int listenerEvents = ZMQ_EVENT_ACCEPTED | ZMQ_EVENT_DISCONNECTED | failures;

template <typename Value>
std::optional<Value> option(int file, int level, int name) {
  Value value{};
  socklen_t size = sizeof value;
  if (getsockopt(file, level, name, &value, &size) != 0) {
    return std::nullopt;
  }
  return value;
}

std::optional<uint64_t> cookieOf(int file) {
  return option<uint64_t>(file, SOL_SOCKET, SO_COOKIE);
}

std::optional<uint64_t> bytesReceived(int file) {
  const auto info = option<tcp_info>(file, IPPROTO_TCP, TCP_INFO);
  return info ? std::optional<uint64_t>(info->tcpi_bytes_received) : std::nullopt;
}

// Bytes that the kernel may hold beyond those that ZeroMQ has read.
uint64_t systemBuffer(int file) {
  return static_cast<uint64_t>(option<int>(file, SOL_SOCKET, SO_RCVBUF).value_or(0));
}

}  // namespace

mesh_result ConnectionWatch::open(Context& context, Socket& listener, uint64_t limit) {
  limit_ = limit;
  events_ = watchEvents(context.handle(), listener, listenerEvents);
  return events_ ? MESH_OK : failFromTransport("watching connections");
}

void ConnectionWatch::close(Socket& listener) {
  stopWatching(listener, events_);
  connections_.clear();
}

void ConnectionWatch::noteMessage(MessagePart& message) {
  const int file = zmq_msg_get(message.raw(), ZMQ_SRCFD);
  auto found = connections_.find(file);
  if (found == connections_.end()) {
    readEvents();
    found = connections_.find(file);
  }
  if (found != connections_.end()) {
    found->second.delivered = true;
  }
}

ConnectionWatch::Ended ConnectionWatch::check() {
  const Clock::time_point now = Clock::now();
  if (now < nextCheck_) {
    return {};
  }
  nextCheck_ = now + interval;
  readEvents();
  Ended ended{.refused = std::exchange(refused_, 0)};
  for (auto& [file, connection] : connections_) {
    ended.endless += endIfEndless(file, connection) ? 1 : 0;
  }
  return ended;
}

void ConnectionWatch::readEvents() {
  while (const std::optional<TransportEvent> event = nextEvent(events_)) {
    const auto file = static_cast<int>(event->value);
    if (event->number == ZMQ_EVENT_ACCEPTED) {
      add(file);
    } else if (event->number == ZMQ_EVENT_DISCONNECTED) {
      connections_.erase(file);
    } else {
      ++refused_;
    }
  }
}

void ConnectionWatch::add(int file) {
  if (const std::optional<uint64_t> cookie = cookieOf(file)) {
    connections_[file] = {.cookie = *cookie};
  }
}

bool ConnectionWatch::endIfEndless(int file, Connection& connection) {
  const std::optional<uint64_t> received = bytesReceived(file);
  if (!received || cookieOf(file) != connection.cookie) {
    return false;  // closed; its event follows
  }
  if (connection.delivered) {
    connection.bytesAtStart = *received;
    connection.delivered = false;
  }
  const bool large = *received - connection.bytesAtStart > limit_ + systemBuffer(file);
  // Only at the second check in a row: at the first, a complete message may be about to arrive.
  const bool endless = large && connection.suspect;
  connection.suspect = large;
  if (endless) {
    shutdown(file, SHUT_RDWR);
    connection.cookie = 0;  // no socket has it: counted once, even if ZeroMQ reports the end late
  }
  return endless;
}

}  // namespace zarnimesh
