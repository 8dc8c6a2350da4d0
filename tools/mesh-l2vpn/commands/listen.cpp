// listen: what arrives at a node, as JSON lines.

#include <iostream>

#include "commands/byte_text_option.hpp"
#include "commands/commands.hpp"
#include "commands/talk_options.hpp"

namespace tool {
namespace {

struct Options {
  ReceiveOptions talk;
  ByteTextOption bytes;
};

void run(const Options& options, const Session& session) {
  catchInterruptions();
  Node node(options.talk.middleware, options.talk.address);
  session.say("node " + std::to_string(options.talk.address) + " listens");
  options.talk.receiveAll(node, [&](const Table& table) {
    // Line by line, for whoever reads in a pipe.
    const std::string line = tableJson(table, options.bytes.form()).dump();
    try {
      std::cout << line << std::endl;
    } catch (const std::ios::failure&) {
      throw outputFailure();  // the middleware has the next word
    }
  });
  const mesh_node_statistics statistics = node.statistics();
  session.say(std::to_string(statistics.received_records + statistics.unknown_identifiers) +
              " tables in " + std::to_string(statistics.received_calls) + " calls; lost calls " +
              std::to_string(node.missedCalls()) + ", malformed " +
              std::to_string(statistics.malformed));
}

}  // namespace

void addListen(CLI::App& app, Session& session) {
  CLI::App* const command =
      app.add_subcommand("listen", "What arrives at a node, as JSON lines, until interrupted");
  const auto options = makeOptions<Options>();
  options->talk.addTo(*command);
  options->bytes.addTo(*command);
  command->footer(
      "Examples:\n  mesh-l2vpn listen 2\n  mesh-l2vpn listen 2 --count 10 | jq .record");
  command->callback([options, &session] { run(*options, session); });
}

}  // namespace tool
