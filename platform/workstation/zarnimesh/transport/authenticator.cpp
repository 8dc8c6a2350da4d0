#include "zarnimesh/transport/authenticator.hpp"

#include <zmq.h>

#include <array>
#include <utility>
#include <vector>

#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {
namespace {

constexpr const char* endpoint = "inproc://zeromq.zap.01";

// The parts of a ZAP request, in order.
enum Request : size_t { Version, RequestId, Domain, Address, Identity, Mechanism, Key };

// All parts of the next message. Empty when the context has ended.
std::vector<std::string> receiveParts(void* socket) {
  std::vector<std::string> parts;
  bool more = true;
  while (more) {
    MessagePart part;
    if (zmq_msg_recv(part.raw(), socket, 0) < 0) {
      if (zmq_errno() == EINTR) {
        continue;
      }
      return {};
    }
    parts.emplace_back(reinterpret_cast<const char*>(part.data()), part.size());
    more = part.more();
  }
  return parts;
}

}  // namespace

Authenticator::~Authenticator() {
  if (thread_.joinable()) {
    thread_.join();
  }
}

mesh_result Authenticator::start(void* context) {
  Socket socket(zmq_socket(context, ZMQ_REP));
  if (!socket || !socket.set(ZMQ_LINGER, 0) ||
      uninterrupted([&] { return zmq_bind(socket.handle(), endpoint); }) != 0) {
    return failFromTransport("authenticator");
  }
  thread_ = std::thread([this, owned = std::move(socket)] { serve(owned.handle()); });
  return MESH_OK;
}

void Authenticator::serve(void* socket) {
  for (;;) {
    const std::vector<std::string> request = receiveParts(socket);
    if (request.empty()) {
      return;
    }
    std::string node;
    if (request.size() == Key + 1 && request[Version] == "1.0" && request[Mechanism] == "CURVE") {
      node = nodeOf(request[Domain], request[Key]);
    }
    const std::array<std::string, 6> answer{"1.0",
                                            request.size() > RequestId ? request[RequestId] : "",
                                            node.empty() ? "400" : "200",
                                            node.empty() ? "unknown key" : "",
                                            node,
                                            ""};
    for (size_t i = 0; i < answer.size(); ++i) {
      // Fails only when the context has ended. The next receive then fails too.
      static_cast<void>(zmq_send(socket, answer[i].data(), answer[i].size(),
                                 i + 1 < answer.size() ? ZMQ_SNDMORE : 0));
    }
  }
}

std::string Authenticator::nodeOf(const std::string& domain, const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto known = domains_.find(domain);
  if (known == domains_.end()) {
    return {};
  }
  const auto found = known->second.find(key);
  return found == known->second.end() ? std::string() : std::to_string(found->second);
}

std::string Authenticator::addDomain(Known known) {
  const std::lock_guard lock(mutex_);
  std::string name = "zarnimesh-" + std::to_string(++latest_);
  domains_.emplace(name, std::move(known));
  return name;
}

void Authenticator::removeDomain(const std::string& name) {
  const std::lock_guard lock(mutex_);
  domains_.erase(name);
}

}  // namespace zarnimesh
