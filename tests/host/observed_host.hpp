// A host with any set of functions, without libraries to load: the executable itself answers the
// library's lookups. It records them and the locking of every module's mutexes.
//
// The recorder's trace then holds, in order: lookups, locks and unlocks with the content of the
// module's binding record at that moment, and the calls of the host and of the middleware.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/process.hpp"

namespace harness {

struct Host {
  unsigned functions = wholeHost;
  uint32_t useFlag = 1;

  bool has(unsigned wanted) const { return (functions & wanted) == wanted; }
  bool servesSending() const { return has(MemAlloc | MemFree); }
  bool asksForCache() const { return has(MemUseFlagGet) && useFlag == 1; }
  bool servesReceiving() const { return asksForCache() && has(MemCacheAlloc | MemFree); }
};

// A module's binding record in words. The defaults are the values before any binding.
struct Contents {
  std::string identity = "VELTA VELTA_PLOVANE_SERIAL 25088";
  uint32_t hostBound = 0;
  std::string logWrite = "none";
  std::string memAlloc = "none";
  std::string memFree = "none";
  uint32_t unpackBound = 0;
  std::string unpackAlloc = "malloc";
  std::string unpackFree = "free";
};

// The lines that the observation adds to the trace. A module's name is "l2vpn_cfg send", for
// example; `flag` is that of the side whose mutex is held.
std::string lookUpLine(const std::string& symbol, uint32_t flag);
std::string useFlagLine();
std::string lockLine(const std::string& module, const char* mutex, const Contents& contents);
std::string unlockLine(const std::string& module, const char* mutex, const Contents& contents);

// Within a scenario: starts the observation, gives the process this host, and restores the modules'
// initial state.
void meet(const Host& host);

// The size of the last block that code of this executable allocated from the C library.
size_t lastMalloc();

}  // namespace harness
