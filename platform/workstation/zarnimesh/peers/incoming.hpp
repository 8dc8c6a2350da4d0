// The calls that arrive at a node: takes them from the socket, checks them, and answers senders.
#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "zarnimesh/peers/connection_watch.hpp"
#include "zarnimesh/peers/listener.hpp"
#include "zarnimesh/peers/peer_events.hpp"
#include "zarnimesh/peers/sources.hpp"
#include "zarnimesh/peers/statistics.hpp"

namespace zarnimesh {

// A well-formed call, to be delivered.
struct IncomingCall {
  FrameHeader header;
  MessagePart message;
  const uint8_t* bytes = nullptr;  // of the message
  Source* source = nullptr;
  bool afterGap = false;
  bool late = false;  // its successors were read first
};

// For one thread at a time. `settings`, `statistics` and `events` must outlive it.
class Incoming {
 public:
  using Clock = std::chrono::steady_clock;

  Incoming(const Settings& settings, Statistics& statistics, PeerEvents& events, uint32_t address)
      : settings_(settings), statistics_(statistics), peerEvents_(events), address_(address) {}

  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // Stops listening, counts the calls that were not delivered, and tells the senders.
  void close();

  enum class Arrival {
    Call,
    Nothing,
    Failed,  // the error text is set
  };

  // Takes the next call. Does not wait.
  [[nodiscard]] Arrival take(IncomingCall& call);

  // The handler has seen the call.
  void noteDelivered(const IncomingCall& call);

  // Takes and answers what has arrived, for a later take().
  void tend();

  // Nothing has arrived: confirms calls, ends connections with endless messages, and listens again
  // if the socket's file is gone.
  [[nodiscard]] mesh_result idle();

  // Milliseconds until idle() has something to do.
  [[nodiscard]] int longestWait() const;

  // Becomes readable when something may have arrived since take() found nothing.
  int file() const { return file_; }

  // Calls that tend() took.
  size_t waiting() const { return waiting_.size(); }

  // Whether there may be messages that file() does not announce, or senders to be told.
  bool isBehind() const { return !drained_ || !toBeTold_.empty(); }

  Sources& sources() { return sources_; }

 private:
  // Takes one message. Returns whether there was one; `isCall` tells whether `call` is filled.
  [[nodiscard]] bool takeMessage(IncomingCall& call, bool& isCall);
  [[nodiscard]] bool accept(uint64_t route, IncomingCall& call);
  [[nodiscard]] bool isWellFormed(const FrameHeader& header,
                                  std::span<const uint8_t> message) const;
  [[nodiscard]] bool isFromItsSource(IncomingCall& call);
  [[nodiscard]] Source* book(uint64_t route, IncomingCall& call);
  void toldLater(Source& source);
  void tellAll();
  bool tell(Source& source);

  const Settings& settings_;
  Statistics& statistics_;
  PeerEvents& peerEvents_;
  const uint32_t address_;
  uint64_t incarnation_ = 0;
  Listener listener_;
  ConnectionWatch watch_;
  MessagePart route_;  // of the latest message
  Sources sources_;
  std::deque<IncomingCall> waiting_;  // taken by tend()
  std::vector<Source*> toBeTold_;
  int file_ = -1;
  bool drained_ = false;     // the socket had no message when it was asked last
  Clock::time_point now_{};  // roughly
  Clock::time_point nextLook_{};
};

}  // namespace zarnimesh
