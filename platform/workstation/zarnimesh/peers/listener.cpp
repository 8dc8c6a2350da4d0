#include "zarnimesh/peers/listener.hpp"

#include <unistd.h>

#include <array>
#include <chrono>
#include <utility>

#include "zarnimesh/configuration/runtime_directory.hpp"
#include "zarnimesh/transport/inproc_table.hpp"

namespace zarnimesh {
namespace {

// ZeroMQ's I/O thread closes a listening socket. Only on a stalled system does that take longer.
constexpr std::chrono::milliseconds closingTime{1000};

// For the last answers to senders.
constexpr int lingerMs = 20;

std::string binaryKey(const std::string& text) {
  std::array<uint8_t, 32> bytes{};
  zmq_z85_decode(bytes.data(), text.c_str());
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The keys that may connect: those of the key file, and the node's own.
Authenticator::Known knownTo(const KeyRing& keys, uint32_t ownAddress) {
  Authenticator::Known known;
  for (const auto& [address, key] : keys.nodes()) {
    known.emplace(binaryKey(key), address);
  }
  known[binaryKey(keys.ownPublic())] = ownAddress;
  return known;
}

}  // namespace

mesh_result Listener::open(std::shared_ptr<Context> context, const Settings& settings,
                           uint32_t address) {
  context_ = std::move(context);
  if (settings.defaultTransport == Transport::Ipc) {
    // Checked for every node that may use the directory: senders trust it too.
    if (const auto result = prepareRuntimeDirectory(settings.runtimeDirectory); result != MESH_OK) {
      return result;
    }
  }
  endpoint_ = settings.endpointOf(address);
  if (const auto result = checkBindable(endpoint_, settings.keys.has_value()); result != MESH_OK) {
    return result;
  }
  if (const mesh_result result = claim(); result != MESH_OK) {
    return result;
  }
  return openSocket(settings, address);
}

// Makes sure that no live node receives at the endpoint. For tcp zmq_bind does that, for inproc
// bind().
mesh_result Listener::claim() {
  return endpoint_.transport == Transport::Ipc ? lock_.acquire(lockOf(endpoint_.rest)) : MESH_OK;
}

mesh_result Listener::openSocket(const Settings& settings, uint32_t address) {
  const std::string endpoint = endpoint_.text();
  socket_ = Socket(zmq_socket(context_->handle(), ZMQ_ROUTER));
  // Credit bounds the queues, and the node takes what arrives even if nobody receives. ZeroMQ would
  // lose what the kernel still holds if a peer ended while its queue were full.
  if (!socket_ || !socket_.set(ZMQ_RCVHWM, 0) || !socket_.set(ZMQ_LINGER, lingerMs) ||
      !socket_.set(ZMQ_ROUTER_MANDATORY, 1) || !setKeepAlive(socket_, settings.heartbeat) ||
      !socket_.set(ZMQ_MAXMSGSIZE, static_cast<int64_t>(settings.messageLimit())) ||
      !socket_.set(ZMQ_IPV6, endpoint.starts_with("tcp://[") ? 1 : 0)) {
    return failFromTransport(endpoint.c_str());
  }
  if (endpoint_.transport == Transport::Tcp && settings.keys) {
    if (const auto result = requireKeys(*settings.keys, address); result != MESH_OK) {
      return result;
    }
  }
  return bind();
}

mesh_result Listener::bind() {
  std::string endpoint = endpoint_.text();
  uint64_t generation = 0;
  if (endpoint_.transport == Transport::Ipc) {
    if (const mesh_result result = listenOnIpc(); result != MESH_OK) {
      return result;
    }
  } else if (endpoint_.transport == Transport::Inproc) {
    generation = InprocTable::instance().newGeneration();
    endpoint = InprocTable::boundEndpoint(endpoint_.rest, generation);
  }
  if (uninterrupted([&] { return zmq_bind(socket_.handle(), endpoint.c_str()); }) != 0) {
    return failFromTransport(endpoint.c_str());
  }
  bound_ = endpoint;
  isInTable_ = generation != 0 && InprocTable::instance().add(endpoint_.rest, generation);
  if (generation == 0 || isInTable_) {
    return MESH_OK;
  }
  return fail(MESH_ADDRESS_IN_USE, "%s: in use by a node of this process",
              endpoint_.text().c_str());
}

mesh_result Listener::listenOnIpc() {
  int file = -1;
  const mesh_result result = listenAt(endpoint_.rest, file, file_);
  if (result == MESH_OK && !socket_.set(ZMQ_USE_FD, file)) {
    ::close(file);
    return failFromTransport(endpoint_.rest.c_str());
  }
  return result;
}

mesh_result Listener::listenAgain() {
  if (endpoint_.transport != Transport::Ipc || !isOpen()) {
    return MESH_OK;
  }
  if (!lock_.isIntact(lockOf(endpoint_.rest))) {
    // The lock of a removed file keeps nobody out.
    lock_.release();
    if (const mesh_result result = claim(); result != MESH_OK) {
      return result;
    }
  }
  // The earlier listening socket stays: closing it would end its connections.
  return isAt(endpoint_.rest, file_) ? MESH_OK : bind();
}

mesh_result Listener::requireKeys(const KeyRing& keys, uint32_t address) {
  Authenticator* const authenticator = context_->authenticator();
  if (authenticator == nullptr) {
    return MESH_SYSTEM_ERROR;
  }
  domain_ = authenticator->addDomain(knownTo(keys, address));
  if (!socket_.set(ZMQ_ZAP_DOMAIN, domain_) || !socket_.set(ZMQ_CURVE_SERVER, 1) ||
      !socket_.set(ZMQ_CURVE_SECRETKEY, keys.ownSecret())) {
    return failFromTransport("keys");
  }
  return MESH_OK;
}

void Listener::close() {
  // The order matters: the listening socket must be closed before the endpoint is released.
  if (std::exchange(isInTable_, false)) {
    InprocTable::instance().remove(endpoint_.rest);
  }
  stopListening();
  socket_.close();
  if (!domain_.empty()) {
    context_->authenticator()->removeDomain(domain_);
    domain_.clear();
  }
  lock_.release();
  context_.reset();
}

void Listener::stopListening() {
  const std::string endpoint = std::exchange(bound_, {});
  if (endpoint.empty() || endpoint_.transport == Transport::Inproc) {
    return;
  }
  Socket watcher =
      watchEvents(context_->handle(), socket_, ZMQ_EVENT_CLOSED | ZMQ_EVENT_CLOSE_FAILED);
  if (uninterrupted([&] { return zmq_unbind(socket_.handle(), endpoint.c_str()); }) == 0 &&
      watcher) {
    const auto end = std::chrono::steady_clock::now() + closingTime;
    while (!nextEvent(watcher) && std::chrono::steady_clock::now() < end) {
      zmq_pollitem_t item{.socket = watcher.handle(), .fd = 0, .events = ZMQ_POLLIN, .revents = 0};
      static_cast<void>(zmq_poll(&item, 1, 50));
    }
  }
  stopWatching(socket_, watcher);
  // A successor's socket may stand there, if somebody removed the lock.
  if (endpoint_.transport == Transport::Ipc && isAt(endpoint_.rest, file_)) {
    unlink(endpoint_.rest.c_str());
  }
}

}  // namespace zarnimesh
