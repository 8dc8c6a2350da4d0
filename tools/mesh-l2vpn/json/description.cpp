#include "json/description.hpp"

#include "tools/catalogue/catalogue.hpp"
#include "wire/fixed_layout.hpp"

namespace tool {

using mesh::wire::Record;
using mesh::wire::Slot;

const char* arrangementName(const KnownMessage& message) {
  return message.isSentFixed() ? "fixed" : "compact";
}

Json describe(const KnownMessage& message) {
  const Record& record = message.record();
  const catalogue::Range compact = catalogue::compactRange(record);
  const bool hasFixed = mesh::wire::hasFixedArrangement(record);
  return {{"name", message.name},
          {"identifier", catalogue::hex(message.data->id)},
          {"service", message.service},
          {"sent", arrangementName(message)},
          {"recordSize", record.size},
          {"slotCount", record.slots.size()},
          {"compactSmallest", compact.from},
          {"compactLargest", compact.isOpen ? Json() : Json(compact.to)},
          {"fixedSize", hasFixed ? Json(mesh::wire::fixedLength(record)) : Json()},
          {"fingerprint", catalogue::hex(catalogue::fingerprint(*message.data))}};
}

Json describeWithSlots(const KnownMessage& message) {
  const Record& record = message.record();
  Json slots = Json::array();
  for (size_t index = 0; index < record.slots.size(); ++index) {
    const Slot& slot = record.slots[index];
    Json json = {
        {"slot", index},
        {"name", slot.name.data()},
        {"kind", catalogue::kindOf(slot)},
        {"recordOffset", slot.recordOffset},
        {"countOffset", mesh::wire::isOutOfLine(slot.kind) ? Json(slot.countOffset) : Json()},
        {"fixedPosition", Json()}};
    if (mesh::wire::hasFixedArrangement(record)) {
      json["fixedPosition"] = mesh::wire::fixedTable + mesh::wire::fixedEntry(record, index);
    }
    slots.push_back(std::move(json));
  }
  Json json = describe(message);
  json["vtableLength"] = mesh::wire::vtableLength(record);
  json["slots"] = std::move(slots);
  return json;
}

}  // namespace tool
