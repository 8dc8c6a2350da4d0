// Compares the engine's quick readers and writers with its slot reader and its slow writer, as many
// times as requested:
//
//   differential [--seed N] [--from N] [--executions N | --seconds S] [--only MESSAGE]
//
// Each execution depends only on the seed, its number and --only, so each can be repeated alone. At
// the first difference the program prints everything that repeats it, and exits with 1.
#include <signal.h>

#include <array>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>

#include "execution.hpp"

namespace {

using namespace differential;

struct Options {
  uint64_t seed = 1;
  uint64_t from = 0;
  uint64_t executions = 1'000'000;
  double seconds = std::numeric_limits<double>::infinity();
  const char* only = nullptr;
};

[[noreturn]] void endWithUsage() {
  std::fputs(
      "usage: differential [--seed N] [--from N] [--executions N | --seconds S] [--only MESSAGE]\n",
      stderr);
  std::exit(2);
}

uint64_t number(const char* text) {
  char* end = nullptr;
  const uint64_t value = std::strtoull(text, &end, 0);
  if (end == text || *end != '\0') {
    endWithUsage();
  }
  return value;
}

double seconds(const char* text) {
  char* end = nullptr;
  const double value = std::strtod(text, &end);
  if (end == text || *end != '\0') {
    endWithUsage();
  }
  return value;
}

Options parse(int count, char** arguments) {
  Options options;
  for (int index = 1; index + 1 < count; index += 2) {
    const std::string_view name = arguments[index];
    const char* const value = arguments[index + 1];
    if (name == "--seed") {
      options.seed = number(value);
    } else if (name == "--from") {
      options.from = number(value);
    } else if (name == "--executions") {
      options.executions = number(value);
    } else if (name == "--seconds") {
      options.seconds = seconds(value);
      options.executions = UINT64_MAX;
    } else if (name == "--only") {
      options.only = value;
    } else {
      endWithUsage();
    }
  }
  if (count % 2 == 0) {
    endWithUsage();
  }
  return options;
}

using Counts = std::array<uint64_t, resultCount>;

void printRow(const char* name, const Counts& counts) {
  uint64_t all = 0;
  for (const uint64_t count : counts) {
    all += count;
  }
  std::printf("%-36s %11" PRIu64, name, all);
  for (const uint64_t count : counts) {
    std::printf(" %10" PRIu64, count);
  }
  std::printf("\n");
}

void printTable(const std::vector<Subject>& subjects, const std::vector<Counts>& counts) {
  std::printf("%-36s %11s %10s %10s %10s %10s %10s\n", "message", "executions", "fixed", "quick",
              "slot", "rejected", "written");
  Counts total{};
  for (size_t index = 0; index < subjects.size(); ++index) {
    printRow(subjects[index].name.data(), counts[index]);
    for (size_t result = 0; result < resultCount; ++result) {
      total[result] += counts[index][result];
    }
  }
  printRow("all", total);
}

Executor* executor = nullptr;

void endAtFault(int) {
  executor->fail("memory was touched that is nobody's");
}

void catchFaults() {
  struct sigaction action {};
  action.sa_handler = endAtFault;
  for (const int signal : {SIGSEGV, SIGBUS}) {
    sigaction(signal, &action, nullptr);
  }
}

double since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int count, char** arguments) {
  const Options options = parse(count, arguments);
  const auto owned = std::make_unique<Executor>(options.seed);
  executor = owned.get();
  if (options.only != nullptr && !executor->restrictTo(options.only)) {
    std::fprintf(stderr, "no message %s\n", options.only);
    return 2;
  }
  catchFaults();

  // Reads the clock once per block of executions.
  constexpr uint64_t block = 1024;
  std::vector<Counts> counts(executor->subjects().size());
  const auto start = std::chrono::steady_clock::now();
  const std::clock_t startOfWork = std::clock();
  uint64_t done = 0;
  for (; done < options.executions && (done % block != 0 || since(start) < options.seconds);
       ++done) {
    const Result result = executor->execute(options.from + done);
    ++counts[executor->subjectIndex()][static_cast<size_t>(result)];
  }
  const double elapsed = since(start);
  const double worked = static_cast<double>(std::clock() - startOfWork) / CLOCKS_PER_SEC;

  printTable(executor->subjects(), counts);
  std::printf("seed %" PRIu64 ", executions %" PRIu64 " from %" PRIu64
              ", %.2f s, %.2f s of a core, %.0f a second of it; no difference\n",
              options.seed, done, options.from, elapsed, worked,
              static_cast<double>(done) / worked);
  return 0;
}
