// replay: sends the tables of a capture again.

#include <chrono>
#include <thread>

#include "commands/commands.hpp"
#include "inspect/bytes/interruption.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/schema/facts.hpp"
#include "middleware.hpp"
#include "progress.hpp"

namespace tool {
namespace {

// Waits until each table is due.
class Pace {
 public:
  explicit Pace(const ReplayOptions& options) : options_(options) {}

  void waitFor(const Table& table) {
    if (options_.isAtOnce) {
      return;
    }
    if (sent_ == 0) {
      first_ = table.time;
      start_ = Clock::now();
    }
    // Recorded clocks may have been set back.
    const double original =
        table.time > first_ ? static_cast<double>(table.time - first_) / 1e9 : 0;
    const double due =
        options_.rate > 0 ? static_cast<double>(sent_) / options_.rate : original / options_.speed;
    ++sent_;
    const auto at = start_ + std::chrono::duration<double>(due);
    while (!isInterrupted() && Clock::now() < at) {
      std::this_thread::sleep_for(
          std::min<std::chrono::duration<double>>(at - Clock::now(), longestSleep));
    }
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds longestSleep{100};

  const ReplayOptions& options_;
  uint64_t sent_ = 0;
  uint64_t first_ = 0;
  Clock::time_point start_;
};

std::string tablesText(uint64_t count) {
  return std::to_string(count) + (count == 1 ? " table" : " tables");
}

void send(Node& node, uint32_t destination, const Table& table, uint64_t sentBefore) {
  try {
    node.send(destination, table.id, table.bytes, table.extra);
  } catch (const Failure& failure) {
    const KnownMessage* const message = findById(table.id);
    const std::string name =
        message == nullptr ? "identifier " + inspect::hex(table.id) : std::string(message->name);
    throw Failure(failure.cause(), "table " + std::to_string(sentBefore + 1) + ", " + name + ": " +
                                       failure.what() + "; " + tablesText(sentBefore) +
                                       " were sent before");
  }
}

}  // namespace

void runReplay(const ReplayOptions& options, Session& session) {
  catchInterruptions();
  const Selection selection = selectionOf(options, options.message);
  CaptureReader reader(options.file);
  Node node(options.middleware, sendingAddress(options.from));
  Pace pace(options);
  uint64_t sent = 0;
  {
    Progress progress(session, "tables");
    while (const auto table = nextSelected(reader, selection)) {
      pace.waitFor(*table);
      if (isInterrupted()) {
        break;
      }
      send(node, options.to.value_or(table->destination), *table, sent);
      ++sent;
      progress.add(reader.progress());
    }
  }
  try {
    node.close();
  } catch (const Failure& failure) {
    throw Failure(failure.cause(), std::string(failure.what()) + "; " + tablesText(sent) +
                                       " had been passed to the middleware");
  }
  session.say(tablesText(sent) + " sent");
  reader.throwFault();
}

}  // namespace tool
