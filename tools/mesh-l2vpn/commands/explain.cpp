// explain: explains a message byte by byte.

#include <iostream>

#include "commands/inputs.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/explanation.hpp"
#include "inspect/texts/html_page.hpp"

namespace tool {

void runExplain(const ExplainOptions& options, Session& session) {
  const Input input =
      readInput(std::make_unique<InputFile>(options.file), options.form, options.packet);
  const std::vector<uint8_t>& bytes = input.bytes;
  const auto [message, note] = chosenMessage(options.message, input);
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
