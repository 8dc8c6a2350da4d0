// A node's sending socket, with the connections to all its destinations.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "zarnimesh/configuration/settings.hpp"
#include "zarnimesh/peers/destination.hpp"
#include "zarnimesh/peers/peer_events.hpp"
#include "zarnimesh/transport/context.hpp"
#include "zarnimesh/transport/socket.hpp"

namespace zarnimesh {

// For one thread at a time. `settings` and `events` must outlive it. Call close() before it is
// destroyed.
//
// One ROUTER socket serves all destinations: it names each connection by a route that this class
// chooses, and takes one descriptor for each.
class Outgoing {
 public:
  Outgoing(const Settings& settings, PeerEvents& events)
      : settings_(settings), peerEvents_(events) {}

  void open(std::shared_ptr<Context> context) { context_ = std::move(context); }
  void close();

  using Destinations = std::unordered_map<uint32_t, std::unique_ptr<Destination>>;
  const Destinations& destinations() const { return destinations_; }
  // Adds it if it is new.
  Destination& destination(uint32_t address) {
    if (latest_ == nullptr || latest_->address() != address) {
      latest_ = &findOrAdd(address);
    }
    return *latest_;
  }

  // Starts connecting, if that was not done yet. Over inproc it stays unconnected while there is no
  // receiver.
  [[nodiscard]] mesh_result connect(Destination& destination) {
    return destination.link.route != 0 ? MESH_OK : connectAnew(destination);
  }

  // Hands a message to ZeroMQ and empties it. False when the receiver is gone; the message is then
  // unchanged. The destination must be connected.
  [[nodiscard]] bool push(Destination& destination, MessagePart& message);

  // Takes what receivers and ZeroMQ told since the last call. Destinations that were connected, or
  // miss too many calls, are to be sent a Sync.
  void update();

  // Receivers that were not heard for the time of a heartbeat are to be sent a Sync. Those that did
  // not answer for two more count as gone until they answer, and are asked again. Over inproc
  // nobody is asked.
  void askUnheard();

  // A Sync is to be sent. Takes no memory.
  void setToSync(Destination& destination);
  // Whether that was called since the last time.
  bool takeToSync() { return std::exchange(hasToSync_, false); }

  // Over inproc ZeroMQ tells nothing: looks for receivers that ended, and connects to successors of
  // those that left calls unconfirmed. Costs nothing if no receiver came or went.
  void checkInproc();

  // What poll() has to wait for. update() must be called first: ZeroMQ announces only what comes
  // later.
  int stateFile() const { return stateFile_; }
  int eventFile() const { return eventFile_; }

  // Whether some node may receive at the destination, as far as this can be told at once.
  static bool mayBePresent(const Destination& destination);

 private:
  Destination& findOrAdd(uint32_t address);
  [[nodiscard]] mesh_result connectAnew(Destination& destination);
  // A function of its own, so that the thread sanitizer knows who called ZeroMQ.
  [[nodiscard, gnu::noinline]] mesh_result connectTo(Destination& destination,
                                                     const std::string& endpoint);
  [[nodiscard]] mesh_result openSocket();
  [[nodiscard]] mesh_result openEvents();
  [[nodiscard]] mesh_result setKeys(const Destination& destination);
  void takeStates();
  void takeState(uint64_t route, MessagePart& message);
  // Over tcp, notes how events name the destination's next connection. That of its first one is the
  // address book's.
  static void noteHost(Destination& destination, MessagePart& state);
  // A tcp connection succeeded, but the host's number does not tell whose it is. Asks the absent
  // destinations at the port: the right one answers.
  void askAt(uint16_t port);
  void disconnect(Destination& destination);
  // Inproc: the receiver has left the table. Waits until ZeroMQ tells of its end, behind its last
  // words, but not longer than `end`.
  void awaitEnd(const Destination& destination, Destination::Clock::time_point end);
  void setLink(Destination& destination, bool connected, bool silent);
  void tellWater(Destination& destination);

  const Settings& settings_;
  PeerEvents& peerEvents_;
  std::shared_ptr<Context> context_;
  Socket socket_;
  Socket events_;  // ipc and tcp: reports that a receiver connected or disconnected
  int stateFile_ = -1;
  int eventFile_ = -1;
  uint64_t latestRoute_ = 0;
  uint64_t inprocVersion_ = 0;
  Destination::Clock::time_point nextBeat_{};  // askUnheard() looks again then
  Destinations destinations_;                  // never removed
  Destination* latest_ = nullptr;              // found last
  std::unordered_map<uint64_t, Destination*> byRoute_;
  bool hasToSync_ = false;
};

}  // namespace zarnimesh
