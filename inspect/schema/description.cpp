#include "inspect/schema/description.hpp"

#include "inspect/schema/facts.hpp"
#include "wire/fixed_image.hpp"

namespace inspect {

using mesh::wire::Schema;
using mesh::wire::Slot;

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

Json describeWithSlots(const KnownMessage& message) {
  Json json = describe(message);
  json["vtableLength"] = mesh::wire::vtableLength(message.schema());
  json["slots"] = describeSlots(message.schema());
  return json;
}

}  // namespace inspect
