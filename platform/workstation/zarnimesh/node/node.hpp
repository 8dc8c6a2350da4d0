// One node: its settings, its counters and its two halves.
#pragma once

#include <unistd.h>

#include <atomic>
#include <memory>

#include "zarnimesh/node/receiver.hpp"
#include "zarnimesh/node/sender.hpp"

namespace zarnimesh {

class Node {
 public:
  explicit Node(uint32_t address)
      : sender_(settings_, statistics_, address), receiver_(settings_, statistics_, address) {}

  [[nodiscard]] mesh_result open(const mesh_node_options& options);

  // Takes the receiving half for the calling thread; false when another thread has it. Closing
  // takes it and does not give it back.
  [[nodiscard]] bool takeReceiver() { return !receiving_.exchange(true); }
  void giveReceiverBack() { receiving_.store(false); }

  // For the thread that has taken the receiving half. Everything that was opened is closed, and the
  // process's context ended when no other node uses it.
  void close();

  Sender& sender() { return sender_; }
  Receiver& receiver() { return receiver_; }
  mesh_node_statistics statistics() const { return statistics_.read(); }
  pid_t process() const { return process_; }

 private:
  const pid_t process_ = getpid();
  Settings settings_;
  Statistics statistics_;
  Sender sender_;
  Receiver receiver_;
  std::atomic<bool> receiving_ = false;
};

}  // namespace zarnimesh
