#include "inspect/captures/traffic.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "inspect/bytes/hex.hpp"
#include "inspect/json/message_text.hpp"
#include "inspect/reader/acceptance.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/texts/fault_texts.hpp"

namespace inspect {
namespace {

void member(Text& text, std::string_view name) {
  text.append(",\"");
  text.append(name);
  text.append("\":");
}

void numberMember(Text& text, std::string_view name, uint64_t value) {
  member(text, name);
  text.appendNumber(value);
}

// A string that may need escapes.
void appendString(Text& text, const std::string& string) {
  text.append(Json(string).dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string cutText(const Table& table) {
  const size_t held = table.bytes.size();
  return "the capture holds " + std::to_string(held) + " of its " +
         std::to_string(held + table.cutOff) + " bytes";
}

// The faults of a table; `isShown` if its record can be shown anyway.
std::vector<std::string> faultsOf(const KnownMessage& message, const Table& table,
                                  const JsonStyle& style, bool& isShown) {
  std::vector<std::string> faults;
  isShown = true;
  // A schema of a capture may have tables that share tables without end.
  if (table.message != nullptr ||
      acceptanceOf(message.schema(), table.bytes) != Acceptance::Accepted) {
    const Verdict verdict = judge(message, table.bytes);
    faults = faultTexts(verdict, style.isWhole);
    isShown = verdict.isAccepted();
  }
  if (isShown) {
    try {
      refuseLongText(message.schema(), table.bytes, style);
    } catch (const Failure& failure) {
      faults.emplace_back(failure.what());
      isShown = false;
    }
  }
  if (table.cutOff != 0) {
    faults.push_back(cutText(table));
  }
  return faults;
}

void writeFaults(Text& text, const std::vector<std::string>& faults) {
  member(text, "faults");
  char before = '[';
  for (const std::string& fault : faults) {
    text.append(before);
    appendString(text, fault);
    before = ',';
  }
  text.append(']');
}

[[noreturn]] uint64_t failAt(const std::string& path, const std::string& text) {
  throw Failure(Cause::BadInput, path + ": " + text);
}

uint64_t numberOf(const Json& json, uint64_t most, const std::string& path) {
  uint64_t value = 0;
  return parseNumber(json, value) && value <= most
             ? value
             : failAt(path, "expected a whole number from 0 to " + std::to_string(most));
}

// The message of a table, of which "message" or "identifier" may be missing. Null for an identifier
// that no message has.
const KnownMessage* messageOf(const Json& json, uint32_t& id) {
  const bool isNamed = json.contains("message") && !json["message"].is_null();
  const bool hasId = json.contains("identifier");
  if (!isNamed && !hasId) {
    failAt("the table", "neither a message nor an identifier");
  }
  if (isNamed && !json["message"].is_string()) {
    failAt("message", "expected a name");
  }
  const KnownMessage* const message =
      isNamed ? &messageNamed(json["message"].get_ref<const std::string&>()) : nullptr;
  id = hasId ? static_cast<uint32_t>(numberOf(json["identifier"], UINT32_MAX, "identifier"))
             : message->id();
  if (message != nullptr && message->id() != id) {
    failAt("identifier", "another one than that of " + std::string(message->name));
  }
  return findById(id);
}

}  // namespace

uint64_t nowInNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<uint64_t>(now.tv_sec) * nanosecondsPerSecond +
         static_cast<uint64_t>(now.tv_nsec);
}

std::string timeText(uint64_t nanoseconds) {
  const auto seconds = static_cast<time_t>(nanoseconds / nanosecondsPerSecond);
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[80];
  const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
  std::snprintf(text + length, sizeof text - length, ".%09uZ",
                static_cast<unsigned>(nanoseconds % nanosecondsPerSecond));
  return text;
}

std::optional<uint64_t> timeFromText(const std::string& text) {
  tm parts{};
  const char* rest = strptime(text.c_str(), "%Y-%m-%d", &parts);
  if (rest == nullptr || parts.tm_year < 70) {
    return std::nullopt;
  }
  for (const char* const part : {"T%H:%M", ":%S"}) {
    const char* const next = strptime(rest, part, &parts);
    if (next == nullptr) {
      break;
    }
    rest = next;
  }
  uint64_t fraction = 0;
  if (*rest == '.') {
    uint64_t digit = nanosecondsPerSecond / 10;
    for (++rest; *rest >= '0' && *rest <= '9' && digit != 0; ++rest, digit /= 10) {
      fraction += digit * static_cast<uint64_t>(*rest - '0');
    }
  }
  rest += *rest == 'Z' ? 1 : 0;
  uint64_t time = 0;
  return *rest != '\0' ||
                 __builtin_mul_overflow(static_cast<uint64_t>(timegm(&parts)), nanosecondsPerSecond,
                                        &time) ||
                 __builtin_add_overflow(time, fraction, &time)
             ? std::nullopt
             : std::optional(time);
}

bool writeTable(Text& text, const Table& table, const JsonStyle& style) {
  const KnownMessage* const message = messageOf(table);
  text.append("{");
  if (table.packet != 0) {
    text.append("\"packet\":");
    text.appendNumber(table.packet);
    text.append(',');
  }
  text.append("\"time\":\"");
  text.append(timeText(table.time));
  text.append('"');
  numberMember(text, "source", table.source);
  numberMember(text, "destination", table.destination);
  member(text, "message");
  if (message == nullptr) {
    text.append("null");
  } else {
    appendString(text, std::string(message->name));
  }
  member(text, "identifier");
  text.append('"');
  text.append(hex(table.id));
  text.append('"');
  member(text, "extra");
  JsonLayout<Text>(text, style).number(table.extra, sizeof table.extra);
  numberMember(text, "length", table.bytes.size());
  if (table.missedBefore != 0) {
    numberMember(text, "missedBefore", table.missedBefore);
  }
  bool isShown = false;
  std::vector<std::string> faults;
  if (message != nullptr) {
    faults = faultsOf(*message, table, style, isShown);
  } else if (table.cutOff != 0) {
    faults.push_back(cutText(table));
  }
  if (!faults.empty()) {
    writeFaults(text, faults);
  }
  if (isShown) {
    member(text, "record");
    writeMessage(text, message->schema(), table.bytes, style);
  } else {
    member(text, "bytes");
    text.append('"');
    text.appendHex(table.bytes);
    text.append('"');
  }
  text.append("}\n");
  return isShown && faults.empty();
}

const KnownMessage* messageOf(const Table& table) {
  return table.message != nullptr ? table.message : findById(table.id);
}

Json tableJson(const Table& table, const JsonStyle& style) {
  Text text;
  writeTable(text, table, style);
  uint64_t memory = 0;
  return parseJson(text.view(), memory);
}

OwnedTable tableFromJson(const Json& json, ByteText form, uint64_t memory) {
  static constexpr std::array ignored{"packet", "message", "identifier", "length",
                                      "record", "bytes",   "faults"};
  if (!json.is_object()) {
    failAt("the table", std::string("expected an object, not ") + json.type_name());
  }
  OwnedTable owned{};
  Table& table = owned.table;
  for (const auto& [name, value] : json.items()) {
    if (name == "time") {
      const auto time = value.is_string() ? timeFromText(value.get<std::string>()) : std::nullopt;
      table.time = time ? *time : failAt(name, "expected a time as 2026-11-21T09:28:00.123Z");
    } else if (name == "source") {
      table.source = static_cast<uint32_t>(numberOf(value, UINT32_MAX, name));
    } else if (name == "destination") {
      table.destination = static_cast<uint32_t>(numberOf(value, UINT32_MAX, name));
    } else if (name == "extra") {
      table.extra = numberOf(value, UINT64_MAX, name);
    } else if (name == "missedBefore") {
      table.missedBefore = numberOf(value, UINT64_MAX, name);
    } else if (std::ranges::find(ignored, name) == ignored.end()) {
      failAt(name, "a table has no such member");
    }
  }
  const KnownMessage* const message = messageOf(json, table.id);
  if (json.contains("record") && message != nullptr) {
    const OwnedRecord record = fromJson(*message, json["record"], form, memory);
    owned.bytes = encode(record, Form::AsSent, memory);
    if (message->isSentFixed() && json.contains("length") && json["length"] != owned.bytes.size()) {
      Bytes compact = encode(record, Form::Compact, memory);
      owned.bytes = json["length"] == compact.size() ? std::move(compact) : std::move(owned.bytes);
    }
  } else if (json.contains("bytes") && json["bytes"].is_string()) {
    owned.bytes = fromHex(json["bytes"].get_ref<const std::string&>());
  } else {
    failAt("the table", "neither a record of a known message nor bytes");
  }
  table.bytes = owned.bytes;
  return owned;
}

bool isAccepted(const Table& table) {
  const KnownMessage* const message = messageOf(table);
  // See faultsOf().
  return table.message != nullptr
             ? judge(*message, table.bytes).isAccepted()
             : message != nullptr &&
                   acceptanceOf(message->schema(), table.bytes) != Acceptance::Rejected;
}

}  // namespace inspect
