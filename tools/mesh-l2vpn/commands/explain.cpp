// explain: explains a message byte by byte.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/reader/identification.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/explanation.hpp"
#include "inspect/texts/html_page.hpp"

namespace tool {
void runExplain(const ExplainOptions& options, Session& session) {
  const std::vector<uint8_t> bytes = readBytes(options.file, options.form);
  const auto [message, note] = chooseMessage(options.message, bytes);
  session.say(note);
  const Reading reading = readTable(message, bytes);
  if (options.isHtml) {
    std::cout << htmlPage(message, reading, bytes, options.isWhole);
  } else {
    Text text(std::cout);
    explain(message, reading, bytes, options.isWhole, session.colors(), text);
    text.flush();
  }
  session.result = reading.faults.empty() ? Exit::Success : Exit::BadInput;
}

}  // namespace tool
