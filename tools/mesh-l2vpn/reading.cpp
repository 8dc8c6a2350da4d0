#include "reading.hpp"

#include <algorithm>
#include <cstdio>

#include "failure.hpp"

namespace tool {
namespace {

// More than these nobody reads, and a hostile message can have as many as it has words.
constexpr size_t mostFaults = 1000;
constexpr size_t mostNotes = 100;

constexpr size_t mostCharacters = 40;

}  // namespace

bool Reading::isAccepted() const {
  return std::ranges::all_of(faults, &Fault::isTolerated);
}

void Reading::addFault(Fault fault) {
  if (faults.size() < mostFaults || (!fault.isTolerated && isAccepted())) {
    faults.push_back(std::move(fault));
  }
}

void Reading::addNote(std::string note) {
  if (notes.size() < mostNotes) {
    notes.push_back(std::move(note));
  }
}

void refuseTooMuchMemory(const Reading& reading) {
  if (reading.memory > largestMemory) {
    throw Failure(Exit::BadInput, "decoding this message takes " + std::to_string(reading.memory) +
                                      " bytes of memory; up to " + std::to_string(largestMemory) +
                                      " are given");
  }
}

std::string faultText(const Fault& fault) {
  return "byte " + std::to_string(fault.at) + (fault.path.empty() ? "" : ", " + fault.path) + ": " +
         fault.text +
         (fault.isTolerated ? " (receivers take the message, with what was read before)" : "");
}

std::string numberText(uint64_t value) {
  char hex[24];
  std::snprintf(hex, sizeof hex, "0x%llx", static_cast<unsigned long long>(value));
  return value < 10 ? std::to_string(value) : std::to_string(value) + " (" + hex + ")";
}

std::string contentsText(std::span<const uint8_t> contents) {
  if (!std::ranges::all_of(contents, [](uint8_t byte) { return byte >= 0x20 && byte < 0x7F; })) {
    return std::ranges::all_of(contents, [](uint8_t byte) { return byte == 0; }) ? "zeros" : "";
  }
  const auto shown = contents.first(std::min(contents.size(), mostCharacters));
  return '"' + std::string(shown.begin(), shown.end()) +
         (shown.size() < contents.size() ? "\"..." : "\"");
}

}  // namespace tool
