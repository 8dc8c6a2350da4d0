// A node's receiver: checks messages, decodes their tables and passes the records to the handler.
#pragma once

#include <chrono>
#include <memory>
#include <span>

#include "zarnimesh/node/record_area.hpp"
#include "zarnimesh/node/statistics.hpp"
#include "zarnimesh/peers/connection_watch.hpp"
#include "zarnimesh/peers/listener.hpp"
#include "zarnimesh/peers/sequence_table.hpp"
#include "zarnimesh/transport/frame.hpp"

namespace zarnimesh {

// The caller's handler.
struct Handler {
  mesh_record_handler function;  // may be null
  void* user;
};

// For one thread at a time. `settings` and `statistics` must outlive it.
class Receiver {
 public:
  Receiver(const Settings& settings, Statistics& statistics, uint32_t address)
      : settings_(settings), statistics_(statistics), address_(address) {}

  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // Waits for one message. Returns the number of delivered records, or a negated result.
  [[nodiscard]] int64_t receive(int32_t timeoutMs, const Handler& handler);

  void close() {
    watch_.close(listener_.socket());
    listener_.close();
  }

 private:
  using Clock = std::chrono::steady_clock;

  enum class Arrival {
    Message,
    Nothing,  // before the timeout or a signal
    Failed,
  };

  [[nodiscard]] Arrival waitForMessage(MessagePart& first, int32_t timeoutMs);
  // Ends connections with endless messages. Returns how long to wait at most for the next check.
  [[nodiscard]] long watchConnections(long wait);
  [[nodiscard]] bool isWellFormed(const FrameHeader& header, std::span<const uint8_t> index,
                                  size_t payloadBytes) const;
  // Whether the peer's key belongs to the header's source. Always true without keys.
  [[nodiscard]] bool isFromItsSource(const FrameHeader& header, MessagePart& first) const;
  [[nodiscard]] int64_t handle(MessagePart& first, const Handler& handler);
  void noteSequence(const FrameHeader& header);
  [[nodiscard]] int64_t deliver(const FrameHeader& header, std::span<const uint8_t> index,
                                const uint8_t* payload, const Handler& handler);

  const Settings& settings_;
  Statistics& statistics_;
  const uint32_t address_;
  Listener listener_;
  ConnectionWatch watch_;  // tcp
  RecordArea area_;
  SequenceTable sequences_;
};

}  // namespace zarnimesh
