#include "zarnimesh/peers/incoming.hpp"

#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <new>
#include <string>
#include <utility>

#include "zarnimesh/transport/handover.hpp"

namespace zarnimesh {
namespace {

// How soon an idle node confirms the calls that did not ask for it.
constexpr int tellMs = 5;

// How often a node looks whether its socket's file is still there.
constexpr std::chrono::milliseconds lookInterval{500};

// Messages that are taken at once while no thread receives.
constexpr int mostAtOnce = 100'000;

// Exact to some milliseconds, and much quicker than Clock::now().
Incoming::Clock::time_point roughlyNow() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
  return Incoming::Clock::time_point(std::chrono::seconds(time.tv_sec) +
                                     std::chrono::nanoseconds(time.tv_nsec));
}

// Where a sender that ignores its credit is stopped. The credit itself is smaller: a sender may
// have got more from a predecessor of this node.
constexpr size_t leastCallLimit = 1 << 16;
constexpr uint64_t leastByteLimit = 128 << 20;

bool isBeyondCredit(const Source& source, const Settings& settings) {
  return source.undelivered >= std::max<size_t>(settings.receiveQueueCalls, leastCallLimit) ||
         source.undeliveredBytes >= std::max<uint64_t>(settings.queueBytes, leastByteLimit);
}

}  // namespace

mesh_result Incoming::open(std::shared_ptr<Context> context) {
  if (getrandom(&incarnation_, sizeof incarnation_, 0) != sizeof incarnation_) {
    return fail(MESH_SYSTEM_ERROR, "random number: %s", std::strerror(errno));
  }
  if (const auto result = listener_.open(context, settings_, address_); result != MESH_OK) {
    return result;
  }
  size_t size = sizeof file_;
  if (zmq_getsockopt(listener_.socket().handle(), ZMQ_FD, &file_, &size) != 0) {
    return failFromTransport("receiving socket");
  }
  nextLook_ = Clock::now() + lookInterval;
  if (listener_.endpoint().transport != Transport::Tcp) {
    return MESH_OK;
  }
  return watch_.open(*context, listener_.socket(), settings_.messageLimit());
}

Incoming::Arrival Incoming::take(IncomingCall& call) {
  if (!waiting_.empty()) {
    call = std::move(waiting_.front());
    waiting_.pop_front();
    return Arrival::Call;
  }
  now_ = roughlyNow();
  bool isCall = false;
  while (takeMessage(call, isCall)) {
    if (isCall) {
      return Arrival::Call;
    }
  }
  if (zmq_errno() == EAGAIN) {
    return Arrival::Nothing;
  }
  static_cast<void>(failFromTransport("receive"));
  return Arrival::Failed;
}

bool Incoming::takeMessage(IncomingCall& call, bool& isCall) {
  isCall = false;
  drained_ = !takePart(route_, listener_.socket());
  if (drained_) {
    return false;
  }
  // A message arrives whole, and its route never comes alone. Its parts after the first are not
  // ours.
  size_t parts = 0;
  while (takePart(call.message, listener_.socket())) {
    ++parts;
    if (!call.message.more()) {
      break;
    }
  }
  if (watch_.isOpen()) {
    watch_.noteMessage(call.message);
  }
  const auto number = readRoute(route_.bytes());
  if (parts != 1 || !number) {
    statistics_.malformed.add(1);
    return true;
  }
  isCall = accept(*number, call);
  return true;
}

bool Incoming::accept(uint64_t route, IncomingCall& call) {
  const std::span<const uint8_t> message = call.message.bytes();
  takeOver(call.message);
  const auto header = decodeHeader(message);
  if (!header) {
    statistics_.malformed.add(1);
    return false;
  }
  call.header = *header;
  call.bytes = message.data();
  call.source =
      isWellFormed(*header, message) && isFromItsSource(call) ? book(route, call) : nullptr;
  if (call.source == nullptr) {
    statistics_.malformed.add(1);
    return false;
  }
  Source& source = *call.source;
  if (header->kind == Kind::Sync) {
    if ((header->flags & closingFlag) != 0 && !std::exchange(source.closed, true)) {
      peerEvents_.add(MESH_PEER_DOWN, source.address);
    }
    tell(source);
    return false;
  }
  ++source.undelivered;
  source.undeliveredBytes += header->bytes;
  ++source.calls;
  source.bytes += header->bytes;
  source.mostUndelivered = std::max(source.mostUndelivered, source.undelivered);
  call.afterGap = std::exchange(source.gapPending, false);
  statistics_.receivedCalls.add(1);
  statistics_.receivedBytes.add(header->bytes);
  return true;
}

bool Incoming::isWellFormed(const FrameHeader& header, std::span<const uint8_t> message) const {
  if (header.destination != address_) {
    return false;
  }
  if (header.kind == Kind::Sync) {
    return header.bytes == 0 && message.size() == headerSize;
  }
  return header.kind == Kind::Call && header.bytes <= settings_.payloadLimit &&
         header.count <= settings_.countLimit() && lengthsAgree(header, message);
}

bool Incoming::isFromItsSource(IncomingCall& call) {
  if (!settings_.keys || listener_.endpoint().transport != Transport::Tcp) {
    return true;
  }
  const char* node = zmq_msg_gets(call.message.raw(), "User-Id");
  return node != nullptr && std::to_string(call.header.source) == node;
}

Source* Incoming::book(uint64_t route, IncomingCall& call) {
  const FrameHeader& header = call.header;
  call.late = false;
  Source* source = sources_.find(header.source, header.incarnation);
  const bool isNew = source == nullptr;
  const bool isConnected = !isNew && source->route == route;
  if (!Sources::isPlausible(header, source) || !(isConnected || sources_.mayUse(route, source))) {
    return nullptr;
  }
  if (isNew) {
    sources_.prune([this](Source& each) { return !tell(each); });
    peerEvents_.add(sources_.hasOpen(header.source) ? MESH_PEER_RESTARTED : MESH_PEER_UP,
                    header.source);
    source = &sources_.add(header.source, header.incarnation, route);
    const uint64_t missed = Sources::noteFirst(*source, header);
    source->gapPending = missed > 0;
    statistics_.missedBeforeFirst.add(missed);
    if (missed > 0) {
      peerEvents_.add(MESH_PEER_GAP, header.source, source->first - missed, source->first - 1);
    }
  } else if (header.kind == Kind::Call && isBeyondCredit(*source, settings_)) {
    return nullptr;
  } else {
    // A late call comes over a connection that broke.
    if (!isConnected && header.sequence >= source->highest) {
      sources_.connect(*source, route);
    }
    const uint64_t highest = source->highest;
    const Sources::Finding finding = Sources::note(*source, header);
    if (finding.lost > 0) {
      peerEvents_.add(MESH_PEER_GAP, header.source, highest + 1, highest + finding.lost);
      statistics_.lostCalls.add(finding.lost);
    }
    call.late = finding.late;
    if (finding.late) {
      statistics_.lostCalls.subtract(1);
    }
    if (finding.duplicate) {
      statistics_.duplicateCalls.add(1);
    }
    if (header.kind == Kind::Sync && header.count == static_cast<uint32_t>(incarnation_) &&
        header.extra < source->missedBeforeFirst) {
      statistics_.missedBeforeFirst.subtract(source->missedBeforeFirst - header.extra);
      source->missedBeforeFirst = header.extra;
      source->gapPending = source->gapPending && source->missedBeforeFirst + source->missing > 0;
    }
  }
  source->heardAt = now_;
  if (isNew) {
    tell(*source);
  }
  return source;
}

void Incoming::noteDelivered(const IncomingCall& call) {
  Source& source = *call.source;
  Sources::noteDelivered(source, call.header, call.late);
  if ((call.header.flags & tellFlag) != 0) {
    tell(source);
  } else {
    toldLater(source);
  }
}

void Incoming::toldLater(Source& source) {
  if (source.toBeTold) {
    return;
  }
  try {
    toBeTold_.push_back(&source);
    source.toBeTold = true;
  } catch (const std::bad_alloc&) {
    tell(source);
  }
}

void Incoming::tellAll() {
  for (Source* source : std::exchange(toBeTold_, {})) {
    source->toBeTold = false;
    if (source->told != source->settled) {
      tell(*source);
    }
  }
}

// False when the sender is gone.
bool Incoming::tell(Source& source) {
  MessagePart message;
  if (!message.allocate(stateSize)) {
    return true;
  }
  encodeHeader({.kind = Kind::State,
                .flags = source.closed ? closingFlag : uint8_t{0},
                .source = address_,
                .destination = source.address,
                .incarnation = incarnation_,
                .sequence = source.highest,
                .confirmed = source.settled,
                .extra = source.toldMissing() - source.missingAhead(),
                .count = settings_.receiveQueueCalls,
                .bytes = settings_.queueBytes},
               message.data());
  encodeStateBody({.first = source.first,
                   .missingAhead = source.missingAhead(),
                   .missedBefore = source.missedBeforeFirst},
                  message.data() + headerSize);
  handOver(message);
  drained_ = false;  // sending may take the announcement of a message that has just arrived
  if (!sendTo(source.route, message, listener_.socket())) {
    return zmq_errno() != EHOSTUNREACH;
  }
  source.told = source.settled;
  return true;
}

void Incoming::tend() {
  now_ = roughlyNow();
  tellAll();
  int taken = 0;
  for (bool more = true; taken < mostAtOnce && more; ++taken) {
    // It has its place before it is taken: later there might be no memory.
    waiting_.emplace_back();
    bool isCall = false;
    try {
      more = takeMessage(waiting_.back(), isCall);
    } catch (const std::bad_alloc&) {
      waiting_.pop_back();
      throw;
    }
    if (!isCall) {
      waiting_.pop_back();
    }
  }
  if (taken < mostAtOnce) {
    static_cast<void>(idle());
  }
}

mesh_result Incoming::idle() {
  tellAll();
  if (watch_.isOpen()) {
    const ConnectionWatch::Ended ended = watch_.check();
    statistics_.malformed.add(ended.endless);
    statistics_.refusedConnections.add(ended.refused);
  }
  const Clock::time_point now = Clock::now();
  if (now < nextLook_) {
    return MESH_OK;
  }
  nextLook_ = now + lookInterval;
  return listener_.listenAgain();
}

int Incoming::longestWait() const {
  if (!waiting_.empty()) {
    return 0;
  }
  if (!toBeTold_.empty()) {
    return tellMs;
  }
  const auto interval = watch_.hasConnections() ? ConnectionWatch::interval : lookInterval;
  return static_cast<int>(interval.count());
}

void Incoming::close() {
  if (!listener_.isOpen()) {
    return;
  }
  try {
    tend();
  } catch (const std::bad_alloc&) {
    // The senders count what was not taken.
  }
  for (auto& [key, source] : sources_) {
    const bool gone = !tell(source) || source.closed;
    // The others count on their own: they know what this node has not confirmed.
    statistics_.discardedCalls.add(gone ? source.undelivered : 0);
  }
  waiting_.clear();
  listener_.stopListening();
  watch_.close(listener_.socket());
  listener_.close();
}

}  // namespace zarnimesh
