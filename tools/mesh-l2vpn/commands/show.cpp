// show: shows one message. template: a record of it to fill in.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/schema/description.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/texts/text_table.hpp"

namespace tool {
namespace {

std::string cell(const Json& value) {
  return value.is_null() ? "-" : value.is_string() ? value.get<std::string>() : value.dump();
}

// Fields of nested tables are named by their path.
void addRows(TextTable& table, const Json& slots, const std::string& path) {
  for (const Json& slot : slots) {
    const bool hasCount = !slot["countOffset"].is_null();
    const std::string name = path + slot["name"].get<std::string>();
    table.add({cell(slot["slot"]), name, slot["kind"],
               hasCount ? cell(slot["countOffset"]) + ", " + cell(slot["recordOffset"])
                        : cell(slot["recordOffset"]),
               cell(slot["fixedPosition"])});
    if (slot.contains("slots")) {
      addRows(table, slot["slots"], name + (hasCount ? "[]." : "."));
    }
  }
}

std::string textOf(const KnownMessage& message, const Session& session) {
  const Json facts = describeWithSlots(message);
  std::string text = session.colors().ink(Ink::Bold, message.name) + '\n';
  const auto line = [&text](std::string_view label, const std::string& value) {
    text.append("  ").append(label).append(14 - label.size(), ' ').append(value).append("\n");
  };
  line("identifier", facts["identifier"]);
  line("service", facts["service"]);
  line("sent", cell(facts["sent"]) + " arrangement");
  line("record", cell(facts["recordSize"]) + " bytes");
  line("vtable", cell(facts["vtableLength"]) + " bytes");
  line("compact", inspect::compactText(message.schema()) + " bytes");
  line("fixed", facts["fixedSize"].is_null() ? "none" : cell(facts["fixedSize"]) + " bytes");
  line("fingerprint", facts["fingerprint"]);
  TextTable table({"slot", "name", "kind", "record offset", "fixed position"});
  addRows(table, facts["slots"], "");
  return text + '\n' + table.text(session.colors());
}

}  // namespace

void runShow(const ShowOptions& options, Session& session) {
  const KnownMessage& message = messageNamed(options.message);
  std::cout << (options.isJson ? describeWithSlots(message).dump(2) + '\n'
                               : textOf(message, session));
}

void runTemplate(const TemplateOptions& options, Session& /*session*/) {
  std::cout << templateOf(messageNamed(options.message).schema()).dump(2) << '\n';
}

}  // namespace tool
