#include "oracle/messages/description.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "oracle/messages/catalogue.hpp"
#include "oracle/values/text.hpp"

namespace oracle {
namespace {

constexpr uint32_t pointerWidth = 8;
constexpr uint32_t lengthWidth = 4;

const Description& find(const std::vector<Description>& among, std::string_view name) {
  for (const Description& candidate : among) {
    if (candidate.name == name) {
      return candidate;
    }
  }
  misuse(joined({"no message named \"", name, "\""}));
}

// One word of a catalogue text, for example "bytes[12]"; nested records must already be known.
Field parseField(const std::string& word, size_t slot, const std::vector<Description>& known) {
  Field field;
  field.name = joined({"f", std::to_string(slot)});
  const size_t colon = word.find(':');
  const size_t bracket = word.find('[');
  const std::string head = word.substr(0, std::min(colon, bracket));
  if (head == "u8") {
    field.kind = Kind::U8;
    field.size = 1;
  } else if (head == "u16") {
    field.kind = Kind::U16;
    field.size = 2;
  } else if (head == "u32") {
    field.kind = Kind::U32;
    field.size = 4;
  } else if (head == "u64") {
    field.kind = Kind::U64;
    field.size = 8;
  } else if (head == "bytes" && bracket != std::string::npos) {
    field.kind = Kind::Array;
    field.size = static_cast<uint32_t>(std::stoul(word.substr(bracket + 1)));
  } else if (head == "bytes") {
    field.kind = Kind::Bytes;
  } else if (head == "table" || head == "vector") {
    field.kind = head == "table" ? Kind::Table : Kind::Vector;
    field.nested = &find(known, word.substr(colon + 1));
    field.size = field.nested->recordSize;
  } else {
    misuse(joined({"no field kind \"", word, "\""}));
  }
  return field;
}

uint32_t alignmentOf(const Field& field) {
  switch (field.kind) {
    case Kind::U8:
    case Kind::Array:
      return 1;
    case Kind::U16:
      return 2;
    case Kind::U32:
      return 4;
    case Kind::U64:
    case Kind::Bytes:
    case Kind::Vector:
      return 8;
    case Kind::Table:
      return field.nested->alignment;
  }
  misuse("unknown field kind");
}

// Lays the C record out as a compiler does: natural alignment, a length before its pointer.
void layOutRecord(Description& message) {
  uint32_t end = 0;
  message.alignment = 1;
  for (Field& field : message.fields) {
    const bool pointerForm = field.kind == Kind::Bytes || field.kind == Kind::Vector;
    if (pointerForm) {
      field.lengthOffset = roundUp(end, lengthWidth);
      end = field.lengthOffset + lengthWidth;
    }
    const uint32_t alignment = alignmentOf(field);
    field.offset = roundUp(end, alignment);
    end = field.offset + (pointerForm ? pointerWidth : field.size);
    message.alignment = std::max(message.alignment, alignment);
  }
  message.recordSize = roundUp(end, message.alignment);
}

Description describe(const CatalogueEntry& entry, const std::string& service,
                     const std::string& name, const std::string& hashedName,
                     const std::string& fields, const std::vector<Description>& known) {
  Description message;
  message.name = name;
  message.service = service;
  message.hashedName = hashedName;
  message.id = hashOf(hashedName);
  message.sentFixed = entry.sentFixed;
  message.ownRoot = entry.ownRoot;
  message.slotOrder = entry.slotOrder;
  message.largestSize = entry.largestSize;
  std::istringstream words(fields);
  std::string word;
  while (words >> word) {
    message.fields.push_back(parseField(word, message.fields.size(), known));
  }
  layOutRecord(message);
  message.vtableLength = 4 + 2 * static_cast<uint32_t>(message.fields.size());
  message.hasOutOfLineParts = outOfLineParts(message) > 0;
  return message;
}

Description describeSynchronisation(const CatalogueEntry& entry, const std::string& record,
                                    const std::string& fields,
                                    const std::vector<Description>& known) {
  return describe(entry, "l2vpn_sync", joined({"l2vpn_sync_", record}),
                  joined({"l2vpn_sync.", record}), fields, known);
}

// "l2vpn_stat.pw_stat" for "l2vpn_stat_pw_stat".
std::string qualifiedName(const std::string& service, const std::string& name) {
  return joined({service, ".", name.substr(service.size() + 1)});
}

std::vector<Description> describeAll() {
  std::vector<Description> all;
  // Nested records are pointed at, so nothing may move. Synchronisation records are in three each.
  all.reserve(configurationCatalogue().size() + statisticsCatalogue().size() +
              3 * synchronisationCatalogue().size());
  for (const CatalogueEntry& entry : configurationCatalogue()) {
    all.push_back(describe(entry, "l2vpn_cfg", entry.name, entry.name, entry.fields, all));
  }
  for (const CatalogueEntry& entry : statisticsCatalogue()) {
    all.push_back(describe(entry, "l2vpn_stat", entry.name, qualifiedName("l2vpn_stat", entry.name),
                           entry.fields, all));
  }
  for (const CatalogueEntry& entry : synchronisationCatalogue()) {
    const std::string record = entry.name;
    all.push_back(describeSynchronisation(entry, record, entry.fields, all));
    all.back().tableReaderChecksParameters = record == "glb_en" || record == "stp";
  }
  for (const CatalogueEntry& entry : synchronisationCatalogue()) {
    const std::string fields = joined({"u16 table:l2vpn_sync_", entry.name});
    for (const char* change : {"_update", "_delete"}) {
      all.push_back(describeSynchronisation(entry, joined({entry.name, change}), fields, all));
      all.back().wrapper = true;
      all.back().ownRoot = true;
    }
  }
  return all;
}

}  // namespace

uint32_t roundUp(uint32_t value, uint32_t step) {
  return (value + step - 1) / step * step;
}

bool isScalar(Kind kind) {
  return kind == Kind::U8 || kind == Kind::U16 || kind == Kind::U32 || kind == Kind::U64;
}

uint32_t outOfLineParts(const Description& message) {
  uint32_t parts = 0;
  for (const Field& field : message.fields) {
    if (field.kind == Kind::Bytes || field.kind == Kind::Vector) {
      ++parts;
    } else if (field.kind == Kind::Table) {
      parts += outOfLineParts(*field.nested);
    }
  }
  return parts;
}

const std::vector<Description>& descriptions() {
  static const std::vector<Description> all = describeAll();
  return all;
}

const Description& descriptionOf(std::string_view name) {
  return find(descriptions(), name);
}

uint32_t hashOf(const std::string& text) {
  uint32_t hash = 0x811C9DC5;
  for (const char character : text) {
    hash ^= static_cast<uint8_t>(character);
    hash *= 0x01000193;
  }
  return hash;
}

void misuse(const std::string& text) {
  std::fprintf(stderr, "oracle: %s\n", text.c_str());
  std::abort();
}

}  // namespace oracle
