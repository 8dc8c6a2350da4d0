// What a node knows of one destination: its connection, and the calls that it did not confirm yet.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "zarnimesh/configuration/settings.hpp"
#include "zarnimesh/transport/frame.hpp"

namespace zarnimesh {

// For one thread at a time. `settings` must outlive it.
class Destination {
 public:
  using Clock = std::chrono::steady_clock;

  Destination(const Settings& settings, uint32_t address)
      : settings_(settings), address_(address), endpoint_(settings.endpointOf(address)) {}

  uint32_t address() const { return address_; }
  const Endpoint& endpoint() const { return endpoint_; }

  // Whether the receiver's credit and the node's own limits admit a call of `bytes`. One call is
  // always admitted, however large.
  bool hasRoom(uint32_t bytes) const {
    return unconfirmed() == 0 || (unconfirmed() < callLimit() && bytes <= byteLimit() &&
                                  unconfirmedBytes_ <= byteLimit() - bytes);
  }

  // Gives the call the next number, and lets it ask for confirmation when a quarter of the credit
  // is used. Then noteSent() or takeBack().
  void number(FrameHeader& call);
  void noteSent(const FrameHeader& call);
  void takeBack() { unconfirmed_.pop_back(); }

  // `extra` corrects what the receiver `count` has counted as missed before the first call. Another
  // one ignores it.
  FrameHeader sync(bool closing) const {
    return {.kind = Kind::Sync,
            .flags = closing ? closingFlag : uint8_t{0},
            .sequence = numbered_,
            .confirmed = settled_,
            .extra = lostAtRestart_,
            .count = static_cast<uint32_t>(receiver_)};
  }

  // The receiver's answer. Returns whether another node answered before.
  bool note(const FrameHeader& state, const StateBody& body);

  // Whether the receiver may count calls as missed that a predecessor confirmed: it has said so, or
  // has not answered over this connection. A sync() corrects it.
  bool mayMissTooMany() const {
    return numbered_ > 0 && (!link.answered || missedBefore_ > lostAtRestart_);
  }

  // MESH_PEER_HIGH_WATER or MESH_PEER_LOW_WATER, if it was reached since the last call.
  std::optional<mesh_peer_change> newWater();

  uint64_t sent() const { return numbered_; }
  uint64_t sentBytes() const { return sentBytes_; }
  uint64_t unconfirmed() const { return numbered_ - settled_; }
  // Calls that did not arrive, as far as a receiver or its successor has told. None is unconfirmed.
  uint64_t lost() const { return lostBefore_ + missing_; }
  // Whether the receiver knows that no call follows. It then counts those that it does not deliver.
  bool knowsOfClosing() const { return knowsOfClosing_; }
  // Calls that this node must count when it closes. The receiver counts those that have arrived.
  uint64_t missing() const {
    const bool counts = (link.connected && link.answered) || knowsOfClosing_;
    return lost() + (counts ? missingAhead_ + numbered_ - arrived_ : unconfirmed());
  }
  uint64_t mostUnconfirmed() const { return mostUnconfirmed_; }
  Clock::time_point heardAt() const { return heardAt_; }

  // Kept by Outgoing.
  struct Link {
    uint64_t route = 0;         // ZeroMQ's name of the connection; 0 before the first
    std::string connectedTo{};  // as ZeroMQ's events name the endpoint
    // As they name it next: with the number of the host that answered over tcp.
    std::string resolved{};
    uint64_t generation = 0;  // inproc: of the connected receiver
    bool connected = false;   // as far as ZeroMQ's events tell
    bool silent = false;      // connected, but does not answer
    bool guessed = false;     // perhaps connected: its port is that of an unknown connection
    bool answered = false;    // since it was connected
    std::optional<Clock::time_point> asked{};  // since the receiver was heard last
    bool toSync = false;                       // a Sync is to be sent

    bool present() const { return connected && !silent; }
  } link;
  // A call found no receiver. The next one does not wait until there is a sign of one.
  bool givenUp = false;
  // A sender that waits for room asks again then.
  Clock::time_point nextSync{};

 private:
  size_t callLimit() const { return std::min(settings_.sendQueueCalls, grantedCalls_); }
  uint32_t byteLimit() const { return std::min(settings_.queueBytes, grantedBytes_); }
  void settle(uint64_t sequence);

  const Settings& settings_;
  const uint32_t address_;
  const Endpoint endpoint_;

  uint64_t numbered_ = 0;  // calls sent
  uint64_t settled_ = 0;   // delivered or lost: all up to this one
  uint64_t arrived_ = 0;   // arrived or lost: all up to this one
  uint64_t sentBytes_ = 0;
  std::deque<uint32_t> unconfirmed_;  // bytes of each call after settled_, and of a numbered one
  uint64_t unconfirmedBytes_ = 0;
  uint64_t mostUnconfirmed_ = 0;
  bool aboveWater_ = false;
  uint32_t askedCalls_ = 0;  // since the latest call that asks for confirmation
  uint64_t askedBytes_ = 0;

  uint64_t receiver_ = 0;  // incarnation of the node that answered last; 0 before the first answer
  uint64_t first_ = 0;     // the first call that it knows of. Receivers forget unconnected senders
  uint64_t missing_ = 0;   // calls that this receiver misses, up to settled_
  uint64_t missingAhead_ = 0;  // and from there to arrived_
  uint64_t missedBefore_ = 0;  // and before its first one, as it has told
  bool knowsOfClosing_ = false;
  uint64_t lostBefore_ = 0;     // calls that its predecessors missed or never confirmed
  uint64_t lostAtRestart_ = 0;  // the part of them that its latest predecessor never confirmed
  uint32_t grantedCalls_ = initialCredit;
  uint32_t grantedBytes_ = UINT32_MAX;
  Clock::time_point heardAt_{};
};

// Inline: every call needs them.

inline void Destination::number(FrameHeader& call) {
  unconfirmed_.push_back(call.bytes);  // first: it may find no memory
  call.kind = Kind::Call;
  call.sequence = numbered_ + 1;
  call.confirmed = settled_;
  const bool asks = askedCalls_ + 1 >= std::max<size_t>(1, callLimit() / 4) ||
                    askedBytes_ + call.bytes >= byteLimit() / 4;
  call.flags = asks ? tellFlag : uint8_t{0};
}

inline void Destination::noteSent(const FrameHeader& call) {
  ++numbered_;
  sentBytes_ += call.bytes;
  unconfirmedBytes_ += call.bytes;
  mostUnconfirmed_ = std::max(mostUnconfirmed_, unconfirmed());
  const bool asks = (call.flags & tellFlag) != 0;
  askedCalls_ = asks ? 0 : askedCalls_ + 1;
  askedBytes_ = asks ? 0 : askedBytes_ + call.bytes;
}

inline std::optional<mesh_peer_change> Destination::newWater() {
  const size_t calls = unconfirmed_.size();
  if (!aboveWater_ && calls * 4 >= callLimit() * 3) {
    aboveWater_ = true;
    return MESH_PEER_HIGH_WATER;
  }
  if (aboveWater_ && calls * 4 <= callLimit()) {
    aboveWater_ = false;
    return MESH_PEER_LOW_WATER;
  }
  return std::nullopt;
}

}  // namespace zarnimesh
