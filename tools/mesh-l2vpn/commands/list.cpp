// list: the catalogue of messages.

#include <iostream>

#include "commands/commands.hpp"
#include "json/description.hpp"
#include "texts/text_table.hpp"
#include "tools/catalogue/catalogue.hpp"

namespace tool {
namespace {

struct Options {
  std::string service;
  bool isJson = false;
};

void run(const Options& options, const Session& session) {
  Json all = Json::array();
  TextTable table(
      {"message", "identifier", "service", "sent", "record", "compact", "fixed", "fingerprint"});
  for (const Message& message : messages()) {
    if (!options.service.empty() && options.service != message.service) {
      continue;
    }
    const Json facts = describe(message);
    table.add({std::string(message.name), facts["identifier"], std::string(message.service),
               facts["sent"], facts["recordSize"].dump(), catalogue::compactText(message.record()),
               facts["fixedSize"].is_null() ? "-" : facts["fixedSize"].dump(),
               facts["fingerprint"]});
    all.push_back(facts);
  }
  std::cout << (options.isJson ? all.dump(2) + '\n' : table.text(session));
}

}  // namespace

void addList(CLI::App& app, Session& session) {
  CLI::App* const command = app.add_subcommand("list", "The messages, with identifiers and sizes");
  const auto options = makeOptions<Options>();
  command->add_option("--service", options->service, "Of one service alone")
      ->check(CLI::IsMember({"l2vpn_cfg", "l2vpn_stat", "l2vpn_sync"}));
  command->add_flag("--json", options->isJson, "As a JSON array");
  command->footer("Examples:\n  mesh-l2vpn list --service l2vpn_cfg\n  mesh-l2vpn list --json");
  command->callback([options, &session] { run(*options, session); });
}

}  // namespace tool
