#include "zarnimesh/peers/outgoing.hpp"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "zarnimesh/transport/address_lock.hpp"
#include "zarnimesh/transport/descriptors.hpp"
#include "zarnimesh/transport/handover.hpp"
#include "zarnimesh/transport/inproc_table.hpp"

namespace zarnimesh {
namespace {

// A new receiver is found within this time.
constexpr int reconnectMs = 20;

// A State, encrypted, or ZeroMQ's own words.
constexpr int64_t largestAnswer = 1024;

// A thread of ZeroMQ closes a receiver's socket. Only on a stalled system does that take longer.
constexpr std::chrono::milliseconds endingTime{1000};

constexpr int senderEvents = ZMQ_EVENT_HANDSHAKE_SUCCEEDED | ZMQ_EVENT_DISCONNECTED;

// The longest endpoint that ZeroMQ names.
constexpr size_t endpointSize = 256;

uint16_t portOf(std::string_view endpoint) {
  uint16_t port = 0;
  std::from_chars(endpoint.data() + endpoint.rfind(':') + 1, endpoint.data() + endpoint.size(),
                  port);
  return port;
}

}  // namespace

Destination& Outgoing::findOrAdd(uint32_t address) {
  auto found = destinations_.find(address);
  if (found == destinations_.end()) {
    auto added = std::make_unique<Destination>(settings_, address);
    found = destinations_.emplace(address, std::move(added)).first;
  }
  return *found->second;
}

mesh_result Outgoing::connectAnew(Destination& destination) {
  const bool inproc = destination.endpoint().transport == Transport::Inproc;
  std::string endpoint = destination.endpoint().text();
  if (inproc) {
    const auto generation = InprocTable::instance().find(destination.endpoint().rest);
    if (!generation) {
      return MESH_OK;
    }
    destination.link.generation = *generation;
    endpoint = InprocTable::boundEndpoint(destination.endpoint().rest, *generation);
  }
  mesh_result result = reserveDescriptors();
  if (result == MESH_OK) {
    result = openSocket();
  }
  if (result == MESH_OK && !inproc) {
    result = openEvents();
  }
  if (result == MESH_OK) {
    result = setKeys(destination);
  }
  if (result != MESH_OK) {
    return result;
  }
  return connectTo(destination, endpoint);
}

mesh_result Outgoing::connectTo(Destination& destination, const std::string& endpoint) {
  const bool inproc = destination.endpoint().transport == Transport::Inproc;
  // Routes are never used twice: ZeroMQ ends the process for a second connection of one name.
  const uint64_t route = ++latestRoute_;
  const auto ownName = routeName(route);
  std::string name(endpointSize, '\0');
  std::string resolved;
  resolved.reserve(endpointSize);
  size_t length = name.size();
  byRoute_.emplace(route, &destination);
  if (!socket_.set(ZMQ_CONNECT_ROUTING_ID, {ownName.data(), ownName.size()}) ||
      !socket_.set(ZMQ_IPV6, endpoint.starts_with("tcp://[") ? 1 : 0) ||
      uninterrupted([&] { return zmq_connect(socket_.handle(), endpoint.c_str()); }) != 0 ||
      zmq_getsockopt(socket_.handle(), ZMQ_LAST_ENDPOINT, name.data(), &length) != 0) {
    byRoute_.erase(route);
    return failFromTransport(endpoint.c_str());
  }
  name.resize(std::strlen(name.c_str()));
  destination.link = {.route = route,
                      .connectedTo = std::move(name),
                      .resolved = std::move(resolved),
                      .generation = destination.link.generation,
                      .toSync = destination.link.toSync};
  if (!inproc) {
    return MESH_OK;
  }
  if (InprocTable::instance().find(destination.endpoint().rest) == destination.link.generation) {
    setLink(destination, true, false);
    if (destination.unconfirmed() > 0) {
      setToSync(destination);
    }
  } else {
    // It left meanwhile. ZeroMQ may wait for a socket at its name, and would never tell of an end.
    disconnect(destination);
  }
  return MESH_OK;
}

mesh_result Outgoing::openSocket() {
  if (socket_) {
    return MESH_OK;
  }
  Socket socket(zmq_socket(context_->handle(), ZMQ_ROUTER));
  size_t size = sizeof stateFile_;
  // Credit bounds the queues. A full queue would lose what the kernel still holds when a peer ends.
  if (!socket || !socket.set(ZMQ_SNDHWM, 0) || !socket.set(ZMQ_RCVHWM, 0) ||
      // Calls are confirmed before the socket is closed, or are counted as undelivered.
      !socket.set(ZMQ_LINGER, 0) || !socket.set(ZMQ_ROUTER_MANDATORY, 1) ||
      !socket.set(ZMQ_MAXMSGSIZE, largestAnswer) || !socket.set(ZMQ_RECONNECT_IVL, reconnectMs) ||
      zmq_getsockopt(socket.handle(), ZMQ_FD, &stateFile_, &size) != 0) {
    return failFromTransport("sending socket");
  }
  socket_ = std::move(socket);
  return MESH_OK;
}

mesh_result Outgoing::openEvents() {
  if (events_) {
    return MESH_OK;
  }
  events_ = watchEvents(context_->handle(), socket_, senderEvents);
  size_t size = sizeof eventFile_;
  if (!events_ || zmq_getsockopt(events_.handle(), ZMQ_FD, &eventFile_, &size) != 0) {
    return failFromTransport("watching connections");
  }
  return MESH_OK;
}

mesh_result Outgoing::setKeys(const Destination& destination) {
  const Endpoint& endpoint = destination.endpoint();
  if (!settings_.keys) {
    return MESH_OK;
  }
  if (endpoint.transport != Transport::Tcp) {
    // An empty user name selects connections without security again.
    return zmq_setsockopt(socket_.handle(), ZMQ_PLAIN_USERNAME, nullptr, 0) == 0
               ? MESH_OK
               : failFromTransport("keys");
  }
  const KeyRing& keys = *settings_.keys;
  const std::string* theirs = keys.publicKeyOf(destination.address());
  if (theirs == nullptr) {
    return fail(MESH_BAD_CONFIGURATION, "%s: the key file has no key of node %u",
                endpoint.text().c_str(), destination.address());
  }
  if (!socket_.set(ZMQ_CURVE_SERVERKEY, *theirs) ||
      !socket_.set(ZMQ_CURVE_PUBLICKEY, keys.ownPublic()) ||
      !socket_.set(ZMQ_CURVE_SECRETKEY, keys.ownSecret())) {
    return failFromTransport("keys");
  }
  return MESH_OK;
}

bool Outgoing::push(Destination& destination, MessagePart& message) {
  handOver(message);
  // Without a limit of the queue, only a connection that is gone makes this fail.
  if (sendTo(destination.link.route, message, socket_)) {
    tellWater(destination);
    return true;
  }
  disconnect(destination);
  return false;
}

void Outgoing::disconnect(Destination& destination) {
  // The receiver's last words may be here.
  takeStates();
  setLink(destination, false, false);
  byRoute_.erase(destination.link.route);
  destination.link = {.toSync = destination.link.toSync};
}

void Outgoing::awaitEnd(const Destination& destination, Destination::Clock::time_point end) {
  // The receiver's last words are written, but perhaps not announced: one thread announces what
  // several have written, and may be stopped.
  MessagePart nothing;
  while (sendTo(destination.link.route, nothing, socket_) && Destination::Clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::microseconds(100));
    takeStates();
  }
}

void Outgoing::setToSync(Destination& destination) {
  destination.link.toSync = true;
  hasToSync_ = true;
}

void Outgoing::checkInproc() {
  const uint64_t version = InprocTable::instance().version();
  if (inprocVersion_ == version) {
    return;
  }
  const auto end = Destination::Clock::now() + endingTime;
  for (const auto& [address, destination] : destinations_) {
    const Endpoint& endpoint = destination->endpoint();
    if (endpoint.transport != Transport::Inproc) {
      continue;
    }
    if (destination->link.route != 0 &&
        InprocTable::instance().find(endpoint.rest) != destination->link.generation) {
      awaitEnd(*destination, end);
      disconnect(*destination);
    }
    if (destination->link.route == 0 && destination->unconfirmed() > 0) {
      static_cast<void>(connect(*destination));
    }
  }
  inprocVersion_ = version;
}

void Outgoing::takeStates() {
  for (;;) {
    MessagePart route;
    MessagePart message;
    if (!takePart(route, socket_)) {
      break;
    }
    // The route never comes alone.
    while (takePart(message, socket_) && message.more()) {
    }
    if (const auto number = readRoute(route.bytes())) {
      takeState(*number, message);
    }
  }
}

void Outgoing::update() {
  if (!socket_) {
    return;
  }
  takeStates();
  checkInproc();
  while (const auto event = events_ ? nextEvent(events_) : std::nullopt) {
    const bool succeeded = event->number == ZMQ_EVENT_HANDSHAKE_SUCCEEDED;
    const std::string_view name = event->endpoint();
    bool known = false;
    for (const auto& [address, destination] : destinations_) {
      Destination::Link& link = destination->link;
      if (link.connectedTo != name && link.resolved != name) {
        continue;
      }
      if (!succeeded) {
        takeStates();  // its last words may have arrived before the event
      }
      known = true;
      link.connectedTo = name;
      link.guessed = false;
      setLink(*destination, succeeded, false);
      if (succeeded) {
        setToSync(*destination);
      }
    }
    if (succeeded && !known) {
      askAt(portOf(name));
    }
  }
}

void Outgoing::askAt(uint16_t port) {
  for (const auto& [address, destination] : destinations_) {
    const Endpoint& endpoint = destination->endpoint();
    Destination::Link& link = destination->link;
    if (endpoint.transport == Transport::Tcp && portOf(endpoint.rest) == port && link.route != 0 &&
        !link.present()) {
      link.guessed = true;
      setLink(*destination, true, true);
      link.asked.reset();
      setToSync(*destination);
    }
  }
}

void Outgoing::askUnheard() {
  const auto now = Destination::Clock::now();
  if (settings_.heartbeat.count() == 0 || now < nextBeat_) {
    return;
  }
  nextBeat_ = now + settings_.heartbeat / 4;
  for (const auto& [address, destination] : destinations_) {
    Destination::Link& link = destination->link;
    if (!link.connected || link.guessed || destination->endpoint().transport == Transport::Inproc) {
      continue;
    }
    if (!link.asked && now - destination->heardAt() > settings_.heartbeat) {
      link.asked = now;
      setToSync(*destination);
    } else if (link.asked && now - *link.asked > (link.silent ? 8 : 2) * settings_.heartbeat) {
      setLink(*destination, true, true);
      link.asked = now;
      setToSync(*destination);
    }
  }
}

void Outgoing::setLink(Destination& destination, bool connected, bool silent) {
  Destination::Link& link = destination.link;
  const bool wasPresent = link.present();
  link.answered = link.answered && connected;
  link.connected = connected;
  link.silent = silent;
  if (!silent) {
    link.asked.reset();
  }
  if (link.present() != wasPresent) {
    peerEvents_.add(wasPresent ? MESH_PEER_DOWN : MESH_PEER_UP, destination.address());
  }
  destination.givenUp = destination.givenUp && !link.present();
}

void Outgoing::tellWater(Destination& destination) {
  if (const auto change = destination.newWater()) {
    peerEvents_.add(*change, destination.address());
  }
}

void Outgoing::noteHost(Destination& destination, MessagePart& state) {
  const Endpoint& endpoint = destination.endpoint();
  if (endpoint.transport != Transport::Tcp) {
    return;
  }
  destination.link.guessed = false;
  if (const char* const host = zmq_msg_gets(state.raw(), "Peer-Address")) {
    char name[endpointSize];
    const char* const form = std::strchr(host, ':') != nullptr ? "tcp://[%s]:%u" : "tcp://%s:%u";
    std::snprintf(name, sizeof name, form, host, unsigned{portOf(endpoint.rest)});
    destination.link.resolved = name;
  }
}

void Outgoing::takeState(uint64_t route, MessagePart& message) {
  const auto found = byRoute_.find(route);
  takeOver(message);
  const std::optional<FrameHeader> state = decodeHeader(message.bytes());
  if (found == byRoute_.end() || !state || state->kind != Kind::State ||
      message.size() != stateSize) {
    return;
  }
  const StateBody body = decodeStateBody(message.data() + headerSize);
  if (body.first == 0) {
    return;
  }
  Destination& destination = *found->second;
  noteHost(destination, message);
  const bool restarted = destination.note(*state, body);
  setLink(destination, destination.link.connected, false);
  destination.link.answered = true;
  if (restarted) {
    peerEvents_.add(MESH_PEER_RESTARTED, destination.address());
  }
  if (destination.mayMissTooMany()) {
    setToSync(destination);
  }
  tellWater(destination);
}

bool Outgoing::mayBePresent(const Destination& destination) {
  const Endpoint& endpoint = destination.endpoint();
  switch (endpoint.transport) {
    case Transport::Ipc:
      return AddressLock::isHeld(lockOf(endpoint.rest));
    case Transport::Inproc:
      return InprocTable::instance().find(endpoint.rest).has_value();
    default:
      return false;
  }
}

void Outgoing::close() {
  stopWatching(socket_, events_);
  socket_.close();
  for (const auto& [address, destination] : destinations_) {
    destination->link = {};
  }
  byRoute_.clear();
  stateFile_ = -1;
  eventFile_ = -1;
  context_.reset();
}

}  // namespace zarnimesh
