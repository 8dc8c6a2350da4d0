// decode: bytes become JSON.

#include <iostream>

#include "capture_file.hpp"
#include "codec.hpp"
#include "commands/byte_text_option.hpp"
#include "commands/commands.hpp"
#include "commands/input_options.hpp"
#include "progress.hpp"
#include "raw_table.hpp"
#include "record_json.hpp"
#include "table_reader.hpp"

namespace tool {
namespace {

struct Options {
  InputOptions input;
  ByteTextOption bytes;
  bool isOnOneLine = false;
  bool isCaptured = false;

  [[nodiscard]] int indent() const { return isOnOneLine ? -1 : 2; }
};

void decodeAs(const Message& message, const Bytes& bytes, const Options& options,
              Session& session) {
  const Verdict reading = judge(message, bytes);
  for (const Fault& fault : reading.faults) {
    session.say(faultText(fault));
    session.result = Exit::BadInput;
  }
  if (!reading.isAccepted()) {
    throw Failure(Exit::BadInput, "receivers reject this " + std::string(message.name));
  }
  refuseTooMuchMemory(reading);
  const OwnedRecord record = decode(message, bytes);
  std::cout << toJson(message.schema(), record.data(), options.bytes.form()).dump(options.indent())
            << '\n';
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

std::string cutText(const Table& table) {
  const size_t held = table.bytes.size();
  return "the capture holds " + std::to_string(held) + " of its " +
         std::to_string(held + table.cutOff) + " bytes";
}

// Table by table, in as much memory as the largest takes.
void decodeCapture(std::unique_ptr<InputFile> file, const Options& options, Session& session) {
  CaptureReader reader(std::move(file));
  const Message* const wanted =
      options.input.message.empty() ? nullptr : &messageNamed(options.input.message);
  {
    Progress progress(session, "tables");
    while (const auto table = reader.next()) {
      if (wanted != nullptr && table->id != wanted->id()) {
        continue;
      }
      Json json = tableJson(*table, options.bytes.form());
      if (table->cutOff != 0) {
        json["faults"].push_back(cutText(*table));
      }
      std::cout << json.dump() << '\n';
      session.result =
          json.contains("record") && !json.contains("faults") ? session.result : Exit::BadInput;
      progress.add();
    }
  }
  reader.throwFault();
}

}  // namespace

void addDecode(CLI::App& app, Session& session) {
  CLI::App* const command = app.add_subcommand(
      "decode", "Bytes in, JSON out; without a message the raw table and what it could be");
  const auto options = makeOptions<Options>();
  options->input.addTo(*command);
  options->bytes.addTo(*command);
  command->add_flag("--line", options->isOnOneLine, "JSON on one line");
  command
      ->add_flag("--capture", options->isCaptured,
                 "The input is a capture: a line of JSON for each table")
      ->excludes("--binary", "--hex");
  command->footer(
      "Examples:\n  mesh-l2vpn decode -m l2vpn_sync_vpls_ac_update update.bin\n"
      "  xxd -p update.bin | mesh-l2vpn decode -m 0x5EED5F0D -\n  mesh-l2vpn decode unknown.bin\n"
      "  mesh-l2vpn decode night.pcapng | jq 'select(.faults)'");
  command->callback([options, &session] {
    auto file = std::make_unique<InputFile>(options->input.file);
    if (options->isCaptured || (options->input.form() == InputForm::Guessed && isCapture(*file))) {
      return decodeCapture(std::move(file), *options, session);
    }
    const Bytes bytes = readBytes(*file, options->input.form());
    if (options->input.message.empty()) {
      decodeRaw(bytes, options->indent());
    } else {
      decodeAs(messageNamed(options->input.message), bytes, *options, session);
    }
  });
}

}  // namespace tool
