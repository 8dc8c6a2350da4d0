#include "inspect/captures/dissector.hpp"

#include <set>

#include "inspect/captures/dissector_template.hpp"
#include "inspect/messages/messages.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

const char* kindName(Kind kind) {
  switch (kind) {
    case Kind::Scalar:
      return "scalar";
    case Kind::Array:
      return "array";
    case Kind::Bytes:
      return "bytes";
    case Kind::Table:
      return "table";
    case Kind::Vector:
      return "vector";
  }
  return "";
}

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

// Appends the nested records first, each record once.
void appendRecord(const Schema& schema, std::set<std::string>& known, std::string& text) {
  if (!known.insert(schema.name).second) {
    return;
  }
  for (const Slot& slot : schema.slots) {
    if (slot.nested != nullptr) {
      appendRecord(*slot.nested, known, text);
    }
  }
  const bool isTolerant = schema.style.nestedFailure == mesh::wire::NestedFailure::IsIgnored;
  text.append("  ").append(schema.name).append(" = {tolerant = ");
  text.append(isTolerant ? "true" : "false").append(",\n");
  for (const Slot& slot : schema.slots) {
    text += slotText(slot);
  }
  text += "  },\n";
}

}  // namespace

std::string dissector() {
  std::set<std::string> known;
  std::string records;
  std::string identifiers;
  for (const KnownMessage& message : messages()) {
    appendRecord(message.schema(), known, records);
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
