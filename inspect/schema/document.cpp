#include "inspect/schema/document.hpp"

#include <set>

#include "inspect/schema/description.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

using mesh::wire::InlineOrder;
using mesh::wire::Kind;
using mesh::wire::NestedFailure;
using mesh::wire::Schema;
using mesh::wire::Slot;

Json messageOf(const KnownMessage& message) {
  const mesh::msg::Policy& policy = message.message->policy;
  Json json = describe(message);
  json["rootDecoding"] =
      policy.rootDecoding == mesh::msg::RootDecoding::ByMessage ? "message" : "table reader";
  json["largestSize"] = policy.largestSize;
  json["wireText"] = wireText(*message.message);
  json["record"] = message.schema().name;
  return json;
}

Json recordOf(const Schema& schema) {
  Json slots = describeSlots(schema);
  for (size_t index = 0; index < slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    slots[index]["kind"] = kindName(slot.kind);
    slots[index]["size"] = slot.size;
    if (slot.nested != nullptr) {
      slots[index]["record"] = slot.nested->name;
    }
  }
  return {
      {"name", schema.name},
      {"size", schema.size},
      {"vtableLength", mesh::wire::vtableLength(schema)},
      {"inlineOrder", schema.style.inlineOrder == InlineOrder::Slots ? "slots" : "scalars first"},
      {"nestedFailure",
       schema.style.nestedFailure == NestedFailure::IsIgnored ? "is ignored" : "fails the table"},
      {"checksParameters", schema.style.checksParameters},
      {"slots", std::move(slots)}};
}

Json bytesOf(const std::string& count) {
  return {{"type", "string"},
          {"pattern", std::string("^([0-9a-fA-F]{2})").append(count).append("$")}};
}

Json reference(const Schema& schema) {
  return {{"$ref", std::string("#/$defs/") + schema.name}};
}

// What parsing accepts for a slot.
Json valueOf(const Slot& slot) {
  switch (slot.kind) {
    case Kind::Scalar: {
      const uint64_t largest = UINT64_MAX >> (64 - 8 * slot.size);
      const std::string digits = std::to_string(2 * slot.size);
      return {{"anyOf",
               {{{"type", "integer"}, {"minimum", 0}, {"maximum", largest}},
                {{"type", "string"},
                 {"pattern", std::string("^0x0*[0-9a-fA-F]{1,").append(digits).append("}$")}}}}};
    }
    case Kind::Array:
      return bytesOf(std::to_string(slot.size).insert(0, 1, '{').append("}"));
    case Kind::Bytes:
      return bytesOf("*");
    case Kind::Table:
      return reference(*slot.nested);
    case Kind::Vector:
      return {{"type", "array"}, {"items", reference(*slot.nested)}};
  }
  return {};
}

Json definitionOf(const Schema& schema) {
  Json properties = Json::object();
  for (const Slot& slot : schema.slots) {
    properties[slot.name.data()] = valueOf(slot);
  }
  return {
      {"type", "object"}, {"properties", std::move(properties)}, {"additionalProperties", false}};
}

}  // namespace

Json schemaDocument(std::span<const KnownMessage> messages) {
  Json all = Json::array();
  Json records = Json::array();
  Json definitions = Json::object();
  std::set<std::string> known;
  const auto add = [&](const Schema& schema) {
    records.push_back(recordOf(schema));
    definitions[schema.name] = definitionOf(schema);
  };
  for (const KnownMessage& message : messages) {
    all.push_back(messageOf(message));
    visitRecords(message.schema(), known, add);
  }
  Json jsonSchema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"}};
  if (messages.size() == 1) {
    jsonSchema.update(reference(messages.front().schema()));
  }
  jsonSchema["$defs"] = std::move(definitions);
  return {{"format", documentFormat},
          {"messages", std::move(all)},
          {"records", std::move(records)},
          {"jsonSchema", std::move(jsonSchema)}};
}

}  // namespace inspect
