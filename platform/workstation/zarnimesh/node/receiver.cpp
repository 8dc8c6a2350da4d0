#include "zarnimesh/node/receiver.hpp"

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "zarnimesh/node/hooks.hpp"
#include "zarnimesh/transport/handover.hpp"

namespace zarnimesh {
namespace {

std::span<const uint8_t> bytesOf(MessagePart& message) {
  return {message.data(), message.size()};
}

// Reads the other parts without waiting: a message arrives whole. False when their number is wrong.
[[nodiscard]] bool takeRest(Socket& socket, MessagePart& first, MessagePart& index,
                            MessagePart& payload) {
  MessagePart surplus;
  MessagePart* const rest[] = {&index, &payload};
  size_t taken = 0;
  bool more = first.more();
  while (more) {
    MessagePart& part = taken < std::size(rest) ? *rest[taken] : surplus;
    if (zmq_msg_recv(part.raw(), socket.handle(), ZMQ_DONTWAIT) < 0) {
      return false;
    }
    ++taken;
    more = part.more();
  }
  return taken == std::size(rest);
}

}  // namespace

mesh_result Receiver::open(std::shared_ptr<Context> context) {
  if (const mesh_result result = area_.map(); result != MESH_OK) {
    return result;
  }
  if (const auto result = listener_.open(context, settings_, address_); result != MESH_OK) {
    return result;
  }
  if (listener_.endpoint().transport != Transport::Tcp) {
    return MESH_OK;
  }
  return watch_.open(*context, listener_.socket(), settings_.messageLimit());
}

int64_t Receiver::receive(int32_t timeoutMs, const Handler& handler) {
  MessagePart first;
  switch (waitForMessage(first, timeoutMs)) {
    case Arrival::Message:
      return handle(first, handler);
    case Arrival::Nothing:
      return 0;
    case Arrival::Failed:
      break;
  }
  return -int64_t{failFromTransport("receive")};
}

Receiver::Arrival Receiver::waitForMessage(MessagePart& first, int32_t timeoutMs) {
  void* const socket = listener_.socket().handle();
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    if (zmq_msg_recv(first.raw(), socket, ZMQ_DONTWAIT) >= 0) {
      if (watch_.isOpen()) {
        watch_.noteMessage(first);
        static_cast<void>(watchConnections(0));
      }
      return Arrival::Message;
    }
    if (zmq_errno() != EAGAIN) {
      return zmq_errno() == EINTR ? Arrival::Nothing : Arrival::Failed;
    }
    long wait = -1;
    if (timeoutMs >= 0) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
      if (left.count() <= 0) {
        return Arrival::Nothing;
      }
      wait = static_cast<long>(left.count());
    }
    if (watch_.isOpen()) {
      watch_.noteIdle();
      wait = watchConnections(wait);
    }
    zmq_pollitem_t item{.socket = socket, .fd = 0, .events = ZMQ_POLLIN, .revents = 0};
    if (zmq_poll(&item, 1, wait) < 0) {
      return zmq_errno() == EINTR ? Arrival::Nothing : Arrival::Failed;
    }
  }
}

long Receiver::watchConnections(long wait) {
  statistics_.malformed.add(watch_.check());
  constexpr long interval = ConnectionWatch::interval.count();
  return wait < 0 ? interval : std::min(wait, interval);
}

bool Receiver::isWellFormed(const FrameHeader& header, std::span<const uint8_t> index,
                            size_t payloadBytes) const {
  return header.destination == address_ && header.payloadBytes <= settings_.payloadLimit &&
         header.count <= settings_.countLimit() && lengthsAgree(header, index, payloadBytes);
}

bool Receiver::isFromItsSource(const FrameHeader& header, MessagePart& first) const {
  if (!settings_.keys || listener_.endpoint().transport != Transport::Tcp) {
    return true;
  }
  const char* node = zmq_msg_gets(first.raw(), "User-Id");
  return node != nullptr && std::to_string(header.source) == node;
}

int64_t Receiver::handle(MessagePart& first, const Handler& handler) {
  takeOver(first.data());
  MessagePart index;
  MessagePart payload;
  const bool complete = takeRest(listener_.socket(), first, index, payload);
  const std::optional<FrameHeader> header = decodeHeader(bytesOf(first));
  if (!complete || !header || !isWellFormed(*header, bytesOf(index), payload.size()) ||
      !isFromItsSource(*header, first)) {
    statistics_.malformed.add(1);
    return 0;
  }
  statistics_.receivedCalls.add(1);
  statistics_.receivedBytes.add(payload.size());
  noteSequence(*header);
  return deliver(*header, bytesOf(index), payload.data(), handler);
}

void Receiver::noteSequence(const FrameHeader& header) {
  const SequenceFindings findings = sequences_.note(header.incarnation, header.sequence);
  statistics_.lostCalls.add(findings.lost);
  statistics_.missedBeforeFirst.add(findings.missedBeforeFirst);
  statistics_.duplicateCalls.add(findings.duplicate ? 1 : 0);
}

int64_t Receiver::deliver(const FrameHeader& header, std::span<const uint8_t> index,
                          const uint8_t* payload, const Handler& handler) {
  int64_t delivered = 0;
  std::optional<Hook> hook;
  uint32_t hookId = 0;
  for (size_t at = 0; at < index.size(); at += indexEntrySize) {
    const IndexEntry entry = decodeIndexEntry(index.data() + at);
    const uint8_t* const table = payload;
    payload += entry.length;
    // Most calls have runs of one type: look up only when it changes.
    if (!hook || entry.id != hookId) {
      hook = findHook(entry.id);
      hookId = entry.id;
    }
    if (!hook) {
      statistics_.unknownIdentifiers.add(1);
      if (settings_.unknown != nullptr) {
        settings_.unknown(header.source, entry.id, table, entry.length, settings_.unknownUser);
      }
      continue;
    }
    const uint32_t recordSize = hook->unpack(table, entry.length, area_.data());
    if (handler.function != nullptr) {
      const mesh_received received{.source = header.source,
                                   .msg_id = entry.id,
                                   .record = area_.data(),
                                   .record_size = recordSize,
                                   .table_length = entry.length,
                                   .table = table,
                                   .extra = header.extra};
      handler.function(&received, handler.user);
    }
    hook->release(area_.data());
    area_.clear(recordSize);
    ++delivered;
  }
  statistics_.receivedRecords.add(static_cast<uint64_t>(delivered));
  return delivered;
}

}  // namespace zarnimesh
