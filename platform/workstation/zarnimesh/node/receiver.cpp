#include "zarnimesh/node/receiver.hpp"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

#include "zarnimesh/node/in_handler.hpp"

namespace zarnimesh {

mesh_result Receiver::open(std::shared_ptr<Context> context) {
  const mesh_result result = area_.map();
  return result == MESH_OK ? incoming_.open(std::move(context)) : result;
}

std::optional<int64_t> Receiver::receiveNext(const Handler& handler, uint64_t turn) {
  turn_ = turn;
  if (stage_.load(std::memory_order_relaxed) != Stage::Taken) {
    const Lock lock(mutex_);
    switch (takeNext()) {
      case Incoming::Arrival::Nothing:
        return std::nullopt;
      case Incoming::Arrival::Failed:
        return -int64_t{MESH_SYSTEM_ERROR};
      case Incoming::Arrival::Call:
        break;
    }
  }
  if (!std::exchange(delivering_, true)) {
    entry_ = 0;
    table_ = call_.bytes + headerSize + call_.header.count * indexEntrySize;
  }
  const int64_t delivered = deliver(handler);
  delivering_ = false;
  call_.message.clear();
  stage_.store(Stage::Delivered, std::memory_order_release);
  if ((call_.header.flags & tellFlag) != 0) {
    const Lock lock(mutex_);
    noteDelivered();
  }
  return delivered;
}

Incoming::Arrival Receiver::takeNext() {
  noteDelivered();
  const Incoming::Arrival arrival = incoming_.take(call_);
  if (arrival == Incoming::Arrival::Call) {
    stage_.store(Stage::Taken, std::memory_order_relaxed);
  }
  wakeup_.set(incoming_.waiting() > 0);
  return arrival;
}

void Receiver::noteDelivered() {
  if (stage_.load(std::memory_order_acquire) == Stage::Delivered) {
    incoming_.noteDelivered(call_);
    stage_.store(Stage::Noted, std::memory_order_relaxed);
  }
}

size_t Receiver::undelivered() const {
  return (stage_.load(std::memory_order_relaxed) == Stage::Taken ? 1 : 0) + incoming_.waiting();
}

int Receiver::beginWait() {
  const Lock lock(mutex_);
  waiting_ = true;
  return incoming_.longestWait();
}

void Receiver::endWait() {
  const Lock lock(mutex_);
  waiting_ = false;
}

mesh_result Receiver::idle() {
  const Lock lock(mutex_);
  return incoming_.idle();
}

int64_t receiveAny(std::span<Receiver* const> receivers, int32_t timeoutMs,
                   const Handler& handler) {
  using Clock = std::chrono::steady_clock;
  std::optional<Clock::time_point> end;
  // Begins behind the receiver that was asked last: it is the one that was served last. The
  // receivers keep that, as handlers may leave this function, and threads may share receivers.
  size_t next = 0;
  uint64_t turn = 0;
  for (size_t i = 0; i < receivers.size(); ++i) {
    if (receivers[i]->turn() >= turn) {
      turn = receivers[i]->turn();
      next = i + 1;
    }
  }
  for (;;) {
    for (size_t asked = 0; asked < receivers.size(); ++asked, ++next) {
      next = next < receivers.size() ? next : 0;
      if (const std::optional<int64_t> delivered = receivers[next]->receiveNext(handler, ++turn)) {
        return *delivered;
      }
    }
    const Clock::time_point now = Clock::now();
    end = end.value_or(now + std::chrono::milliseconds(timeoutMs));
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - now).count();
    const bool over = timeoutMs >= 0 && left <= 0;
    int wait = timeoutMs >= 0 ? static_cast<int>(std::max<int64_t>(left, 0)) : INT_MAX;
    // Outlives a handler that leaves by longjmp.
    static thread_local std::vector<pollfd> files;
    files.clear();
    for (Receiver* const receiver : receivers) {
      files.push_back({.fd = receiver->file(), .events = POLLIN, .revents = 0});
    }
    for (Receiver* const receiver : receivers) {
      wait = std::min(wait, receiver->beginWait());
    }
    const int ready = over ? 0 : poll(files.data(), files.size(), wait);
    const bool interrupted = ready < 0 && errno == EINTR;
    mesh_result result = MESH_OK;
    for (Receiver* const receiver : receivers) {
      receiver->endWait();
    }
    for (size_t i = 0; ready == 0 && i < receivers.size(); ++i) {
      const mesh_result each = receivers[i]->idle();
      result = each != MESH_OK ? each : result;
    }
    if (result != MESH_OK || over || interrupted) {
      return -int64_t{result};
    }
  }
}

int64_t Receiver::deliver(const Handler& handler) {
  const InHandler marked;
  releaseRecord();
  int64_t delivered = 0;
  const FrameHeader& header = call_.header;
  const uint8_t* const index = call_.bytes + headerSize;
  mesh_received received{.source = header.source,
                         .msg_id = 0,
                         .record = handler.decodes ? area_.data() : nullptr,
                         .record_size = 0,
                         .table_length = 0,
                         .table = nullptr,
                         .extra = header.extra,
                         .incarnation = header.incarnation,
                         .sequence = header.sequence,
                         .after_gap = call_.afterGap ? 1u : 0u};
  while (entry_ < header.count) {
    const IndexEntry entry = decodeIndexEntry(index + entry_ * indexEntrySize);
    received.msg_id = entry.id;
    received.table_length = entry.length;
    received.table = std::exchange(table_, table_ + entry.length);
    ++entry_;
    if (handler.decodes) {
      if (!findHook(entry.id)) {
        statistics_.unknownIdentifiers.add(1);
        if (settings_.unknown != nullptr) {
          settings_.unknown(header.source, entry.id, received.table, entry.length,
                            settings_.unknownUser);
        }
        continue;
      }
      received.record_size = recordSize_ = hook_.unpack(received.table, entry.length, area_.data());
      recordOut_ = true;
    }
    ++delivered;
    statistics_.receivedRecords.add(1);
    if (handler.function != nullptr) {
      handler.function(&received, handler.user);
    }
    releaseRecord();
  }
  return delivered;
}

// Sets hook_. Calls have runs of one type, so most need no lookup.
bool Receiver::findHook(uint32_t id) {
  const uint64_t version = hookVersion.load(std::memory_order_acquire);
  if (id == hookId_ && version == hookVersion_) {
    return true;
  }
  const std::optional<Hook> found = zarnimesh::findHook(id);
  if (!found) {
    return false;
  }
  hook_ = *found;
  hookId_ = id;
  hookVersion_ = version;
  return true;
}

void Receiver::releaseRecord() {
  if (std::exchange(recordOut_, false)) {
    hook_.release(area_.data());
    area_.clear(recordSize_);
  }
}

void Receiver::tend() {
  if (const Lock lock(mutex_, std::try_to_lock); lock) {
    tendLocked();
  }
}

void Receiver::tendLocked() {
  if (!waiting_) {
    noteDelivered();
    incoming_.tend();
    wakeup_.set(undelivered() > 0);
  }
}

bool Receiver::isBehind() {
  const Lock lock(mutex_, std::try_to_lock);
  return lock && !waiting_ && (incoming_.isBehind() || stage_ == Stage::Delivered);
}

int Receiver::callersFile() {
  const Lock lock(mutex_);
  return wakeup_.open(incoming_.file(), undelivered() > 0);
}

size_t Receiver::waiting() {
  const Lock lock(mutex_);
  tendLocked();
  return undelivered();
}

void Receiver::describe(PeerTable& peers) {
  const Lock lock(mutex_);
  noteDelivered();
  for (const auto& [key, source] : incoming_.sources()) {
    mesh_peer_statistics& peer = peerAt(peers, source.address);
    peer.received_calls += source.calls;
    peer.received_bytes += source.bytes;
    peer.waiting_calls += source.undelivered;
    peer.most_waiting_calls = std::max<uint64_t>(peer.most_waiting_calls, source.mostUndelivered);
    peer.lost_calls += source.missing;
    peer.missed_before_first += source.missedBeforeFirst;
    if (const uint64_t ago = millisecondsSince(source.heardAt); ago <= peer.last_heard_ms) {
      peer.last_heard_ms = ago;
      peer.incarnation = source.incarnation;
    }
  }
}

void Receiver::close() {
  const Lock lock(mutex_);
  noteDelivered();
  if (std::exchange(delivering_, false)) {
    // A handler left the call by longjmp.
    releaseRecord();
  }
  incoming_.close();
}

}  // namespace zarnimesh
