#include "subjects.hpp"

#include <algorithm>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "wire/fixed_image.hpp"
#include "wire/quick_reader.hpp"

namespace differential {
namespace {

// Calls the quick readers themselves. Their record is not used.
template <const wire::Schema& schema>
Way wayOf(const uint8_t* data, uint32_t length) {
  const wire::HostBuffer buffer{data, length};
  if constexpr (wire::hasFixedArrangement(schema)) {
    if (wire::hasFixedTemplate<schema>(buffer)) {
      return Way::FixedImage;
    }
  }
  if constexpr (wire::hasQuickReader(schema)) {
    alignas(16) uint8_t record[schema.size];
    if (wire::readSoundTable<schema>(buffer, buffer.read<uint32_t>(0), record)) {
      return Way::Quick;
    }
  }
  return Way::SlotBySlot;
}

void addFields(const wire::Schema& schema, uint32_t base, std::vector<Field>& fields) {
  for (const wire::Slot& slot : schema.slots) {
    if (slot.kind == wire::Kind::Table) {
      addFields(*slot.nested, base + slot.recordOffset, fields);
    } else if (!wire::isOutOfLine(slot.kind)) {
      fields.push_back({base + slot.recordOffset, slot.size});
    }
  }
}

std::vector<Field> fieldsOf(const wire::Schema& schema) {
  std::vector<Field> fields;
  addFields(schema, 0, fields);
  return fields;
}

std::vector<uint8_t> valuesOf(const wire::Schema& schema) {
  std::vector<uint8_t> values(schema.size, 0);
  for (const Field& field : fieldsOf(schema)) {
    std::fill_n(values.begin() + field.at, field.size, uint8_t{0xFF});
  }
  return values;
}

void addParts(const wire::Schema& schema, uint32_t base, std::vector<Part>& parts) {
  for (const wire::Slot& slot : schema.slots) {
    if (slot.kind == wire::Kind::Table) {
      addParts(*slot.nested, base + slot.recordOffset, parts);
    } else if (wire::isOutOfLine(slot.kind)) {
      parts.push_back({base + slot.countOffset, base + slot.recordOffset, slot.nested,
                       slot.nested != nullptr ? valuesOf(*slot.nested) : std::vector<uint8_t>()});
    }
  }
}

// Used within a service's namespace. Messages of one layout share the code that finds the way.
#define SUBJECT(X, identifier)                                             \
  Subject{*exported::operationsOf(std::string_view(#X)),                   \
          &receiveModule,                                                  \
          &sendModule,                                                     \
          &wayOf<*msg::layoutOwnerOf<messages, msg::messageOf<X>>.schema>, \
          {},                                                              \
          {},                                                              \
          {}},

void addConfiguration(std::vector<Subject>& all) {
  using namespace mesh::l2vpn_cfg;
  all.insert(all.end(), {L2VPN_CFG_MESSAGES(SUBJECT)});
}

void addStatistics(std::vector<Subject>& all) {
  using namespace mesh::l2vpn_stat;
  all.insert(all.end(), {L2VPN_STAT_MESSAGES(SUBJECT)});
}

void addSynchronisation(std::vector<Subject>& all) {
  using namespace mesh::l2vpn_sync;
  all.insert(all.end(), {L2VPN_SYNC_MESSAGES(SUBJECT)});
}

}  // namespace

bool Subject::isLarge() const {
  for (const Part& part : parts) {
    if (part.items != nullptr) {
      return true;
    }
  }
  return size() > 4096;
}

std::vector<Subject> bindSubjects() {
  std::vector<Subject> all;
  addConfiguration(all);
  addStatistics(all);
  addSynchronisation(all);
  for (Subject& subject : all) {
    subject.fields = fieldsOf(subject.schema());
    subject.values = valuesOf(subject.schema());
    addParts(subject.schema(), 0, subject.parts);
    for (host::Module* const module : {subject.receive, subject.send}) {
      host::bindCodec(*module);
      host::bindHost(module->env);
    }
  }
  return all;
}

}  // namespace differential
