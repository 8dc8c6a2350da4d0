// A table without its message: what can be seen, and which messages it could be.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "json/record_json.hpp"
#include "messages/messages.hpp"

namespace tool {

// How well a message fits.
enum class Fit : uint8_t {
  Exact,    // encoding what it says gives these bytes
  Same,     // it reads them without a fault, and knows as many slots as they have
  Damaged,  // the same, but what is nested in it is at fault
  Reads,    // it reads them
};

struct Candidate {
  const KnownMessage* message;
  Fit fit;
};

// The messages of the best fit that there is.
std::vector<Candidate> candidatesFor(std::span<const uint8_t> bytes);

// The message that these bytes are taken for.
struct Choice {
  const KnownMessage& message;
  std::string note;  // empty when there is nothing to say about the choice
};

// The named message, or the first of the best candidates. Fails when there is none.
Choice chooseMessage(const std::string& named, std::span<const uint8_t> bytes);

// Length, root, vtable, and every present slot's position. Fails where there is no table.
Json rawTable(std::span<const uint8_t> bytes);

}  // namespace tool
