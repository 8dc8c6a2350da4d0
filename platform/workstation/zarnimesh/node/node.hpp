// One node: its settings, counters, sender and receiver.
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

  // Reserves the receiver for the calling thread. False when another thread has it. A closing
  // thread takes it and keeps it.
  [[nodiscard]] bool takeReceiver() { return !receiving_.exchange(true); }
  void giveReceiverBack() { receiving_.store(false); }

  // Closes everything. Also ends the process's context if no other node uses it. The calling thread
  // must have taken the receiver.
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
