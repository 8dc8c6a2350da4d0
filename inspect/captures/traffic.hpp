// A table sent from one node to another.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "inspect/json/record_json.hpp"
#include "inspect/messages/messages.hpp"

namespace inspect {

struct Table {
  uint64_t time;  // nanoseconds since 1970
  uint32_t source;
  uint32_t destination;
  uint32_t id;
  uint64_t extra;
  std::span<const uint8_t> bytes;
  uint64_t missedBefore = 0;  // calls missed since the previous table
  uint32_t cutOff = 0;        // bytes missing at its end in a capture
  uint64_t packet = 0;        // its number among all packets of a capture, from 1
  // The message as the capture describes it. Null: as this program knows it, if it does.
  const KnownMessage* message = nullptr;
};

inline constexpr uint64_t nanosecondsPerSecond = 1'000'000'000;
uint64_t nowInNanoseconds();

// "2026-11-21T09:28:00.123456789Z"
std::string timeText(uint64_t nanoseconds);
// Also without the end of the time: "2026-11-21T09:28". None for other text.
std::optional<uint64_t> timeFromText(const std::string& text);

const KnownMessage* messageOf(const Table& table);

// Writes a table as one line of JSON: time, addresses, message, and the record. If there are
// faults, also the faults; if there is no record, the bytes in hexadecimal. Returns whether the
// record is there and has no fault.
bool writeTable(Text& text, const Table& table, const JsonStyle& style = {});

// The same as a value.
Json tableJson(const Table& table, const JsonStyle& style = {});

// A table from such a value, whose record may have been edited: it is encoded in the arrangement
// that has the value's length, else as sent. Without a record the bytes are taken. Missing
// addresses and times are zero. Fails for unknown members. `memory` is what the call has taken of
// its memory.
struct OwnedTable {
  Table table;
  std::vector<uint8_t> bytes;  // of the table
};
OwnedTable tableFromJson(const Json& json, ByteText form = ByteText::Hex, uint64_t memory = 0);

// Whether receivers know the message and accept the table.
bool isAccepted(const Table& table);

}  // namespace inspect
