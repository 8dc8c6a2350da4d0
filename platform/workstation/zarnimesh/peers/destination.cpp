#include "zarnimesh/peers/destination.hpp"

#include <algorithm>
#include <mutex>

#include "zarnimesh/transport/handover.hpp"

namespace zarnimesh {
namespace {

using std::chrono::milliseconds;

// How soon a waiting sender notices that its node is being closed.
constexpr milliseconds slice{50};

// Time between the connection of a receiver and the creation of its queue.
constexpr milliseconds settling{50};

}  // namespace

mesh_result Destination::send(FrameHeader header, Connection::Parts& parts,
                              const std::shared_ptr<Context>& context,
                              const std::atomic<bool>& closing) {
  const Clock::time_point start = Clock::now();
  if (!gate_.try_lock_until(start + std::max(settings_.connectTimeout, settings_.sendTimeout))) {
    return fail(MESH_QUEUE_FULL, "%s: timed out while other threads were sending",
                connection_.endpoint().text().c_str());
  }
  const std::lock_guard lock(gate_, std::adopt_lock);
  // Only a sent call uses up a number: receivers count a gap as a loss.
  header.sequence = sentCalls_ + 1;
  if (!parts[0].allocate(headerSize)) {
    return fail(MESH_OUT_OF_MEMORY, "no memory for a header");
  }
  encodeHeader(header, parts[0].data());
  handOver(parts[0].data());
  const mesh_result result = sendLocked(parts, context, closing, start);
  if (result == MESH_OK) {
    ++sentCalls_;
  }
  return result;
}

mesh_result Destination::sendLocked(Connection::Parts& parts,
                                    const std::shared_ptr<Context>& context,
                                    const std::atomic<bool>& closing, Clock::time_point start) {
  const Clock::time_point end = start + std::max(settings_.connectTimeout, settings_.sendTimeout);
  bool wasAnswered = false;
  Clock::time_point deadline = std::min(start + settings_.connectTimeout, end);
  while (!closing.load()) {
    if (!connection_.isOpen()) {
      if (const mesh_result result = connection_.open(context); result != MESH_OK) {
        return result;
      }
    }
    const bool answered = connection_.answered();
    if (answered) {
      switch (connection_.trySend(parts)) {
        case Connection::Attempt::Sent:
          return MESH_OK;
        case Connection::Attempt::Failed:
          // Part of the message may be sent. The next message must not continue it.
          connection_.close();
          return MESH_SYSTEM_ERROR;
        case Connection::Attempt::Broken:
          connection_.close();
          break;
        case Connection::Attempt::NoRoom:
          break;
      }
    }
    const Clock::time_point now = Clock::now();
    if (answered != wasAnswered) {
      wasAnswered = answered;
      deadline = answered ? std::max(start + settings_.sendTimeout, now + settling)
                          : std::min(now + settings_.connectTimeout, end);
    }
    if (now >= deadline) {
      const std::string endpoint = connection_.endpoint().text();
      if (answered) {
        return fail(MESH_QUEUE_FULL, "%s: the receiver's queue is full", endpoint.c_str());
      }
      // Without a receiver nothing is queued. Closing stops the connection attempts.
      connection_.close();
      return fail(MESH_NO_DESTINATION, "%s: no receiver answers", endpoint.c_str());
    }
    const auto left = std::chrono::ceil<milliseconds>(deadline - now);
    connection_.waitForChange(std::min(left, slice));
  }
  return fail(MESH_NOT_OPEN, "the node was closed during the call");
}

void Destination::close() {
  const std::lock_guard lock(gate_);
  connection_.close();
}

}  // namespace zarnimesh
