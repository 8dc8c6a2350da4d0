// Exercises every operation of every message through the exported functions, with no test
// framework, so that memory checkers of any kind can watch it.
//
//   exercise records ROUNDS
//     random records and damaged messages, memory refused at times
//   exercise read-only ROUNDS
//     two threads, with the library's own memory made read-only
//   exercise threads SECONDS PROCESSES
//     PROCESSES new processes, one after the other: sixteen threads make the first calls at once
//     and go on for SECONDS
//
// Exits with 0, or prints the first fault and exits with 1.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "exercise/host.hpp"
#include "exercise/own_memory.hpp"
#include "exercise/round.hpp"

namespace {

using namespace exercise;

constexpr uint64_t modules = 6;

bool isAsCounted(const char* what, uint64_t is, uint64_t wanted) {
  if (is != wanted) {
    std::fprintf(stderr, "%s: %" PRIu64 ", and should be %" PRIu64 "\n", what, is, wanted);
  }
  return is == wanted;
}

// Whether host and middleware saw what the threads did, and nothing is left.
bool addsUp(const Tally& tally) {
  const bool calls = isAsCounted("calls of the middleware", counts.calls, tally.sends);
  const bool tables = isAsCounted("tables", counts.tables, tally.tables);
  const bool blocks = isAsCounted("blocks out", static_cast<uint64_t>(counts.blocksOut.load()), 0);
  // Every module is used, and each asks when it is bound.
  const bool bindings = isAsCounted("bindings", counts.flagQuestions, modules);
  std::printf("%" PRIu64 " operations, %" PRIu64 " sends, %" PRIu64 " blocks, %" PRIu64
              " refused, %" PRIu64 " logs\n",
              tally.operations, tally.sends, counts.blocks.load(), counts.refusals.load(),
              counts.logs.load());
  return calls && tables && blocks && bindings;
}

int exerciseRecords(int rounds) {
  Tally tally;
  Random random(1);
  for (int round = 0; round < rounds; ++round) {
    for (const Operations& message : exported::allOperations()) {
      runRound(message, random, round % 2 != 0, tally);
      runDamaged(message, random, tally);
    }
  }
  return addsUp(tally) ? 0 : 1;
}

// Each thread starts with another message, so that all modules are first called at once.
Tally onThreads(size_t threads, bool (*more)(int round), bool refusals) {
  std::vector<Tally> tallies(threads);
  std::vector<std::thread> running;
  std::atomic<size_t> waiting{threads};
  for (size_t thread = 0; thread < threads; ++thread) {
    running.emplace_back([&, thread] {
      Random random(thread + 1);
      --waiting;
      while (waiting.load() > 0) {
        std::this_thread::yield();
      }
      const size_t count = exported::allOperations().size();
      for (int round = 0; more(round); ++round) {
        for (size_t step = 0; step < count && more(round); ++step) {
          const size_t index = (thread * count / threads + step) % count;
          runRound(exported::allOperations()[index], random, refusals, tallies[thread]);
        }
      }
    });
  }
  Tally all;
  for (size_t thread = 0; thread < threads; ++thread) {
    running[thread].join();
    all.operations += tallies[thread].operations;
    all.sends += tallies[thread].sends;
    all.tables += tallies[thread].tables;
  }
  return all;
}

int rounds = 0;

int exerciseReadOnly() {
  Tally tally;
  Random random(1);
  for (const Operations& message : exported::allOperations()) {
    runRound(message, random, false, tally);
  }
  const size_t bytes = makeLibraryReadOnly();
  if (bytes == 0) {
    std::fputs("the library's memory was not found\n", stderr);
    return 1;
  }
  const Tally more = onThreads(
      2, [](int round) { return round < rounds; }, false);
  static_cast<void>(makeLibraryWritable());
  tally.operations += more.operations;
  tally.sends += more.sends;
  tally.tables += more.tables;
  std::printf("%zu bytes of the library's were read-only\n", bytes);
  return addsUp(tally) ? 0 : 1;
}

std::chrono::steady_clock::time_point threadsEnd;

int exerciseThreads(double seconds) {
  threadsEnd =
      std::chrono::steady_clock::now() +
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
  // At least once over every message.
  const Tally tally = onThreads(
      16, [](int round) { return round == 0 || std::chrono::steady_clock::now() < threadsEnd; },
      true);
  return addsUp(tally) ? 0 : 1;
}

int inNewProcesses(int processes, double seconds) {
  for (int process = 0; process < processes; ++process) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
      const int result = exerciseThreads(seconds);
      std::fflush(nullptr);
      std::exit(result);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
      std::fprintf(stderr, "process %d ended with status %d\n", process, status);
      return 1;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const char* const mode = argc > 2 ? argv[1] : "";
  if (std::strcmp(mode, "records") == 0) {
    return exerciseRecords(std::atoi(argv[2]));
  }
  if (std::strcmp(mode, "read-only") == 0) {
    rounds = std::atoi(argv[2]);
    return exerciseReadOnly();
  }
  if (std::strcmp(mode, "threads") == 0 && argc == 4) {
    return inNewProcesses(std::atoi(argv[3]), std::atof(argv[2]));
  }
  std::fputs("usage: exercise records|read-only ROUNDS | threads SECONDS PROCESSES\n", stderr);
  return 2;
}
