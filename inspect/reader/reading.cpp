#include "inspect/reader/reading.hpp"

#include <algorithm>
#include <cstdio>

#include "inspect/bytes/hex.hpp"
#include "inspect/bytes/memory_limit.hpp"

namespace inspect {
namespace {

// Nobody reads more, and a hostile message can have one fault per word.
constexpr size_t mostFaults = 1000;
constexpr size_t mostNotes = 100;

constexpr size_t mostCharacters = 40;
constexpr size_t mostDigits = 40;

// Longer contents are not examined to the end: many fields may point to the same ones. No array is
// longer.
constexpr size_t mostExamined = 16384;

}  // namespace

void Verdict::addFault(Fault fault) {
  const bool rejects = !fault.isTolerated && !isRejected;
  isRejected = isRejected || rejects;
  if (faults.size() < mostFaults || rejects) {
    faults.push_back(std::move(fault));
  } else {
    hasMoreFaults = true;
  }
}

bool Reading::takesNote() const {
  return notes.size() < mostNotes;
}

uint64_t mostRanges() {
  return memoryLimit / 2 / rangeSize;
}

std::string faultCountText(const Verdict& verdict) {
  const size_t count = verdict.faults.size();
  if (count == 0) {
    return "no fault";
  }
  return (verdict.hasMoreFaults ? "at least " : "") + std::to_string(count) +
         (count == 1 ? " fault" : " faults");
}

std::string faultText(const Fault& fault) {
  return "byte " + std::to_string(fault.at) + (fault.path.empty() ? "" : ", " + fault.path) + ": " +
         fault.text +
         (fault.isTolerated ? " (receivers accept the message, with what they read before)" : "");
}

std::string numberText(uint64_t value) {
  char hex[24];
  std::snprintf(hex, sizeof hex, "0x%llx", static_cast<unsigned long long>(value));
  return value < 10 ? std::to_string(value) : std::to_string(value) + " (" + hex + ")";
}

std::string contentsText(std::span<const uint8_t> contents) {
  const auto examined = contents.first(std::min(contents.size(), mostExamined));
  if (std::ranges::all_of(examined, [](uint8_t byte) { return byte == 0; })) {
    return examined.size() < contents.size() ? "starts with zeros" : "zeros";
  }
  if (std::ranges::all_of(examined, [](uint8_t byte) { return byte >= 0x20 && byte < 0x7F; })) {
    const auto shown = contents.first(std::min(contents.size(), mostCharacters));
    return '"' + std::string(shown.begin(), shown.end()) +
           (shown.size() < contents.size() ? "\"..." : "\"");
  }
  const auto shown = contents.first(std::min(contents.size(), mostDigits / 2));
  return toHex(shown) + (shown.size() < contents.size() ? "..." : "");
}

}  // namespace inspect
