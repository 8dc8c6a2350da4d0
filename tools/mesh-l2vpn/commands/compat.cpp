// schema: writes a schema document. compat: compares two of them.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/schema/compatibility.hpp"
#include "inspect/schema/document.hpp"
#include "inspect/texts/printable.hpp"
#include "progress.hpp"

namespace tool {
namespace {

// Differences of a large capture are alike.
constexpr size_t mostShown = 20;

void print(const std::string& name, const char* reader, const Direction& direction) {
  if (direction.verdict == Compatibility::Same) {
    return;
  }
  std::cout << name << ", " << reader << ": " << nameOf(direction.verdict) << '\n';
  for (const std::string& reason : direction.reasons) {
    std::cout << "  " << printable(reason) << '\n';
  }
}

void readCapture(const std::string& file, const LoadedSchema& old, const LoadedSchema& recent,
                 Session& session) {
  CaptureReader reader(file);
  uint64_t tables = 0;
  uint64_t differing = 0;
  {
    Progress progress(session, "tables");
    while (const auto table = reader.next()) {
      ++tables;
      const std::string difference = differenceOn(*table, old, recent);
      if (!difference.empty() && ++differing <= mostShown) {
        session.say("table " + std::to_string(tables) + ": " + difference);
      }
      progress.add(reader.progress());
    }
  }
  session.say(std::to_string(tables) + " tables, " + std::to_string(differing) +
              " of which the schemas read otherwise");
  session.result = differing != 0 ? Exit::BadInput : session.result;
  reader.throwFault();
}

}  // namespace

void runSchema(const SchemaOptions& options, Session& /*session*/) {
  const Json document = schemaDocument(
      options.message.empty() ? messages() : std::span(&messageNamed(options.message), 1));
  std::cout << (options.isJsonSchema ? document["jsonSchema"] : document).dump(2) << '\n';
}

void runCompat(const CompatOptions& options, Session& session) {
  const LoadedSchema old(parseJson(readAll(options.old)));
  const LoadedSchema recent(parseJson(readAll(options.recent)));
  const auto found = compatibility(old, recent);
  if (options.isJson) {
    std::cout << toJson(found).dump(2) << '\n';
  } else {
    for (const MessageCompatibility& message : found) {
      print(printable(message.name), "an old reader of new messages", message.oldReader);
      print(printable(message.name), "a new reader of old messages", message.newReader);
    }
    std::cout << nameOf(worstOf(found)) << '\n';
  }
  session.result = worstOf(found) == Compatibility::Incompatible ? Exit::BadInput : Exit::Success;
  if (!options.capture.empty()) {
    readCapture(options.capture, old, recent, session);
  }
}

}  // namespace tool
