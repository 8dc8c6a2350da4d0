// listen: receives as a node and prints JSON lines.

#include <iostream>

#include "commands/commands.hpp"
#include "commands/receive.hpp"
#include "inspect/bytes/interruption.hpp"

namespace tool {

void runListen(const ListenOptions& options, Session& session) {
  catchInterruptions();
  Node node(options.middleware, options.address);
  session.say("node " + std::to_string(options.address) + " listens");
  Text text(std::cout);
  const auto print = [&](auto write) {
    try {
      write();
    } catch (const std::ios::failure&) {
      throw outputFailure();  // while errno is that of the output
    }
  };
  receiveAll(
      node, options,
      [&](const Table& table) { print([&] { writeTable(text, table, options.style); }); },
      [&] {
        print([&] {
          text.flush();
          std::cout.flush();
        });
      });
  print([&] { text.flush(); });
  const mesh_node_statistics statistics = node.statistics();
  session.say(std::to_string(statistics.received_records + statistics.unknown_identifiers) +
              " tables in " + std::to_string(statistics.received_calls) + " calls; lost calls " +
              std::to_string(node.missedCalls()) + ", malformed " +
              std::to_string(statistics.malformed));
}

}  // namespace tool
