// Which message bytes of unknown name could be, however damaged.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "inspect/messages/messages.hpp"

namespace inspect {

// How well a message fits.
enum class Fit : uint8_t {
  Exact,     // decoding and encoding gives these bytes
  Same,      // no fault, and as many slots as the vtable
  Damaged,   // the same, but with a fault in a nested table
  Reads,     // receivers accept it
  Rejected,  // receivers reject it
};

struct Candidate {
  const KnownMessage* message;
  Fit fit;
  size_t faults;  // at least so many
  size_t group;   // messages of one layout, which no bytes tell apart, have the same; from 1 on
  int likeness;   // to what its writers write: the more, the better
};

// Messages whose layouts fit best, best first: all exact ones, or else those of three layouts. The
// root table must be readable: see rawTable().
std::vector<Candidate> candidatesFor(std::span<const uint8_t> bytes);

// The message that these bytes are taken for.
struct Choice {
  const KnownMessage& message;
  std::string note;  // which choice was made and how sure it is; empty for a named message
};

// The named message, or the best candidate. Fails if the root table cannot be read.
Choice chooseMessage(const std::string& named, std::span<const uint8_t> bytes);

}  // namespace inspect
