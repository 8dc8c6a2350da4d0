// The wire format of a message, as text and as a number.

#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

using mesh::msg::Arrangement;
using mesh::msg::Message;
using mesh::wire::InlineOrder;
using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

std::string slotsText(const Schema& schema) {
  std::string text = schema.style.inlineOrder == InlineOrder::Slots ? "{" : "{scalars-first ";
  for (const Slot& slot : schema.slots) {
    if (&slot != schema.slots.data()) {
      text += ' ';
    }
    if (slot.kind == Kind::Table || slot.kind == Kind::Vector) {
      text += slot.kind == Kind::Table ? "table" : "vector";
      text += slotsText(*slot.nested);
    } else {
      text += kindOf(slot);
    }
  }
  return text + '}';
}

}  // namespace

std::string wireText(const Message& message) {
  return (message.policy.arrangement == Arrangement::Fixed ? "fixed " : "compact ") +
         slotsText(*message.schema);
}

uint64_t fingerprint(const Message& message) {
  uint64_t hash = 0xCBF29CE484222325;
  for (const char character : wireText(message)) {
    hash = (hash ^ static_cast<uint8_t>(character)) * 0x100000001B3;
  }
  return hash;
}

}  // namespace inspect
