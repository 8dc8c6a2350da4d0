// explain: a message byte by byte.

#include <iostream>

#include "commands/commands.hpp"
#include "commands/input_options.hpp"
#include "commands/message_choice.hpp"
#include "reader/table_reader.hpp"
#include "texts/explanation.hpp"
#include "texts/html_page.hpp"

namespace tool {
namespace {

struct Options {
  InputOptions input;
  bool isHtml = false;
  bool isWhole = false;
};

std::string verdict(const Message& message, const Reading& reading) {
  return std::string(message.name) + ": " + faultCountText(reading) + ", receivers " +
         (reading.isAccepted() ? "take it" : "reject it");
}

void run(const Options& options, Session& session) {
  const std::vector<uint8_t> bytes = options.input.read();
  const Message& message = chooseMessage(options.input.message, bytes, session);
  const Reading reading = readTable(message, bytes);
  if (options.isHtml) {
    std::cout << htmlPage(message, reading, bytes, options.isWhole);
  } else {
    explain(reading, bytes, options.isWhole, session, std::cout);
    for (const std::string& note : reading.notes) {
      std::cout << session.ink(Ink::Yellow, "note: " + note) << '\n';
    }
    std::cout << session.ink(Ink::Bold, verdict(message, reading)) << '\n';
  }
  session.result = reading.faults.empty() ? Exit::Success : Exit::BadInput;
}

}  // namespace

void addExplain(CLI::App& app, Session& session) {
  CLI::App* const command =
      app.add_subcommand("explain", "A message byte by byte, with every fault it has");
  const auto options = makeOptions<Options>();
  options->input.addTo(*command);
  command->add_flag("--html", options->isHtml, "As one page for a browser");
  command->add_flag("--all", options->isWhole, "Long contents as a whole");
  command->footer(
      "Exit status 1 when there is a fault.\n\n"
      "Examples:\n  mesh-l2vpn explain -m l2vpn_sync_vpls_ac_update captured.bin\n"
      "  mesh-l2vpn explain --html -m 0x5EED5F0D captured.bin > captured.html");
  command->callback([options, &session] { run(*options, session); });
}

}  // namespace tool
