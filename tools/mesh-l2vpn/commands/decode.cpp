// decode: bytes become JSON.

#include <iostream>

#include "codec.hpp"
#include "commands/commands.hpp"
#include "commands/input_options.hpp"
#include "raw_table.hpp"
#include "record_json.hpp"
#include "table_reader.hpp"

namespace tool {
namespace {

struct Options {
  InputOptions input;
  bool isOnOneLine = false;
};

void decodeAs(const Message& message, const Bytes& bytes, int indent, Session& session) {
  const Reading reading = readTable(message, bytes);
  for (const Fault& fault : reading.faults) {
    session.say(faultText(fault));
    session.result = Exit::BadInput;
  }
  if (!reading.isAccepted()) {
    throw Failure(Exit::BadInput, "receivers reject this " + std::string(message.name));
  }
  refuseTooMuchMemory(reading);
  const OwnedRecord record = decode(message, bytes);
  std::cout << toJson(message.record(), record.data()).dump(indent) << '\n';
}

void decodeRaw(const Bytes& bytes, int indent) {
  static constexpr const char* fits[] = {"exact", "same slots", "damaged", "reads"};
  Json json = rawTable(bytes);
  Json fitting = Json::array();
  for (const Candidate& candidate : candidatesFor(bytes)) {
    fitting.push_back(
        {{"message", candidate.message->name}, {"fit", fits[static_cast<int>(candidate.fit)]}});
  }
  json["couldBe"] = std::move(fitting);
  std::cout << json.dump(indent) << '\n';
}

}  // namespace

void addDecode(CLI::App& app, Session& session) {
  CLI::App* const command = app.add_subcommand(
      "decode", "Bytes in, JSON out; without a message the raw table and what it could be");
  const auto options = makeOptions<Options>();
  options->input.addTo(*command);
  command->add_flag("--line", options->isOnOneLine, "JSON on one line");
  command->footer(
      "Examples:\n  mesh-l2vpn decode -m l2vpn_sync_vpls_ac_update update.bin\n"
      "  xxd -p update.bin | mesh-l2vpn decode -m 0x5EED5F0D -\n  mesh-l2vpn decode unknown.bin");
  command->callback([options, &session] {
    const Bytes bytes = options->input.read();
    const int indent = options->isOnOneLine ? -1 : 2;
    if (options->input.message.empty()) {
      decodeRaw(bytes, indent);
    } else {
      decodeAs(messageNamed(options->input.message), bytes, indent, session);
    }
  });
}

}  // namespace tool
