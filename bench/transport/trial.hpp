// Runs one measurement in new processes.
#pragma once

#include "bench/transport/party.hpp"

namespace transport_bench {

struct Result {
  double recordsPerSecond;
  double medianUs;
  double percentile99Us;
  // What each peer costs the process that has all of them on one side; Crowd: what each node costs.
  double peerBytes;  // resident
  double peerFiles;  // descriptors
};

// Senders are in one thread and receivers in another: of two processes, or of one over inproc.
Result measure(const Setup& setup);

// packTables, in a process of its own: nodes cannot be used after a fork.
std::vector<uint8_t> packTablesApart();

}  // namespace transport_bench
