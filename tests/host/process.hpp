// Runs scenarios of the library's first use in separate processes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace harness {

using Lines = std::vector<std::string>;

// The host's functions that a process can have, one bit each.
enum HostFunction : unsigned {
  LogWrite = 1,
  MemAlloc = 2,
  MemFree = 4,
  MemCacheAlloc = 8,
  MemUseFlagGet = 16,
  wholeHost = 31,
};

// Runs the scenario in a new process that has not called the library. Returns the lines that it
// noted. The last line is "ended badly" if the scenario did not reach its end.
Lines inANewProcess(const std::function<void()>& scenario);

// Within a scenario: makes these functions of the host visible to every later lookup.
void bring(unsigned functions, uint32_t useFlag = 1);

// Within a scenario: notes a line, or discards all notes. Any thread may note lines.
void note(const std::string& line);
void forgetNotes();

}  // namespace harness
