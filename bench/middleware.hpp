// The process around the library: a middleware that returns at once, and no host services, so
// memory comes from malloc.
#pragma once

#include <cstdint>
#include <vector>

#include "bench/placement.hpp"

namespace bench {

// Messages to this node are dropped.
inline constexpr uint32_t anyDestination = 1;
// Messages to this node are kept for the sending thread.
inline constexpr uint32_t capturingDestination = 2;

// The tables that this thread has sent to the capturing node since the last call, without gaps, and
// the end of each.
struct Captured {
  Placed<uint8_t> bytes;
  std::vector<uint32_t> ends;
};
Captured takeCaptured();

// Ends the process with a message if the library is not the shared object, does not reach the
// middleware of this file, or would find host services.
void requireSurroundings();

}  // namespace bench
