// A node's counters.
#pragma once

#include <atomic>
#include <cstdint>

#include "zarnimesh/node.h"

namespace zarnimesh {

// One thread at a time counts; any thread reads.
class Counter {
 public:
  void add(uint64_t amount) {
    value_.store(value_.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
  }
  void subtract(uint64_t amount) { add(0 - amount); }
  uint64_t read() const { return value_.load(std::memory_order_relaxed); }

 private:
  std::atomic<uint64_t> value_ = 0;
};

struct Statistics {
  // Counted under the sender's mutex.
  Counter sentCalls, sentRecords, sentBytes;
  Counter failedNoDestination, failedQueueFull, failedRefused, failedOther;

  // Counted under the receiver's mutex.
  Counter receivedCalls, receivedBytes, malformed, refusedConnections;
  Counter lostCalls, missedBeforeFirst, duplicateCalls, discardedCalls;

  // Counted by the receiving thread.
  Counter receivedRecords, unknownIdentifiers;

  void countFailure(mesh_result result) {
    switch (result) {
      case MESH_NO_DESTINATION:
        return failedNoDestination.add(1);
      case MESH_QUEUE_FULL:
        return failedQueueFull.add(1);
      case MESH_REFUSED:
        return failedRefused.add(1);
      default:
        return failedOther.add(1);
    }
  }

  mesh_node_statistics read() const {
    return {
        .sent_calls = sentCalls.read(),
        .sent_records = sentRecords.read(),
        .sent_bytes = sentBytes.read(),
        .failed_no_destination = failedNoDestination.read(),
        .failed_queue_full = failedQueueFull.read(),
        .failed_refused = failedRefused.read(),
        .failed_other = failedOther.read(),
        .received_calls = receivedCalls.read(),
        .received_records = receivedRecords.read(),
        .received_bytes = receivedBytes.read(),
        .malformed = malformed.read(),
        .unknown_identifiers = unknownIdentifiers.read(),
        .lost_calls = lostCalls.read(),
        .missed_before_first = missedBeforeFirst.read(),
        .duplicate_calls = duplicateCalls.read(),
        .undelivered_calls = 0,
        .unconfirmed_calls = 0,
        .discarded_calls = discardedCalls.read(),
        .refused_connections = refusedConnections.read(),
    };
  }
};

}  // namespace zarnimesh
