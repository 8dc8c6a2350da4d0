// explain: explains a message byte by byte.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/explanation.hpp"
#include "inspect/texts/html_page.hpp"

namespace tool {
namespace {

std::string verdict(const KnownMessage& message, const Reading& reading) {
  return std::string(message.name) + ": " + faultCountText(reading) + ", receivers " +
         (reading.isAccepted() ? "accept it" : "reject it");
}

}  // namespace

void runExplain(const ExplainOptions& options, Session& session) {
  const std::vector<uint8_t> bytes = readBytes(options.file, options.form);
  const auto [message, note] = chooseMessage(options.message, bytes);
  session.say(note);
  const Reading reading = readTable(message, bytes);
  if (options.isHtml) {
    std::cout << htmlPage(message, reading, bytes, options.isWhole);
  } else {
    const Colors colors = session.colors();
    explain(reading, bytes, options.isWhole, colors, std::cout);
    for (const std::string& each : reading.notes) {
      std::cout << colors.ink(Ink::Yellow, "note: " + each) << '\n';
    }
    std::cout << colors.ink(Ink::Bold, verdict(message, reading)) << '\n';
  }
  session.result = reading.faults.empty() ? Exit::Success : Exit::BadInput;
}

}  // namespace tool
