#include "inspect/json/raw_table.hpp"

#include <algorithm>

#include "inspect/bytes/failure.hpp"
#include "inspect/reader/identification.hpp"

namespace inspect {
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
  static constexpr const char* fits[] = {"exact", "same slots", "damaged", "reads", "rejected"};
  Json json = rawTable(bytes);
  Json fitting = Json::array();
  for (const Candidate& candidate : candidatesFor(bytes)) {
    fitting.push_back({{"message", candidate.message->name},
                       {"fit", fits[static_cast<int>(candidate.fit)]},
                       {"group", candidate.group},
                       {"faults", candidate.faults}});
  }
  json["couldBe"] = std::move(fitting);
  return json;
}

}  // namespace inspect
