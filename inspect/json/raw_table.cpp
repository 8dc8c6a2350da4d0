#include "inspect/json/raw_table.hpp"

#include <algorithm>

#include "inspect/bytes/failure.hpp"
#include "inspect/reader/own_encoding.hpp"
#include "inspect/reader/table_reader.hpp"

namespace inspect {
namespace {

uint32_t entryCount(const Json& table) {
  const auto length = table["vtableLength"].get<uint32_t>();
  return length < 4 ? 0 : (length - 4) / 2;
}

}  // namespace

std::vector<Candidate> candidatesFor(std::span<const uint8_t> bytes) {
  const uint32_t entries = entryCount(rawTable(bytes));
  std::vector<Candidate> candidates;
  for (const KnownMessage& message : messages()) {
    const Verdict verdict = judge(message, bytes);
    if (!verdict.isAccepted()) {
      continue;
    }
    const bool isSame = entries == message.schema().slots.size();
    const bool isSound = verdict.faults.empty();
    const bool isExact = isSame && isSound && isOwnEncoding(message, bytes);
    candidates.push_back({&message, isExact             ? Fit::Exact
                                    : isSame && isSound ? Fit::Same
                                    : isSame            ? Fit::Damaged
                                                        : Fit::Reads});
  }
  if (!candidates.empty()) {
    const Fit best = std::ranges::min(candidates, {}, &Candidate::fit).fit;
    std::erase_if(candidates, [best](const Candidate& candidate) { return candidate.fit != best; });
  }
  return candidates;
}

Choice chooseMessage(const std::string& named, std::span<const uint8_t> bytes) {
  if (!named.empty()) {
    return {messageNamed(named), ""};
  }
  const std::vector<Candidate> candidates = candidatesFor(bytes);
  if (candidates.empty()) {
    throw Failure(Cause::BadInput, "no message fits these bytes; name one with --message");
  }
  const KnownMessage& chosen = *candidates.front().message;
  if (candidates.size() == 1 && candidates.front().fit == Fit::Exact) {
    return {chosen, ""};
  }
  return {chosen, "taken for " + std::string(chosen.name) + ", the first of " +
                      std::to_string(candidates.size()) + " that fit; --message selects another"};
}

Json rawTable(std::span<const uint8_t> bytes) {
  const auto fail = [](uint64_t at, const std::string& text) {
    throw Failure(Cause::BadInput, "byte " + std::to_string(at) + ": " + text);
  };
  const uint64_t length = bytes.size();
  if (length < 8) {
    fail(0, std::to_string(length) + " bytes are too short for a table");
  }
  const auto table = loadAs<uint32_t>(bytes.data());
  if (table < 4 || table > length - 4) {
    fail(0, "the root points to a table at " + std::to_string(table) + ", outside the buffer");
  }
  const uint32_t vtable = table - loadAs<uint32_t>(bytes.data() + table);
  if (vtable < 4 || vtable > length - 4) {
    fail(table, "the table's vtable is at " + std::to_string(vtable) + ", outside the buffer");
  }
  const uint32_t vtableLength = loadAs<uint16_t>(bytes.data() + vtable);
  if (vtable + vtableLength > length) {
    fail(vtable, "a vtable of " + std::to_string(vtableLength) + " bytes passes the end");
  }
  Json slots = Json::array();
  for (uint32_t at = 4; at + 2 <= vtableLength; at += 2) {
    const auto entry = loadAs<uint16_t>(bytes.data() + vtable + at);
    if (entry != 0) {
      slots.push_back({{"slot", (at - 4) / 2}, {"entry", entry}, {"position", table + entry}});
    }
  }
  return {{"length", length},
          {"table", table},
          {"vtable", vtable},
          {"vtableLength", vtableLength},
          {"tableLength", loadAs<uint16_t>(bytes.data() + vtable + 2)},
          {"slots", std::move(slots)}};
}

Json identification(std::span<const uint8_t> bytes) {
  static constexpr const char* fits[] = {"exact", "same slots", "damaged", "reads"};
  Json json = rawTable(bytes);
  Json fitting = Json::array();
  for (const Candidate& candidate : candidatesFor(bytes)) {
    fitting.push_back(
        {{"message", candidate.message->name}, {"fit", fits[static_cast<int>(candidate.fit)]}});
  }
  json["couldBe"] = std::move(fitting);
  return json;
}

}  // namespace inspect
