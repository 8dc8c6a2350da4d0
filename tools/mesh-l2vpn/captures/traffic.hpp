// A table on its way from a node to another.
#pragma once

#include <cstdint>
#include <span>

#include "json/record_json.hpp"

namespace tool {

struct Table {
  uint64_t time;  // nanoseconds since 1970
  uint32_t source;
  uint32_t destination;
  uint32_t id;
  uint64_t extra;
  std::span<const uint8_t> bytes;
  uint64_t missedBefore = 0;  // calls that did not arrive between the table before and this one
  uint32_t cutOff = 0;        // bytes at its end that a capture does not hold
};

uint64_t nowInNanoseconds();

// "2026-11-21T09:28:00.123456789Z"
std::string timeText(uint64_t nanoseconds);

// A table as one JSON object: who sent what when, and its record; or its faults, and its bytes
// where there is no record, always hexadecimal.
Json tableJson(const Table& table, ByteText form = ByteText::Hex);

// Whether receivers take the table: they know the message, and their reader has no objection.
bool isTaken(const Table& table);

}  // namespace tool
