// record: what arrives at a node, into a capture.

#include "captures/capture_file.hpp"
#include "commands/commands.hpp"
#include "commands/talk_options.hpp"
#include "progress.hpp"

namespace tool {
namespace {

struct Options {
  ReceiveOptions talk;
  std::string file;
};

void run(const Options& options, const Session& session) {
  catchInterruptions();
  // First of all, so that an old capture is replaced only by one that can be made.
  Node node(options.talk.middleware, options.talk.address);
  CaptureWriter writer(options.file);
  session.say("node " + std::to_string(options.talk.address) + " records");
  uint64_t written = 0;
  {
    Progress progress(session, "tables");
    options.talk.receiveAll(node, [&](const Table& table) {
      writer.write(table);
      ++written;
      progress.add();
    });
  }
  writer.writeStatistics(written, node.missedCalls());
  writer.close();
  session.say(std::to_string(written) + " tables recorded");
}

}  // namespace

void addRecord(CLI::App& app, Session& session) {
  CLI::App* const command =
      app.add_subcommand("record", "What arrives at a node, into a pcapng file, until interrupted");
  const auto options = makeOptions<Options>();
  options->talk.addTo(*command);
  command->add_option("FILE", options->file, "The file to write; - for the standard output")
      ->required();
  command->footer("Example:\n  mesh-l2vpn record 2 night.pcapng");
  command->callback([options, &session] { run(*options, session); });
}

}  // namespace tool
