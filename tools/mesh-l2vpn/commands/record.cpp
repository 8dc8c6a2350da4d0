// record: receives as a node and writes a capture.

#include "commands/commands.hpp"
#include "commands/receive.hpp"
#include "inspect/bytes/interruption.hpp"
#include "inspect/captures/capture_file.hpp"
#include "progress.hpp"

namespace tool {

void runRecord(const RecordOptions& options, Session& session) {
  catchInterruptions();
  // First, so that no file is made or truncated before the node has opened.
  Node node(options.middleware, options.address);
  CaptureWriter writer(options.file,
                       options.isOverwriting ? Existing::Overwritten : Existing::Kept);
  session.say("node " + std::to_string(options.address) + " records");
  uint64_t received = 0;
  const auto recorded = [&writer] { return std::to_string(writer.tables()) + " tables recorded"; };
  try {
    Progress progress(session, "tables");
    receiveAll(
        node, options,
        [&](const Table& table) {
          writer.write(table);
          ++received;
          progress.add(options.count == 0
                           ? 0
                           : static_cast<double>(received) / static_cast<double>(options.count));
        },
        [&] { writer.flush(); });
    writer.writeStatistics(received, node.missedCalls());
    writer.close();
  } catch (const Failure& failure) {
    writer.flush();
    throw Failure(failure.cause(), failure.what() + std::string("; ") + recorded());
  }
  session.say(recorded());
}

}  // namespace tool
