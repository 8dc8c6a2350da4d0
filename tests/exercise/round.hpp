// One round over one message: every operation, every result compared.
#pragma once

#include "exercise/records.hpp"
#include "support/exported.hpp"

namespace exercise {

using exported::Operations;

// Counts by the calling thread.
struct Tally {
  uint64_t operations = 0;
  uint64_t sends = 0;   // that reached the middleware
  uint64_t tables = 0;  // that it was handed
};

// Packs a random record and sends it in each way, unpacks what was packed and what was sent, packs
// that again and frees it. With `refusals`, memory is refused now and then, and every operation may
// fail for that. Ends the process with a text where something is not as it should be.
void runRound(const Operations& message, Random& random, bool refusals, Tally& tally);

// Unpacks and frees damaged messages, packed ones and sent ones.
void runDamaged(const Operations& message, Random& random, Tally& tally);

}  // namespace exercise
