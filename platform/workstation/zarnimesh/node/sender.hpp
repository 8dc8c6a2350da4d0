// A node's sender.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <span>

#include "zarnimesh/mesh.h"
#include "zarnimesh/node/peer_table.hpp"
#include "zarnimesh/peers/outgoing.hpp"
#include "zarnimesh/peers/statistics.hpp"

namespace zarnimesh {

// Thread-safe. `settings`, `statistics` and `events` must outlive it.
class Sender {
 public:
  Sender(const Settings& settings, Statistics& statistics, PeerEvents& events, uint32_t source)
      : settings_(settings),
        statistics_(statistics),
        source_(source),
        outgoing_(settings, events) {}

  // Picks the random incarnation.
  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // How long a send waits at most.
  struct Patience {
    std::chrono::milliseconds connect;
    std::chrono::milliseconds room;  // not in a handler
    const char* frame;               // as isInHandler() needs it
  };

  // Sends one call and counts the result.
  [[nodiscard]] mesh_result send(uint32_t destination, const mesh_msg_desc* descriptors,
                                 uint32_t count, uint64_t extra, const Patience& patience);

  // Takes what receivers told, and asks those that were not heard, if no other thread is sending.
  void tend();

  // What to wait for; -1 for none. `isBehind`: tend() may have something to do without that.
  struct Files {
    int state;
    int event;
    bool isBehind;
  };
  Files files();

  // Ends sends in progress, refuses new ones, and waits until connected receivers say that all
  // calls arrived. Called once. Returns how many did not, as far as is known, and were not counted
  // as undelivered before. `undelivered`: as in the statistics, finally.
  [[nodiscard]] uint64_t close(uint64_t& undelivered);

  void count(mesh_node_statistics& statistics);
  void describe(PeerTable& peers);

 private:
  using Clock = std::chrono::steady_clock;
  using Lock = std::unique_lock<std::mutex>;

  [[nodiscard]] mesh_result sendLocked(Lock& lock, FrameHeader& header, MessagePart& message,
                                       const Patience& patience);
  // Waits until something may have changed, and updates.
  void wait(Lock& lock, Clock::time_point until);
  void update();
  void syncAll();
  [[nodiscard]] bool push(Destination& destination, const FrameHeader& header,
                          MessagePart& message);
  void sync(Destination& destination, bool closing);
  // Returns the number of calls that are missing.
  [[nodiscard]] uint64_t waitForArrival(Lock& lock);

  const Settings& settings_;
  Statistics& statistics_;
  const uint32_t source_;
  uint64_t incarnation_ = 0;

  std::mutex mutex_;  // guards the members below, and the sender's counters
  std::condition_variable changed_;
  Outgoing outgoing_;
  bool closing_ = false;
  bool behind_ = false;   // a message was sent since the last update(): it may hide an announcement
  bool polling_ = false;  // a thread waits for the sockets; the others wait for it
  int waiting_ = 0;       // threads in wait()
};

}  // namespace zarnimesh
