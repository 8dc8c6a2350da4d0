// First calls from many threads at the same time.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "host/process.hpp"
#include "host/scenarios.hpp"

namespace {

using harness::Lines;

// In a new process, this many threads make the same calls, the first ones as simultaneously as
// possible. Returns the host's notes, sorted.
Lines fromManyThreads(bool (*call)()) {
  constexpr int threads = 16;
  Lines lines = harness::inANewProcess([&] {
    harness::bring(harness::wholeHost);
    std::atomic<int> waiting{threads};
    std::atomic<int> wrong{0};
    std::vector<std::thread> all;
    for (int thread = 0; thread < threads; ++thread) {
      all.emplace_back([&] {
        --waiting;
        while (waiting > 0) {
          std::this_thread::yield();
        }
        for (int round = 0; round < 4; ++round) {
          wrong += call() ? 0 : 1;
        }
      });
    }
    for (std::thread& thread : all) {
      thread.join();
    }
    if (wrong != 0) {
      harness::note("wrong " + std::to_string(wrong));
    }
  });
  std::sort(lines.begin(), lines.end());
  return lines;
}

// Binding is short and happens once per process: many processes make a race likely.
constexpr int processes = 20;
constexpr size_t calls = 64;

void append(Lines& lines, size_t count, const char* line) {
  lines.insert(lines.end(), count, line);
}

TEST(BindingFromManyThreads, BindsTheReceivingSideOnce) {
  Lines expected;
  append(expected, calls, "cacheAlloc 3 12 dbginfo_key_l2vpn_unpack");
  append(expected, calls, "free 12 dbginfo_key_l2vpn_free_unpacked");
  append(expected, 1, "useFlagGet 12");
  for (int process = 0; process < processes; ++process) {
    ASSERT_EQ(fromManyThreads(&harness::receiveText), expected);
  }
}

TEST(BindingFromManyThreads, BindsTheSendingSideOnce) {
  Lines expected;
  append(expected, calls, "alloc 28 25088 dbginfo_key_l2vpn__sendsingle");
  append(expected, calls, "free 25088 dbginfo_key_l2vpn__sendsingle");
  append(expected, 1, "useFlagGet 12");
  for (int process = 0; process < processes; ++process) {
    ASSERT_EQ(fromManyThreads(&harness::sendKey), expected);
  }
}

TEST(BindingFromManyThreads, LosesNoReport) {
  Lines expected;
  append(expected, calls,
         "log VELTA 2 22 \"\" dbginfo_key_l2vpn_unpack [VELTA]:Param invalid(%s, %d, %s)");
  for (int process = 0; process < processes; ++process) {
    ASSERT_EQ(fromManyThreads(&harness::receiveNothing), expected);
  }
}

// Both sides of both modules, each with its own lock.
TEST(BindingFromManyThreads, BindsBothSidesOnce) {
  Lines expected;
  append(expected, calls, "alloc 28 25088 dbginfo_key_l2vpn__sendsingle");
  append(expected, calls, "cacheAlloc 3 12 dbginfo_key_l2vpn_unpack");
  append(expected, calls, "free 12 dbginfo_key_l2vpn_free_unpacked");
  append(expected, calls, "free 25088 dbginfo_key_l2vpn__sendsingle");
  append(expected, calls,
         "log VELTA 2 22 \"\" dbginfo_key_l2vpn_pack [VELTA]:Param invalid(%s, %u, %s)");
  append(expected, calls,
         "log VELTA 2 22 \"\" dbginfo_key_l2vpn_unpack [VELTA]:Param invalid(%s, %d, %s)");
  append(expected, 2, "useFlagGet 12");
  for (int process = 0; process < processes; ++process) {
    ASSERT_EQ(fromManyThreads([] {
                const bool received = harness::receiveText();
                const bool sent = harness::sendKey();
                const bool refused = harness::receiveNothing();
                const bool told = harness::packToNowhere();
                return received && sent && refused && told;
              }),
              expected);
  }
}

}  // namespace
