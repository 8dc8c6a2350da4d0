// One node: its settings, counters, sender and receiver.
#pragma once

#include <poll.h>

#include <atomic>
#include <vector>

#include "zarnimesh/node/receiver.hpp"
#include "zarnimesh/node/sender.hpp"

namespace zarnimesh {

class Node {
 public:
  explicit Node(uint32_t address)
      : events_(settings_),
        sender_(settings_, statistics_, events_, address),
        receiver_(settings_, statistics_, events_, address) {}

  [[nodiscard]] mesh_result open(const mesh_node_options& options);

  // Reserves the receiver for the calling thread. False when a thread has it. A thread whose
  // handler left by longjmp has it no more. A closing thread takes it and keeps it: until the
  // receiver is given back nobody else can close the node. `frame`: where the stack frame of the
  // exported function begins.
  [[nodiscard]] bool takeReceiver(const char* frame);
  void giveReceiverBack();

  // Closes everything. The calling thread must have taken the receiver. Returns as Sender::close().
  // `last`: the final counters.
  [[nodiscard]] uint64_t close(mesh_node_statistics& last);

  // Does what is to be done from time to time.
  void tend();

  // Makes the calls of the peer hook that are due. For one thread at a time.
  void tellOfPeers();

  // Adds what to wait for. Returns whether tend() may have something to do without that.
  bool addFiles(std::vector<pollfd>& files);

  // A negative timeout stands for the node's options. `frame`: as above.
  [[nodiscard]] mesh_result send(const char* frame, uint32_t destination,
                                 const mesh_msg_desc* descriptors, uint32_t count, uint64_t extra,
                                 int32_t timeoutMs) {
    const std::chrono::milliseconds timeout(timeoutMs);
    const bool usual = timeoutMs < 0;
    const Sender::Patience patience{.connect = usual ? settings_.connectTimeout : timeout,
                                    .room = usual ? settings_.sendTimeout : timeout,
                                    .frame = frame};
    return sender_.send(destination, descriptors, count, extra, patience);
  }
  Receiver& receiver() { return receiver_; }
  mesh_node_statistics statistics();
  PeerTable peers();

 private:
  Settings settings_;
  Statistics statistics_;
  PeerEvents events_;
  Sender sender_;
  Receiver receiver_;
  // The frame of the call that has the receiver, and its thread.
  std::atomic<const char*> receiverFrame_ = nullptr;
  std::atomic<const void*> receiverThread_ = nullptr;
};

}  // namespace zarnimesh
