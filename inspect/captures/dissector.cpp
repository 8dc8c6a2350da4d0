#include "inspect/captures/dissector.hpp"

#include "inspect/captures/dissector_template.hpp"
#include "inspect/messages/messages.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

std::string slotText(const Slot& slot) {
  std::string text = std::string("    {name = \"") + slot.name.data() + "\", kind = \"" +
                     kindName(slot.kind) + "\"";
  if (slot.kind == Kind::Scalar || slot.kind == Kind::Array) {
    text.append(", size = ").append(std::to_string(slot.size));
  } else if (slot.nested != nullptr) {
    text.append(", nested = \"").append(slot.nested->name).append("\"");
    text.append(", size = ").append(std::to_string(slot.size));
  }
  return text + "},\n";
}

std::string recordText(const Schema& schema) {
  const bool isTolerant = schema.style.nestedFailure == mesh::wire::NestedFailure::IsIgnored;
  std::string text = std::string("  ") + schema.name + " = {tolerant = ";
  text.append(isTolerant ? "true" : "false").append(",\n");
  for (const Slot& slot : schema.slots) {
    text += slotText(slot);
  }
  return text + "  },\n";
}

}  // namespace

std::string dissector() {
  std::set<std::string> known;
  std::string records;
  std::string identifiers;
  const auto append = [&](const Schema& schema) { records += recordText(schema); };
  for (const KnownMessage& message : messages()) {
    visitRecords(message.schema(), known, append);
    identifiers.append("  [").append(hex(message.id())).append("] = \"");
    identifiers.append(message.name).append("\",\n");
  }
  return std::string(dissectorHead)
      .append("local records = {\n")
      .append(records)
      .append("}\n\nlocal messages = {\n")
      .append(identifiers)
      .append("}\n")
      .append(dissectorTail);
}

}  // namespace inspect
