#include "inspect/captures/selection.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace inspect {
namespace {

using mesh::wire::Schema;
using mesh::wire::Slot;

// Longer operators first: "<=" begins as "<" does.
constexpr std::array<std::string_view, 6> operators{"==", "!=", "<=", ">=", "<", ">"};

std::string trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos
             ? std::string()
             : std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
}

// A step of a path: a member, or an item; an empty item is any.
struct Step {
  std::string_view name;
  bool isItem;
};

// Removes and returns the first step.
Step takeStep(std::string_view& path) {
  const bool isItem = path.starts_with('[');
  path.remove_prefix(isItem ? 1 : 0);
  const std::string_view name = path.substr(0, path.find_first_of(isItem ? "]" : ".["));
  path.remove_prefix(name.size());
  if (path.starts_with(isItem ? ']' : '.')) {
    path.remove_prefix(1);
  }
  if (isItem && path.starts_with('.')) {
    path.remove_prefix(1);
  }
  return {name, isItem};
}

// Decimal or, with 0x, hexadecimal.
std::optional<uint64_t> numberIn(std::string_view text) {
  const bool isHex = text.starts_with("0x");
  uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] =
      std::from_chars(text.data() + (isHex ? 2 : 0), end, number, isHex ? 16 : 10);
  return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

bool isOfRecord(std::string_view path) {
  return path.size() > 1 && path[0] == 'f' && path[1] >= '0' && path[1] <= '9';
}

bool hasField(const Schema& schema, std::string_view path) {
  const Step step = takeStep(path);
  const auto slot = std::ranges::find_if(
      schema.slots, [&](const Slot& each) { return step.name == each.name.data(); });
  if (step.isItem || slot == schema.slots.end()) {
    return false;
  }
  if (slot->kind == mesh::wire::Kind::Vector) {
    const Step item = takeStep(path);
    return item.isItem && (item.name.empty() || numberIn(item.name)) && !path.empty() &&
           hasField(*slot->nested, path);
  }
  return slot->nested == nullptr ? path.empty() : !path.empty() && hasField(*slot->nested, path);
}

}  // namespace

Condition::Condition(const std::string& text) {
  const size_t at = text.find_first_of("=!<>");
  const std::string_view rest = at == std::string::npos ? "" : std::string_view(text).substr(at);
  const auto found = std::ranges::find_if(
      operators, [rest](std::string_view each) { return rest.starts_with(each); });
  path_ = trimmed(std::string_view(text).substr(0, at));
  if (found == operators.end() || path_.empty()) {
    throw Failure(Cause::Usage, "'" + text + "' is no comparison, such as f1.f0 == 42");
  }
  static constexpr std::array order{Operator::Equal,   Operator::Different, Operator::AtMost,
                                    Operator::AtLeast, Operator::Less,      Operator::Greater};
  operator_ = order[static_cast<size_t>(found - operators.begin())];
  value_ = trimmed(rest.substr(found->size()));
  if (value_.size() > 1 && value_.front() == '"' && value_.back() == '"') {
    value_ = value_.substr(1, value_.size() - 2);
  } else {
    number_ = numberIn(value_);
  }
  if (value_.empty()) {
    throw Failure(Cause::Usage, "'" + text + "' compares with nothing");
  }
}

bool Condition::compares(const Json& json) const {
  if (json.is_structured() || json.is_null()) {
    return false;
  }
  int order = 0;
  if (json.is_number()) {
    if (!number_) {
      return operator_ == Operator::Different;
    }
    const auto value = json.get<uint64_t>();
    order = value < *number_ ? -1 : value > *number_ ? 1 : 0;
  } else {
    order = json.get_ref<const std::string&>().compare(value_);
  }
  switch (operator_) {
    case Operator::Equal:
      return order == 0;
    case Operator::Different:
      return order != 0;
    case Operator::Less:
      return order < 0;
    case Operator::AtMost:
      return order <= 0;
    case Operator::Greater:
      return order > 0;
    case Operator::AtLeast:
      return order >= 0;
  }
  return false;
}

bool Condition::holdsFor(const Json& json, std::string_view rest) const {
  if (rest.empty()) {
    return compares(json);
  }
  const Step step = takeStep(rest);
  if (!step.isItem) {
    const auto member = json.is_object() ? json.find(std::string(step.name)) : json.end();
    return member != json.end() && holdsFor(*member, rest);
  }
  if (!json.is_array()) {
    return false;
  }
  if (step.name.empty()) {
    return std::ranges::any_of(json, [&](const Json& item) { return holdsFor(item, rest); });
  }
  std::optional<uint64_t> index = numberIn(step.name);
  for (const Json& item : json) {
    // An item may stand for several.
    const auto times = item.value("times", uint64_t{1});
    if (index && *index < times) {
      return holdsFor(item, rest);
    }
    index = index ? std::optional(*index - times) : index;
  }
  return false;
}

bool Condition::holds(const Json& table) const {
  if (!isOfRecord(path_)) {
    return holdsFor(table, path_);
  }
  const auto record = table.find("record");
  return record != table.end() && holdsFor(*record, path_);
}

bool Condition::isAbout(const KnownMessage& message) const {
  static constexpr std::array others{"time",  "source", "destination", "message",     "identifier",
                                     "extra", "length", "packet",      "missedBefore"};
  return isOfRecord(path_) ? hasField(message.schema(), path_)
                           : std::ranges::find(others, path_) != others.end();
}

void Selection::check() const {
  const auto all = message == nullptr ? messages() : std::span(message, 1);
  for (const Condition& condition : conditions) {
    if (std::ranges::none_of(all,
                             [&](const KnownMessage& each) { return condition.isAbout(each); })) {
      throw Failure(Cause::Usage,
                    (message == nullptr ? "no message" : std::string(message->name) + " never") +
                        " has what --where compares: '" + condition.path() + "'");
    }
  }
}

bool Selection::takes(const Table& table) const {
  if ((message != nullptr && table.id != message->id()) || (source && table.source != *source) ||
      (destination && table.destination != *destination) || table.time < since ||
      table.time > until || (packet && table.packet != *packet)) {
    return false;
  }
  if (conditions.empty()) {
    return true;
  }
  const Json json = tableJson(table, {.isWhole = false});
  return std::ranges::all_of(conditions,
                             [&](const Condition& condition) { return condition.holds(json); });
}

std::optional<Table> nextSelected(CaptureReader& reader, const Selection& selection) {
  while (!selection.packet || reader.packets() < *selection.packet) {
    const std::optional<Table> table = reader.next();
    if (!table || selection.takes(*table)) {
      return table;
    }
  }
  return std::nullopt;
}

}  // namespace inspect
