// list: all messages.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/schema/description.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/texts/text_table.hpp"

namespace tool {

void runList(const ListOptions& options, Session& session) {
  Json all = Json::array();
  TextTable table(
      {"message", "identifier", "service", "sent", "record", "compact", "fixed", "fingerprint"});
  for (const KnownMessage& message : messages()) {
    if (!options.service.empty() && options.service != message.service) {
      continue;
    }
    const Json facts = describe(message);
    table.add({std::string(message.name), facts["identifier"], std::string(message.service),
               facts["sent"], facts["recordSize"].dump(), inspect::compactText(message.schema()),
               facts["fixedSize"].is_null() ? "-" : facts["fixedSize"].dump(),
               facts["fingerprint"]});
    all.push_back(facts);
  }
  std::cout << (options.isJson ? all.dump(2) + '\n' : table.text(session.colors()));
}

}  // namespace tool
