// A node's receiver: decodes the tables of calls and passes the records to the handler.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

#include "zarnimesh/node/hooks.hpp"
#include "zarnimesh/node/record_area.hpp"
#include "zarnimesh/node/sender.hpp"
#include "zarnimesh/peers/incoming.hpp"
#include "zarnimesh/transport/wakeup.hpp"

namespace zarnimesh {

// The caller's handler.
struct Handler {
  mesh_record_handler function;  // may be null
  void* user;
  bool decodes = true;  // false: it gets tables without records, of all identifiers
};

// `settings`, `statistics` and `events` must outlive it.
class Receiver {
 public:
  Receiver(const Settings& settings, Statistics& statistics, PeerEvents& events, uint32_t address)
      : settings_(settings),
        statistics_(statistics),
        incoming_(settings, statistics, events, address) {}

  [[nodiscard]] mesh_result open(std::shared_ptr<Context> context);

  // Delivers one message that has arrived, or goes on with the one that a handler left. Returns the
  // number of delivered records, or a negated result. For one thread at a time. `turn` is kept.
  [[nodiscard]] std::optional<int64_t> receiveNext(const Handler& handler, uint64_t turn);
  // Of several receivers, the one with the highest turn was asked last.
  uint64_t turn() const { return turn_; }

  // The thread waits until file() is readable. Returns for how many milliseconds at most.
  [[nodiscard]] int beginWait();
  void endWait();
  // Nothing has arrived.
  [[nodiscard]] mesh_result idle();

  // Takes and answers what arrived, if no thread receives.
  void tend();

  // Whether tend() may have something to do though file() is not readable.
  bool isBehind();

  // Calls that receive() can take without waiting, as far as is known. While a thread waits there
  // are none: it takes what arrives.
  size_t waiting();
  // Readable when a message may have arrived since the receiver found none.
  int file() const { return incoming_.file(); }
  // As file(), and readable when tend() has taken calls: for callers. -1 when the system fails.
  int callersFile();

  void describe(PeerTable& peers);

  void close();

 private:
  using Lock = std::unique_lock<std::mutex>;

  // tend(). Requires the mutex.
  void tendLocked();
  // Takes the next call. Requires the mutex.
  [[nodiscard]] Incoming::Arrival takeNext();
  // Notes the call if it was delivered since. Requires the mutex.
  void noteDelivered();
  // Calls that wait for delivery, as far as is known. Requires the mutex.
  size_t undelivered() const;
  [[nodiscard]] int64_t deliver(const Handler& handler);
  [[nodiscard]] bool findHook(uint32_t id);
  void releaseRecord();

  const Settings& settings_;
  Statistics& statistics_;
  RecordArea area_;

  std::mutex mutex_;  // guards the members below. Not held during waits and handlers
  Incoming incoming_;
  bool waiting_ = false;  // a thread waits for the socket, which announces a change only once
  Wakeup wakeup_;

  // The receiving thread replaces the call under the lock. It says without the lock that the call
  // was delivered, so that most calls need the lock once.
  enum class Stage : uint8_t { Taken, Delivered, Noted };
  IncomingCall call_;
  std::atomic<Stage> stage_ = Stage::Noted;

  // The receiving thread's. They outlive receive(), because a handler may leave it by longjmp.
  uint64_t turn_ = 0;
  bool delivering_ = false;
  size_t entry_ = 0;  // of the next table
  const uint8_t* table_ = nullptr;
  bool recordOut_ = false;
  uint32_t recordSize_ = 0;
  Hook hook_{};  // of hookId_, if hookVersion_ is current
  uint32_t hookId_ = 0;
  uint64_t hookVersion_ = 0;
};

// Waits for one message at any of the receivers. Returns as receiveNext(); 0 also after the timeout
// or a signal. A negative timeout waits for ever.
[[nodiscard]] int64_t receiveAny(std::span<Receiver* const> receivers, int32_t timeoutMs,
                                 const Handler& handler);

}  // namespace zarnimesh
