#include "inspect/captures/traffic.hpp"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "inspect/bytes/hex.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/reader/acceptance.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/texts/fault_texts.hpp"

namespace inspect {
namespace {

constexpr uint64_t second = 1'000'000'000;

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

}  // namespace

uint64_t nowInNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<uint64_t>(now.tv_sec) * second + static_cast<uint64_t>(now.tv_nsec);
}

std::string timeText(uint64_t nanoseconds) {
  const auto seconds = static_cast<time_t>(nanoseconds / second);
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[80];
  const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
  std::snprintf(text + length, sizeof text - length, ".%09uZ",
                static_cast<unsigned>(nanoseconds % second));
  return text;
}

bool writeTable(Text& text, const Table& table, const JsonStyle& style) {
  const KnownMessage* const message = messageOf(table);
  text.append("{\"time\":\"");
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
  numberMember(text, "extra", table.extra);
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

bool isAccepted(const Table& table) {
  const KnownMessage* const message = messageOf(table);
  // See faultsOf().
  return table.message != nullptr
             ? judge(*message, table.bytes).isAccepted()
             : message != nullptr &&
                   acceptanceOf(message->schema(), table.bytes) != Acceptance::Rejected;
}

}  // namespace inspect
