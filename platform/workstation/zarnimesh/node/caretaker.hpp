// The thread that looks after the process's nodes.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include "zarnimesh/node/node.hpp"

namespace zarnimesh {

// Runs while there are nodes. A node that does not receive is answered for, and a destination that
// nobody sends to is heard.
class Caretaker {
 public:
  // The only one of the process.
  static Caretaker& instance();

  void add(std::shared_ptr<Node> node);
  // Afterwards the thread does not touch the node. Not from the node's peer hook.
  void remove(const Node& node);

 private:
  void run(const std::stop_token& stop);

  std::mutex mutex_;  // guards the members below
  std::condition_variable_any changed_;
  std::vector<std::shared_ptr<Node>> nodes_;
  const Node* current_ = nullptr;  // the thread is looking after it
  std::jthread thread_;
};

}  // namespace zarnimesh
