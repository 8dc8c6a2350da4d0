// The options of a command that talks over the middleware.
#pragma once

#include <CLI/CLI.hpp>
#include <chrono>

#include "bytes/interruption.hpp"
#include "commands/checks.hpp"
#include "middleware.hpp"

namespace tool {

// How long a receive waits before it looks whether it is to go on.
inline constexpr int receivePatienceMs = 200;

struct SendOptions {
  std::string middleware;
  uint32_t from = 0;
  uint64_t to = 0;
  CLI::Option* toOption = nullptr;

  void addTo(CLI::App& command, const char* toText) {
    command.add_option("--middleware", middleware, "The path of a libzarnimesh")
        ->envname("MESH_L2VPN_MIDDLEWARE");
    command.add_option("--from", from, "Address of the sending node; one of its own otherwise")
        ->check(unlikeOctal());
    toOption = command.add_option("--to", to, toText)
                   ->check(unlikeOctal())
                   ->check(CLI::Range(uint64_t{0}, uint64_t{UINT32_MAX}));
  }

  [[nodiscard]] uint32_t sender() const { return from == 0 ? passingAddress() : from; }
};

struct ReceiveOptions {
  std::string middleware;
  uint32_t address = 0;
  uint64_t count = 0;
  double seconds = 0;

  void addTo(CLI::App& command) {
    command.add_option("--middleware", middleware, "The path of a libzarnimesh")
        ->envname("MESH_L2VPN_MIDDLEWARE");
    command.add_option("ADDRESS", address, "Address of the node to be")
        ->required()
        ->check(unlikeOctal());
    command.add_option("--count", count, "End after that many tables")->check(unlikeOctal());
    command.add_option("--seconds", seconds, "End after that time")->check(positive());
  }

  // Hands over what arrives until enough has, the time is over, or the user ends it, whose
  // interruptions are caught before.
  void receiveAll(Node& node, const std::function<void(const Table&)>& handler) const {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    uint64_t received = 0;
    const auto isOver = [&] {
      return isInterrupted() || (count != 0 && received >= count) ||
             (seconds > 0 &&
              std::chrono::duration<double>(Clock::now() - start).count() >= seconds);
    };
    while (!isOver()) {
      node.receive(receivePatienceMs, [&](const Table& table) {
        // A call may bring more than are wanted.
        if (count == 0 || received < count) {
          ++received;
          handler(table);
        }
      });
    }
  }
};

}  // namespace tool
