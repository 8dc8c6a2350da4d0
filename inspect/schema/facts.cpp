#include "inspect/schema/facts.hpp"

#include <cstdio>
#include <string_view>

#include "inspect/messages/messages.hpp"
#include "wire/compact_size.hpp"

namespace inspect {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

std::vector<Service> services() {
  std::vector<Service> found;
  for (const KnownMessage& message : messages()) {
    if (found.empty() || found.back().name != message.service) {
      found.push_back({std::string(message.service), {}});
    }
    found.back().messages.push_back(message.message);
  }
  return found;
}

SizeRange compactRange(const Schema& schema) {
  const uint64_t smallest = 4 + mesh::wire::smallestTableSize(schema);
  return {smallest, smallest + mesh::wire::scalarWidths(schema), mesh::wire::ownsMemory(schema)};
}

std::string kindOf(const Slot& slot) {
  switch (slot.kind) {
    case Kind::Scalar:
      return std::to_string(8 * slot.size).insert(0, 1, 'u');
    case Kind::Array:
      return "bytes[" + std::to_string(slot.size) + "]";
    case Kind::Bytes:
      return "bytes";
    case Kind::Table:
      return std::string("table of ").append(slot.nested->name);
    case Kind::Vector:
      return std::string("vector of ").append(slot.nested->name);
  }
  return "";
}

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

bool isWrapper(const Schema& schema) {
  const std::string_view name = schema.name;
  return name.ends_with("_update") || name.ends_with("_delete");
}

std::string hex(uint32_t id) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", id);
  return text;
}

std::string hex(uint64_t fingerprint) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%016llX", static_cast<unsigned long long>(fingerprint));
  return text;
}

std::string compactText(const Schema& schema) {
  const SizeRange range = compactRange(schema);
  if (range.isOpen) {
    return std::to_string(range.from).append(" and more");
  }
  return std::to_string(range.from).append(" to ").append(std::to_string(range.to));
}

}  // namespace inspect
