#include "zarnimesh/node/caretaker.hpp"

#include <algorithm>
#include <chrono>
#include <new>
#include <span>
#include <utility>

namespace zarnimesh {
namespace {

constexpr size_t filesOfNode = 3;

constexpr std::chrono::milliseconds interval{20};

// Every so many intervals each node is tended, also without a sign that something happened.
constexpr uint64_t wholeRound = 16;

}  // namespace

Caretaker& Caretaker::instance() {
  // Never destroyed: nodes that are still open end with the process.
  static Caretaker& caretaker = *new Caretaker;
  return caretaker;
}

void Caretaker::add(std::shared_ptr<Node> node) {
  const std::lock_guard lock(mutex_);
  nodes_.push_back(std::move(node));
  if (!thread_.joinable()) {
    thread_ = std::jthread([this](const std::stop_token& stop) { run(stop); });
  }
}

void Caretaker::remove(const Node& node) {
  std::jthread ended;  // joined without the lock
  std::unique_lock lock(mutex_);
  std::erase_if(nodes_, [&](const auto& each) { return each.get() == &node; });
  changed_.wait(lock, [&] { return current_ != &node; });
  if (nodes_.empty()) {
    thread_.request_stop();
    ended = std::move(thread_);
  }
}

void Caretaker::run(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  std::vector<pollfd> files;
  std::vector<std::pair<std::shared_ptr<Node>, bool>> behind;
  for (uint64_t round = 0; !stop.stop_requested(); ++round) {
    // One system call tells for all nodes whether there is something to do.
    files.clear();
    behind.clear();
    try {
      for (const std::shared_ptr<Node>& node : nodes_) {
        behind.emplace_back(node, node->addFiles(files) || round % wholeRound == 0);
      }
    } catch (const std::bad_alloc&) {
      // The other nodes follow in a later round.
    }
    static_cast<void>(poll(files.data(), files.size(), 0));
    for (size_t i = 0; i < behind.size(); ++i) {
      const auto& [node, isBehind] = behind[i];
      const std::span its(&files[i * filesOfNode], filesOfNode);
      const bool told =
          std::any_of(its.begin(), its.end(), [](const pollfd& file) { return file.revents != 0; });
      if ((told || isBehind) && std::find(nodes_.begin(), nodes_.end(), node) != nodes_.end()) {
        current_ = node.get();
        lock.unlock();
        try {
          node->tend();
        } catch (const std::bad_alloc&) {
          // The rest follows in a later round.
        }
        lock.lock();
        current_ = nullptr;
        changed_.notify_all();
      }
    }
    behind.clear();
    changed_.wait_for(lock, stop, interval, [] { return false; });
  }
}

}  // namespace zarnimesh
