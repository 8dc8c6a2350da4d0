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
  receiveAll(node, options, [&](const Table& table) {
    // Flushes each line, for a reader of a pipe.
    const std::string line = tableJson(table, options.style).dump();
    try {
      std::cout << line << std::endl;
    } catch (const std::ios::failure&) {
      throw outputFailure();  // while errno is that of the output
    }
  });
  const mesh_node_statistics statistics = node.statistics();
  session.say(std::to_string(statistics.received_records + statistics.unknown_identifiers) +
              " tables in " + std::to_string(statistics.received_calls) + " calls; lost calls " +
              std::to_string(node.missedCalls()) + ", malformed " +
              std::to_string(statistics.malformed));
}

}  // namespace tool
