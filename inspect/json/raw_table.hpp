// A table of an unknown message: its structure, and the messages that fit it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "inspect/json/record_json.hpp"
#include "inspect/messages/messages.hpp"

namespace inspect {

// How well a message fits.
enum class Fit : uint8_t {
  Exact,    // decoding and encoding gives these bytes
  Same,     // no fault, and as many slots as the vtable
  Damaged,  // the same, but with a fault in a nested table
  Reads,    // receivers accept it
};

struct Candidate {
  const KnownMessage* message;
  Fit fit;
};

// The messages with the best fit.
std::vector<Candidate> candidatesFor(std::span<const uint8_t> bytes);

// The message that these bytes are taken for.
struct Choice {
  const KnownMessage& message;
  std::string note;  // empty if the choice is certain
};

// The named message, or the first of the best candidates. Fails if there is none.
Choice chooseMessage(const std::string& named, std::span<const uint8_t> bytes);

// Length, root, vtable, and every present slot's position. Fails if there is no table.
Json rawTable(std::span<const uint8_t> bytes);

// The same, with the messages that fit best in "couldBe".
Json identification(std::span<const uint8_t> bytes);

}  // namespace inspect
