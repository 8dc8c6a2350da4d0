// A host and a middleware that write down every call the library makes, one line a call.
//
// The test executables that link this define the host's functions and the middleware's, so the
// library finds them as it would a device's. One thread at a time uses a recorder.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace harness {

// One table that reached the middleware.
struct SentTable {
  uint64_t address;
  uint32_t id;
  std::vector<uint8_t> bytes;
};

struct Recorder {
  std::vector<std::string> trace;
  std::vector<SentTable> sent;
  // Every log call's first argument and source line, in order.
  std::vector<std::pair<const void*, uint32_t>> logOrigins;

  // Of the allocations since the last reset, the one with this number (from 1) fails; 0: none.
  int failingAllocation = 0;
  // From this one on (from 1), every one fails; 0: none.
  int failingFrom = 0;
  bool everyAllocationFails = false;
  // The lowest bit tells whether the next allocation fails; they are used up one by one.
  uint64_t failingAllocations = 0;
  // Allocations of more fail too.
  uint32_t largestBlock = UINT32_MAX;
  // The number of the last allocation that failed; 0: none did.
  int lastFailure = 0;
  uint32_t middlewareResult = 0;
  // From this registration on (from 1), the middleware refuses with middlewareResult; 0: never.
  int refusedRegistration = 0;

  // How far blocks begin from an aligned place.
  size_t blockShift = 0;
  // Blocks that are out, by address, with their numbers.
  std::map<const void*, int> blocks;
  int allocations = 0;
  int blocksGiven = 0;
  int registrations = 0;

  struct Registration {
    uint32_t id;
    const void* unpack;
    const void* release;
  };
  std::vector<Registration> registered;
  std::vector<void (*)()> cleanHooks;
};

Recorder& recorder();

// Forgets everything but where blocks begin, and those that are out, which stay until they are
// freed.
void resetRecorder();

// Numbers blocks from 1 again and forgets the trace, for the next of several compared calls.
std::vector<std::string> takeTrace();

}  // namespace harness
