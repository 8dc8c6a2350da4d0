#include "inspect/schema/loaded_schema.hpp"

#include <algorithm>
#include <charconv>

#include "inspect/bytes/failure.hpp"
#include "inspect/schema/document.hpp"
#include "inspect/schema/facts.hpp"
#include "wire/compact_size.hpp"
#include "wire/fixed_image.hpp"
#include "wire/slots.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

// More than any message has, and little enough that a walk over all of them takes no time.
constexpr uint64_t mostVisited = 100'000;
constexpr uint64_t largestRecord = uint64_t{1} << 20;

[[noreturn]] void fail(const std::string& text) {
  throw Failure(Cause::BadInput, "the schema document: " + text);
}

const Json& member(const Json& json, const char* name) {
  if (!json.is_object() || !json.contains(name)) {
    fail(std::string("'") + name + "' is missing");
  }
  return json.at(name);
}

std::string textOf(const Json& json, const char* name) {
  const Json& value = member(json, name);
  if (!value.is_string()) {
    fail(std::string("'") + name + "' is no string");
  }
  return value.get<std::string>();
}

uint64_t numberOf(const Json& json, const char* name, uint64_t largest) {
  const Json& value = member(json, name);
  if (!value.is_number_unsigned() || value.get<uint64_t>() > largest) {
    fail(std::string("'") + name + "' is no number up to " + std::to_string(largest));
  }
  return value.get<uint64_t>();
}

// Whether the text is the first or the second of two words.
bool isFirst(const Json& json, const char* name, std::string_view first, std::string_view second) {
  const std::string text = textOf(json, name);
  if (text != first && text != second) {
    fail(std::string("'") + name + "' is neither '" + std::string(first) + "' nor '" +
         std::string(second) + "'");
  }
  return text == first;
}

Kind kindNamed(const std::string& name) {
  for (const Kind kind : {Kind::Scalar, Kind::Array, Kind::Bytes, Kind::Table, Kind::Vector}) {
    if (name == kindName(kind)) {
      return kind;
    }
  }
  fail("no kind '" + name + "'");
}

const Json& listOf(const Json& json, const char* name) {
  const Json& list = member(json, name);
  if (!list.is_array()) {
    fail(std::string("'") + name + "' is no array");
  }
  return list;
}

}  // namespace

LoadedSchema::LoadedSchema(const Json& document) {
  if (numberOf(document, "format", UINT32_MAX) != documentFormat) {
    fail("another format");
  }
  for (const Json& record : listOf(document, "records")) {
    addRecord(record);
  }
  for (const Json& message : listOf(document, "messages")) {
    addMessage(message);
  }
}

Slot LoadedSchema::slotOf(const Json& json, Record& record) const {
  Slot slot{};
  const std::string name = textOf(json, "name");
  if (name.empty() || name.size() >= slot.name.size() || name.find('\0') != std::string::npos) {
    fail("a slot's name has 1 to 7 characters");
  }
  std::ranges::copy(name, slot.name.begin());
  slot.kind = kindNamed(textOf(json, "kind"));
  slot.size = static_cast<uint32_t>(numberOf(json, "size", largestRecord));
  slot.recordOffset = static_cast<uint32_t>(numberOf(json, "recordOffset", largestRecord));
  if (mesh::wire::isOutOfLine(slot.kind)) {
    slot.countOffset = static_cast<uint32_t>(numberOf(json, "countOffset", largestRecord));
  }
  ++record.visited;
  if (slot.kind == Kind::Table || slot.kind == Kind::Vector) {
    const auto nested = records_.find(textOf(json, "record"));
    if (nested == records_.end()) {
      fail("the record '" + textOf(json, "record") + "' stands behind one that holds it");
    }
    slot.nested = &nested->second.schema;
    record.visited += nested->second.visited;
  }
  const bool isSized = slot.kind == Kind::Scalar
                           ? slot.size == 1 || slot.size == 2 || slot.size == 4 || slot.size == 8
                       : slot.kind == Kind::Bytes ? slot.size == 1
                       : slot.kind == Kind::Array ? slot.size != 0
                                                  : slot.size == slot.nested->size;
  if (!isSized || record.visited > mostVisited) {
    fail(record.name + '.' + name + " has a wrong size");
  }
  return slot;
}

void LoadedSchema::addRecord(const Json& json) {
  const std::string name = textOf(json, "name");
  const auto [at, isNew] = records_.try_emplace(name);
  Record& record = at->second;
  if (!isNew) {
    fail("two records '" + name + "'");
  }
  record.name = name;
  for (const Json& slot : listOf(json, "slots")) {
    record.slots.push_back(slotOf(slot, record));
  }
  const char* const text = record.name.c_str();
  record.schema = {text,
                   text,
                   text,
                   text,
                   static_cast<uint32_t>(numberOf(json, "size", largestRecord)),
                   {isFirst(json, "inlineOrder", "slots", "scalars first")
                        ? mesh::wire::InlineOrder::Slots
                        : mesh::wire::InlineOrder::ScalarsFirst,
                    isFirst(json, "nestedFailure", "is ignored", "fails the table")
                        ? mesh::wire::NestedFailure::IsIgnored
                        : mesh::wire::NestedFailure::FailsTheTable,
                    member(json, "checksParameters") == Json(true)},
                   record.slots};
  if (record.slots.empty() || !mesh::wire::slotsAreTheStruct(record.schema)) {
    fail("the slots of '" + name + "' are not its layout");
  }
  uint64_t inlinePart = 4;
  for (const Slot& slot : record.slots) {
    inlinePart += mesh::wire::footprint(slot);
  }
  if (inlinePart > UINT16_MAX || mesh::wire::vtableLength(record.schema) > UINT16_MAX) {
    fail("'" + name + "' has more slots than a table can");
  }
}

void LoadedSchema::addMessage(const Json& json) {
  using mesh::msg::Arrangement;
  using mesh::msg::RootDecoding;
  const auto record = records_.find(textOf(json, "record"));
  if (record == records_.end()) {
    fail("no record '" + textOf(json, "record") + "'");
  }
  const std::string identifier = textOf(json, "identifier");
  uint32_t id = 0;
  const char* const end = identifier.data() + identifier.size();
  if (!identifier.starts_with("0x") ||
      std::from_chars(identifier.data() + 2, end, id, 16).ptr != end) {
    fail("'identifier' is no number with 0x");
  }
  const Schema& schema = record->second.schema;
  const bool isFixed = isFirst(json, "sent", "fixed", "compact");
  if (isFixed && (!mesh::wire::hasFixedArrangement(schema) ||
                  mesh::wire::fixedTableLength(schema) > UINT16_MAX)) {
    fail("'" + textOf(json, "name") + "' has no fixed arrangement");
  }
  data_.push_back(
      {&schema,
       id,
       {isFixed ? Arrangement::Fixed : Arrangement::Compact,
        isFirst(json, "rootDecoding", "message", "table reader") ? RootDecoding::ByMessage
                                                                 : RootDecoding::ByTableReader,
        numberOf(json, "largestSize", UINT32_MAX)}});
  const std::string name = textOf(json, "name");
  if (find(name) != nullptr || find(id) != nullptr) {
    fail("two messages '" + name + "'");
  }
  texts_.push_back(name);
  const std::string_view held = texts_.back();
  texts_.push_back(textOf(json, "service"));
  messages_.push_back({held, texts_.back(), &data_.back()});
}

const KnownMessage* LoadedSchema::find(std::string_view name) const {
  const auto found = std::ranges::find(messages_, name, &KnownMessage::name);
  return found == messages_.end() ? nullptr : &*found;
}

const KnownMessage* LoadedSchema::find(uint32_t id) const {
  const auto found = std::ranges::find(messages_, id, &KnownMessage::id);
  return found == messages_.end() ? nullptr : &*found;
}

}  // namespace inspect
