// Differences of two messages, by field and by byte.
#pragma once

#include <span>
#include <vector>

#include "inspect/json/record_json.hpp"
#include "inspect/reader/reading.hpp"

namespace inspect {

// A member that differs between two JSON values. The text of an absent value is empty.
struct FieldDifference {
  std::string path;
  std::string one;
  std::string other;
};

// The JSON is that of writeMessage(). Where equal items differ alike, they share one path, as
// "f1[3..9].f0".
std::vector<FieldDifference> fieldDifferences(const Json& one, const Json& other);

// The record in a message that receivers accept. `memory` is what the call has taken of its memory;
// what the values and their differences take is added.
Json recordJson(const KnownMessage& message, std::span<const uint8_t> bytes, bool isWhole,
                uint64_t& memory);

// A run of differing bytes inside one range of the first message.
struct ByteDifference {
  uint32_t at;
  std::string one;  // hexadecimal
  std::string other;
  std::string meaning;  // "f1.f6 value"
};

// Compares up to the shorter length.
std::vector<ByteDifference> byteDifferences(std::span<const uint8_t> one,
                                            std::span<const uint8_t> other,
                                            const Reading& readingOfOne);

// More differences are not listed.
inline constexpr size_t mostDifferences = 20'000;

// Both as one JSON object: "firstLength", "secondLength", "fields", "bytes".
Json differenceJson(const std::vector<FieldDifference>& fields,
                    const std::vector<ByteDifference>& bytes, size_t firstLength,
                    size_t secondLength);

// The same of two messages that receivers accept. Fails for large ones: their values, side by side,
// take many times the memory of their text.
Json differenceJson(const KnownMessage& message, std::span<const uint8_t> one,
                    std::span<const uint8_t> other);

}  // namespace inspect
