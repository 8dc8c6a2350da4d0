#include "commands/receive.hpp"

#include <chrono>

#include "inspect/bytes/interruption.hpp"

namespace tool {
namespace {

// How long a receive waits before the loop looks whether it is over.
constexpr int patienceMs = 200;

}  // namespace

void receiveAll(Node& node, const ReceiverOptions& options,
                const std::function<void(const Table&)>& handler,
                const std::function<void()>& whenIdle) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  uint64_t received = 0;
  const auto isOver = [&] {
    return isInterrupted() || (options.count != 0 && received >= options.count) ||
           (options.seconds > 0 &&
            std::chrono::duration<double>(Clock::now() - start).count() >= options.seconds);
  };
  for (bool isBusy = false; !isOver();) {
    if (!isBusy) {
      whenIdle();
    }
    isBusy = node.receive(isBusy ? 0 : patienceMs, [&](const Table& table) {
      // One call may bring more tables than --count asks for.
      if (options.count == 0 || received < options.count) {
        ++received;
        handler(table);
      }
    });
  }
}

}  // namespace tool
