// A node's receiving half: takes messages apart and hands out their records.
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

// Where records go.
struct Handler {
  mesh_record_handler function;  // may be null
  void* user;
};

// Used by one thread at a time. `settings` and `statistics` outlive it.
class Receiver {
 public:
  Receiver(const Settings& settings, Statistics& statistics, uint32_t address)
      : settings_(settings), statistics_(statistics), address_(address) {}

  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // Waits for one message; how many of its records were delivered, or the negative of a result.
  [[nodiscard]] int64_t receive(int32_t timeoutMs, const Handler& handler);

  void close() {
    watch_.close(listener_.socket());
    listener_.close();
  }

 private:
  using Clock = std::chrono::steady_clock;

  enum class Arrival {
    Message,
    Nothing,  // in the time given, or until a signal came
    Failed,
  };

  [[nodiscard]] Arrival waitForMessage(MessagePart& first, int32_t timeoutMs);
  // Ends connections without end, and tells how long the next look can wait.
  [[nodiscard]] long watchConnections(long wait);
  [[nodiscard]] bool isWellFormed(const FrameHeader& header, std::span<const uint8_t> index,
                                  size_t payloadBytes) const;
  // Whether the message came from whom it says; asked of nodes that ask for keys.
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
