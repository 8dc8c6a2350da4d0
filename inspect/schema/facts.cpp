#include "inspect/schema/facts.hpp"

#include <cstdio>
#include <string_view>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "wire/compact_size.hpp"

namespace inspect {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

#define MESSAGE(message, ...) &mesh::msg::messageOf<message>,

std::vector<Service> services() {
  return {{"l2vpn_cfg", {L2VPN_CFG_MESSAGES(MESSAGE)}},
          {"l2vpn_stat", {L2VPN_STAT_MESSAGES(MESSAGE)}},
          {"l2vpn_sync", {L2VPN_SYNC_MESSAGES(MESSAGE)}}};
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
