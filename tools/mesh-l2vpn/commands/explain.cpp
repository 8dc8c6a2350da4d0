// explain: a message byte by byte.

#include <iostream>

#include "commands/commands.hpp"
#include "commands/message_choice.hpp"
#include "reader/table_reader.hpp"
#include "texts/explanation.hpp"
#include "texts/html_page.hpp"

namespace tool {
namespace {

std::string verdict(const Message& message, const Reading& reading) {
  return std::string(message.name) + ": " + faultCountText(reading) + ", receivers " +
         (reading.isAccepted() ? "take it" : "reject it");
}

}  // namespace

void runExplain(const ExplainOptions& options, Session& session) {
  const std::vector<uint8_t> bytes = readBytes(options.file, options.form);
  const Message& message = chooseMessage(options.message, bytes, session);
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

}  // namespace tool
