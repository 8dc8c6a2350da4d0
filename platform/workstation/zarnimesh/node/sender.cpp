#include "zarnimesh/node/sender.hpp"

#include <poll.h>
#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "zarnimesh/node/in_handler.hpp"

namespace zarnimesh {
namespace {

using std::chrono::milliseconds;

// The sockets announce changes only once. A thread that misses one looks again after this time.
constexpr milliseconds slice{5};

// A new connection needs some time to become usable.
constexpr milliseconds settling{50};

// How often a sender that waits for room asks what arrived. Answers to its calls may be lost with a
// connection.
constexpr milliseconds syncInterval{50};

// How long closing waits for receivers that have confirmed everything to hear of it.
constexpr milliseconds farewell{50};

// How long closing waits for receivers to hear what their predecessors have confirmed.
constexpr milliseconds correction{1000};

// How long closing waits for connections that broke.
constexpr milliseconds reconnection{100};

// Checks the call against the limits. Sets `bytes` to the sum of the tables' lengths.
[[nodiscard]] mesh_result checkCall(const Settings& settings, const mesh_msg_desc* descriptors,
                                    uint32_t count, uint64_t& bytes) {
  bytes = 0;
  if (descriptors == nullptr && count > 0) {
    return fail(MESH_REFUSED, "null descriptors with a count of %u", count);
  }
  if (count > settings.countLimit()) {
    return fail(MESH_REFUSED, "%u tables exceed the limit of %u", count, settings.countLimit());
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (descriptors[i].data == 0 && descriptors[i].length != 0) {
      return fail(MESH_REFUSED, "descriptor %u: null data with a length", i);
    }
    bytes += descriptors[i].length;
  }
  if (bytes > settings.payloadLimit) {
    return fail(MESH_REFUSED, "%llu bytes of tables exceed the limit of %u",
                static_cast<unsigned long long>(bytes), settings.payloadLimit);
  }
  return MESH_OK;
}

// Copies the tables and their index. Copies adjacent tables with one memcpy.
void copyTables(std::span<const mesh_msg_desc> descriptors, uint8_t* index) {
  uint8_t* to = index + descriptors.size() * indexEntrySize;
  for (size_t i = 0; i < descriptors.size();) {
    const uint64_t start = descriptors[i].data;
    uint64_t length = 0;
    do {
      encodeIndexEntry({.id = descriptors[i].msg_id, .length = descriptors[i].length}, index);
      index += indexEntrySize;
      length += descriptors[i].length;
      ++i;
    } while (i < descriptors.size() && descriptors[i].data == start + length);
    if (length > 0) {
      std::memcpy(to, reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(start)), length);
      to += length;
    }
  }
}

// Whether a node that has been closing for this time expects something of the receiver.
bool isAwaited(const Destination& destination, std::chrono::nanoseconds closing) {
  const bool hasUnconfirmed = destination.unconfirmed() > 0;
  if (destination.link.present()) {
    return (!destination.knowsOfClosing() && (hasUnconfirmed || closing < farewell)) ||
           (destination.mayMissTooMany() && closing < correction);
  }
  return hasUnconfirmed && closing < reconnection && !destination.knowsOfClosing() &&
         !destination.givenUp && destination.endpoint().transport != Transport::Inproc;
}

}  // namespace

mesh_result Sender::open(std::shared_ptr<Context> context) {
  if (getrandom(&incarnation_, sizeof incarnation_, 0) != sizeof incarnation_) {
    return fail(MESH_SYSTEM_ERROR, "random number: %s", std::strerror(errno));
  }
  outgoing_.open(std::move(context));
  return MESH_OK;
}

mesh_result Sender::send(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                         uint64_t extra, const Patience& patience) {
  uint64_t bytes = 0;
  mesh_result result = checkCall(settings_, descriptors, count, bytes);
  MessagePart message;
  if (result == MESH_OK && !message.allocate(headerSize + count * indexEntrySize + bytes)) {
    result = fail(MESH_OUT_OF_MEMORY, "no memory for a message");
  }
  FrameHeader header{.source = source_,
                     .destination = destination,
                     .incarnation = incarnation_,
                     .extra = extra,
                     .count = count,
                     .bytes = static_cast<uint32_t>(bytes)};
  if (result == MESH_OK) {
    copyTables({descriptors, count}, message.data() + headerSize);
  }
  Lock lock(mutex_);
  if (result == MESH_OK) {
    try {
      result = sendLocked(lock, header, message, patience);
    } catch (const std::bad_alloc&) {
      result = fail(MESH_OUT_OF_MEMORY, "no memory for a call");
    }
  }
  if (result == MESH_OK) {
    statistics_.sentCalls.add(1);
    statistics_.sentRecords.add(count);
    statistics_.sentBytes.add(bytes);
  } else {
    statistics_.countFailure(result);
  }
  return result;
}

mesh_result Sender::sendLocked(Lock& lock, FrameHeader& header, MessagePart& message,
                               const Patience& patience) {
  Destination& destination = outgoing_.destination(header.destination);
  bool updated = false;
  bool wasPresent = false;
  Clock::time_point start{};
  Clock::time_point end{};
  Clock::time_point deadline{};
  while (!closing_) {
    if (destination.endpoint().transport == Transport::Inproc) {
      outgoing_.checkInproc();
      syncAll();
    }
    if (const mesh_result result = outgoing_.connect(destination); result != MESH_OK) {
      return result;
    }
    const bool present = destination.link.present();
    if (present && destination.hasRoom(header.bytes)) {
      destination.number(header);
      if (push(destination, header, message)) {
        destination.noteSent(header);
        destination.givenUp = false;
        if ((header.flags & tellFlag) != 0 || polling_) {
          update();
        }
        return MESH_OK;
      }
      destination.takeBack();
      continue;
    }
    if (!updated) {
      update();
      updated = true;
      start = Clock::now();
      end = start + std::max(patience.connect, patience.room);
      deadline = std::min(start + patience.connect, end);
      if (destination.givenUp && !Outgoing::mayBePresent(destination)) {
        deadline = start;
      }
      continue;
    }
    const Clock::time_point now = Clock::now();
    if (present != wasPresent) {
      wasPresent = present;
      if (!present) {
        deadline = std::min(now + patience.connect, end);
      } else if (isInHandler(patience.frame) || patience.room.count() == 0) {
        deadline = now;
      } else {
        deadline = std::max(start + patience.room, now + settling);
      }
    }
    if (now >= deadline) {
      const std::string endpoint = destination.endpoint().text();
      if (present) {
        return fail(MESH_QUEUE_FULL, "%s: %llu calls to the receiver are unconfirmed",
                    endpoint.c_str(), static_cast<unsigned long long>(destination.unconfirmed()));
      }
      destination.givenUp = true;
      return fail(MESH_NO_DESTINATION, "%s: no receiver answers", endpoint.c_str());
    }
    if (present && now >= destination.nextSync) {
      sync(destination, false);
      destination.nextSync = now + syncInterval;
    }
    wait(lock, deadline);
  }
  return fail(MESH_NOT_OPEN, "the node was closed during the call");
}

bool Sender::push(Destination& destination, const FrameHeader& header, MessagePart& message) {
  encodeHeader(header, message.data());
  behind_ = true;
  return outgoing_.push(destination, message);
}

void Sender::sync(Destination& destination, bool closing) {
  FrameHeader header = destination.sync(closing);
  header.source = source_;
  header.destination = destination.address();
  header.incarnation = incarnation_;
  MessagePart message;
  if (message.allocate(headerSize)) {
    static_cast<void>(push(destination, header, message));
  } else {
    outgoing_.setToSync(destination);
  }
}

void Sender::wait(Lock& lock, Clock::time_point until) {
  ++waiting_;
  const Clock::time_point soon = std::min(until, Clock::now() + slice);
  if (polling_) {
    changed_.wait_until(lock, soon);
  } else {
    polling_ = true;
    pollfd files[] = {{.fd = outgoing_.stateFile(), .events = POLLIN, .revents = 0},
                      {.fd = outgoing_.eventFile(), .events = POLLIN, .revents = 0}};
    lock.unlock();
    const auto left = std::chrono::ceil<milliseconds>(soon - Clock::now());
    static_cast<void>(
        poll(files, std::size(files), static_cast<int>(std::max<int64_t>(0, left.count()))));
    lock.lock();
    polling_ = false;
    update();
    changed_.notify_all();
  }
  --waiting_;
}

// Does not throw: a call that has gone would count as failed, and a node would not close. What
// found no memory follows with a later update.
void Sender::update() {
  behind_ = false;
  try {
    outgoing_.update();
  } catch (const std::bad_alloc&) {
    behind_ = true;
  }
  syncAll();
}

// A receiver connected or answered first, or was not heard for long. It may be a successor, and
// some calls may be lost. One that is asked whether it lives may never have got a call.
void Sender::syncAll() {
  if (!outgoing_.takeToSync()) {
    return;
  }
  for (const auto& [address, destination] : outgoing_.destinations()) {
    if (std::exchange(destination->link.toSync, false) && destination->link.connected &&
        (destination->sent() > 0 || destination->link.silent || destination->link.asked)) {
      sync(*destination, closing_);
    }
  }
}

void Sender::tend() {
  const Lock lock(mutex_, std::try_to_lock);
  if (lock && !closing_) {
    update();
    outgoing_.askUnheard();
    syncAll();
    if (waiting_ > 0) {
      changed_.notify_all();
    }
  }
}

Sender::Files Sender::files() {
  const Lock lock(mutex_, std::try_to_lock);
  if (!lock) {
    return {.state = -1, .event = -1, .isBehind = true};
  }
  return {.state = outgoing_.stateFile(),
          .event = outgoing_.eventFile(),
          .isBehind = behind_ || waiting_ > 0};
}

uint64_t Sender::close(uint64_t& undelivered) {
  Lock lock(mutex_);
  closing_ = true;
  changed_.notify_all();
  while (waiting_ > 0) {
    changed_.wait_for(lock, slice);
  }
  update();
  uint64_t known = 0;
  for (const auto& [address, destination] : outgoing_.destinations()) {
    known += destination->lost();
  }
  undelivered = waitForArrival(lock);
  outgoing_.close();
  return undelivered - std::min(undelivered, known);
}

uint64_t Sender::waitForArrival(Lock& lock) {
  const Clock::time_point start = Clock::now();
  const Clock::time_point end = start + settings_.linger;
  for (const auto& [address, destination] : outgoing_.destinations()) {
    if (destination->link.connected) {
      sync(*destination, true);
    }
  }
  for (;;) {
    const Clock::time_point now = Clock::now();
    bool mayArrive = false;
    uint64_t missing = 0;
    for (const auto& [address, destination] : outgoing_.destinations()) {
      missing += destination->missing();
      mayArrive = mayArrive || isAwaited(*destination, now - start);
    }
    if (!mayArrive || now >= end) {
      return missing;
    }
    wait(lock, end);
  }
}

void Sender::count(mesh_node_statistics& statistics) {
  const Lock lock(mutex_);
  update();
  for (const auto& [address, destination] : outgoing_.destinations()) {
    statistics.undelivered_calls += destination->lost();
    statistics.unconfirmed_calls += destination->unconfirmed();
  }
}

void Sender::describe(PeerTable& peers) {
  const Lock lock(mutex_);
  for (const auto& [address, destination] : outgoing_.destinations()) {
    mesh_peer_statistics& peer = peerAt(peers, address);
    peer.connected = destination->link.present() ? 1 : 0;
    peer.sent_calls = destination->sent();
    peer.sent_bytes = destination->sentBytes();
    peer.unconfirmed_calls = destination->unconfirmed();
    peer.most_unconfirmed_calls = destination->mostUnconfirmed();
    peer.undelivered_calls = destination->lost();
    peer.last_heard_ms = std::min(peer.last_heard_ms, millisecondsSince(destination->heardAt()));
  }
}

}  // namespace zarnimesh
