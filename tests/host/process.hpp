// Processes of their own for scenarios in which the library meets its host for the first time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace harness {

using Lines = std::vector<std::string>;

// The host's functions that a process can have, as one bit each.
enum HostFunction : unsigned {
  LogWrite = 1,
  MemAlloc = 2,
  MemFree = 4,
  MemCacheAlloc = 8,
  MemUseFlagGet = 16,
  wholeHost = 31,
};

// Runs the scenario in a new process that has made no call of the library yet. Returns the lines
// that it noted, with "ended badly" as the last if it did not come to its end.
Lines inANewProcess(const std::function<void()>& scenario);

// Within a scenario: makes these functions of the host visible to every later lookup.
void bring(unsigned functions, uint32_t useFlag = 1);

// Within a scenario: notes a line, or forgets all so far. Notes may come from any thread.
void note(const std::string& line);
void forgetNotes();

}  // namespace harness
