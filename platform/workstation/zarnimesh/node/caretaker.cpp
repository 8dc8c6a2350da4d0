#include "zarnimesh/node/caretaker.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace zarnimesh {
namespace {

constexpr std::chrono::milliseconds interval{20};

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
    thread_ = std::thread([this, generation = ++generation_] { run(generation); });
  }
}

void Caretaker::remove(const Node& node) {
  std::thread ended;
  {
    std::unique_lock lock(mutex_);
    std::erase_if(nodes_, [&](const auto& each) { return each.get() == &node; });
    changed_.wait(lock, [&] { return current_ != &node; });
    if (!nodes_.empty() || !thread_.joinable()) {
      return;
    }
    ++generation_;
    ended = std::move(thread_);
  }
  changed_.notify_all();
  ended.join();
}

void Caretaker::run(uint64_t generation) {
  std::unique_lock lock(mutex_);
  while (generation == generation_) {
    for (size_t i = 0; i < nodes_.size(); ++i) {
      const std::shared_ptr<Node> node = nodes_[i];
      current_ = node.get();
      lock.unlock();
      node->tend();
      lock.lock();
      current_ = nullptr;
      changed_.notify_all();
    }
    changed_.wait_for(lock, interval, [&] { return generation != generation_; });
  }
}

}  // namespace zarnimesh
