// record: receives as a node and writes a capture.

#include "commands/commands.hpp"
#include "commands/receive.hpp"
#include "inspect/bytes/interruption.hpp"
#include "inspect/captures/capture_file.hpp"
#include "progress.hpp"

namespace tool {

void runRecord(const RecordOptions& options, Session& session) {
  catchInterruptions();
  // First, so that an existing capture is truncated only after the node has opened.
  Node node(options.middleware, options.address);
  CaptureWriter writer(options.file);
  session.say("node " + std::to_string(options.address) + " records");
  uint64_t written = 0;
  {
    Progress progress(session, "tables");
    receiveAll(
        node, options,
        [&](const Table& table) {
          writer.write(table);
          ++written;
          progress.add();
        },
        [&] { writer.flush(); });
  }
  writer.writeStatistics(written, node.missedCalls());
  writer.close();
  session.say(std::to_string(written) + " tables recorded");
}

}  // namespace tool
