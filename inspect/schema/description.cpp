#include "inspect/schema/description.hpp"

#include "inspect/schema/facts.hpp"
#include "wire/fixed_image.hpp"

namespace inspect {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

namespace {

void moveBy(Json& number, const Json& offset) {
  number = number.is_null() || offset.is_null()
               ? Json()
               : Json(number.get<uint64_t>() + offset.get<uint64_t>());
}

// Adds their slots to nested tables and vectors.
void unfold(Json& slots, const Schema& schema) {
  for (size_t index = 0; index < slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    if (slot.nested == nullptr) {
      continue;
    }
    Json inner = describeSlots(*slot.nested);
    const bool isItem = slot.kind == Kind::Vector;
    for (Json& each : inner) {
      moveBy(each["recordOffset"], isItem ? Json(0) : slots[index]["recordOffset"]);
      moveBy(each["countOffset"], isItem ? Json(0) : slots[index]["recordOffset"]);
      moveBy(each["fixedPosition"], isItem ? Json() : slots[index]["fixedPosition"]);
    }
    unfold(inner, *slot.nested);
    slots[index]["slots"] = std::move(inner);
  }
}

}  // namespace

const char* arrangementName(const KnownMessage& message) {
  return message.isSentFixed() ? "fixed" : "compact";
}

Json describe(const KnownMessage& message) {
  const Schema& schema = message.schema();
  const SizeRange compact = compactRange(schema);
  const bool hasFixed = mesh::wire::hasFixedArrangement(schema);
  return {{"name", message.name},
          {"identifier", hex(message.id())},
          {"service", message.service},
          {"sent", arrangementName(message)},
          {"recordSize", schema.size},
          {"slotCount", schema.slots.size()},
          {"compactSmallest", compact.from},
          {"compactLargest", compact.isOpen ? Json() : Json(compact.to)},
          {"fixedSize", hasFixed ? Json(mesh::wire::fixedLength(schema)) : Json()},
          {"fingerprint", hex(fingerprint(*message.message))}};
}

Json describeSlots(const Schema& schema) {
  Json slots = Json::array();
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    Json json = {
        {"slot", index},
        {"name", slot.name.data()},
        {"kind", kindOf(slot)},
        {"recordOffset", slot.recordOffset},
        {"countOffset", mesh::wire::isOutOfLine(slot.kind) ? Json(slot.countOffset) : Json()},
        {"fixedPosition", Json()}};
    if (mesh::wire::hasFixedArrangement(schema)) {
      json["fixedPosition"] = mesh::wire::fixedTable + mesh::wire::fixedEntry(schema, index);
    }
    slots.push_back(std::move(json));
  }
  return slots;
}

Json templateOf(const Schema& schema) {
  Json json = Json::object();
  for (const Slot& slot : schema.slots) {
    Json& member = json[slot.name.data()];
    switch (slot.kind) {
      case Kind::Scalar:
        member = 0;
        break;
      case Kind::Array:
        member = std::string(size_t{2} * slot.size, '0');
        break;
      case Kind::Bytes:
        member = "";
        break;
      case Kind::Table:
        member = templateOf(*slot.nested);
        break;
      case Kind::Vector:
        member = Json::array({templateOf(*slot.nested)});
        break;
    }
  }
  return json;
}

Json describeWithSlots(const KnownMessage& message) {
  Json json = describe(message);
  json["vtableLength"] = mesh::wire::vtableLength(message.schema());
  json["slots"] = describeSlots(message.schema());
  unfold(json["slots"], message.schema());
  return json;
}

}  // namespace inspect
