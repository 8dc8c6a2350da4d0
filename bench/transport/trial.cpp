#include "bench/transport/trial.hpp"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <thread>

namespace transport_bench {
namespace {

using Clock = std::chrono::steady_clock;
using Parties = std::vector<std::unique_ptr<Party>>;

constexpr unsigned secondsToHang = 120;
constexpr uint64_t unknown = UINT64_MAX;

// Both sides and the program see it.
struct Shared {
  std::atomic<int> open;                 // sides that are open
  std::atomic<uint64_t> arrived;         // calls, while connections are made
  std::atomic<uint64_t> first{unknown};  // the call with which measuring begins
  std::atomic<uint64_t> last{unknown};
  std::atomic<bool> lastQuestion;
  std::atomic<bool> senderClosed;
  Result result;
  uint8_t tables[mostRecords * tableSize];
};

void waitFor(const std::function<bool()>& holds) {
  while (!holds()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void waitForBoth(Shared& shared) {
  shared.open.fetch_add(1);
  waitFor([&] { return shared.open == 2; });
}

struct Resources {
  Resources() {
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    bytes = static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE));
    files = static_cast<double>(
        std::ranges::distance(std::filesystem::directory_iterator("/proc/self/fd")));
  }

  double bytes;
  double files;
};

void notePeerCost(Result& result, const Resources& before, uint32_t peers) {
  const Resources now;
  result.peerBytes = (now.bytes - before.bytes) / peers;
  result.peerFiles = (now.files - before.files) / peers;
}

Parties openParties(const Setup& setup, uint32_t first, uint32_t count) {
  Parties parties;
  for (uint32_t i = 0; i < count; ++i) {
    parties.push_back(openParty(setup, first + i));
  }
  return parties;
}

// All at once: each node that closes waits until its receivers know of it.
void closeParties(const Parties& parties) {
  std::vector<std::jthread> closing;
  for (const auto& party : parties) {
    closing.emplace_back([&party] { party->close(); });
  }
}

void streamSend(const Setup& setup, Shared& shared) {
  const Parties parties = openParties(setup, firstSender, setup.senders);
  const Resources before;
  waitForBoth(shared);
  const uint64_t routes = std::max(setup.senders, setup.receivers);
  uint64_t sent = 0;
  const auto send = [&] {
    parties[sent % setup.senders]->send(firstReceiver +
                                        static_cast<uint32_t>(sent % setup.receivers));
    ++sent;
  };
  while (sent < routes) {
    send();
  }
  waitFor([&] { return shared.arrived == routes; });
  if (setup.senders == 1) {
    notePeerCost(shared.result, before, setup.receivers);
  }
  // Marks are set before the marked call is sent: the receiver sees them in time.
  const auto sendFor = [&](double seconds, std::atomic<uint64_t>& mark) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    constexpr int callsBetweenLooks = 32;
    do {
      for (int i = 0; i < callsBetweenLooks; ++i) {
        send();
      }
    } while (Clock::now() < end);
    mark = sent + 1;
    send();
  };
  sendFor(setup.seconds / 4, shared.first);
  sendFor(setup.seconds, shared.last);
  waitFor([&] { return shared.arrived == sent; });
  closeParties(parties);
  shared.senderClosed = true;
}

// Calls `each` after every call that arrives, until it returns false.
void receiveAll(const Parties& parties, const std::function<bool()>& each) {
  const bool one = parties.size() == 1;
  for (;;) {
    bool idle = true;
    for (const auto& party : parties) {
      while (party->receive(one)) {
        idle = false;
        if (!each()) {
          return;
        }
      }
    }
    if (idle) {
      std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
  }
}

void streamReceive(const Setup& setup, Shared& shared) {
  const Parties parties = openParties(setup, firstReceiver, setup.receivers);
  const Resources before;
  waitForBoth(shared);
  const uint64_t routes = std::max(setup.senders, setup.receivers);
  uint64_t arrived = 0;
  receiveAll(parties, [&] { return ++arrived < routes; });
  if (setup.senders > 1) {
    notePeerCost(shared.result, before, setup.senders);
  }
  shared.arrived = arrived;
  Clock::time_point start;
  receiveAll(parties, [&] {
    ++arrived;
    if (arrived == shared.first.load(std::memory_order_relaxed)) {
      start = Clock::now();
    }
    return arrived != shared.last.load(std::memory_order_relaxed);
  });
  const std::chrono::duration<double> time = Clock::now() - start;
  const uint64_t calls = arrived - shared.first;
  shared.result.recordsPerSecond =
      static_cast<double>(calls) * static_cast<double>(setup.records) / time.count();
  shared.arrived = arrived;
  waitFor([&] { return shared.senderClosed.load(); });
  closeParties(parties);
}

void ask(const Setup& setup, Shared& shared) {
  const auto party = openParty(setup, firstSender);
  waitForBoth(shared);
  std::vector<double> times;
  const auto roundTrip = [&] {
    const Clock::time_point start = Clock::now();
    party->send(firstReceiver);
    while (!party->receive(true)) {
    }
    const Clock::time_point end = Clock::now();
    times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
    return end;
  };
  const auto askFor = [&](double seconds) {
    times.clear();
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (roundTrip() < end) {
    }
  };
  askFor(setup.seconds / 4);
  askFor(setup.seconds);
  std::sort(times.begin(), times.end());
  shared.result.medianUs = times[times.size() / 2];
  shared.result.percentile99Us = times[times.size() * 99 / 100];
  shared.lastQuestion = true;
  roundTrip();
  party->close();
  shared.senderClosed = true;
}

void answer(const Setup& setup, Shared& shared) {
  const auto party = openParty(setup, firstReceiver);
  waitForBoth(shared);
  for (bool over = false; !over;) {
    if (party->receive(true)) {
      over = shared.lastQuestion;
      party->send(firstSender);
    }
  }
  waitFor([&] { return shared.senderClosed.load(); });
  party->close();
}

void crowd(const Setup& setup, Shared& shared) {
  const rlimit limit{.rlim_cur = 4096, .rlim_max = 4096};
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0) {
    fail("setrlimit: %s", std::strerror(errno));
  }
  Parties parties = openParties(setup, firstSender, 1);
  const Resources before;
  for (Parties more = openParties(setup, firstSender + 1, setup.senders - 1); auto& party : more) {
    parties.push_back(std::move(party));
  }
  for (uint32_t i = 0; i < setup.senders; ++i) {
    parties[i]->send(firstSender + (i + 1) % setup.senders);
  }
  for (const auto& party : parties) {
    if (!party->receive(true)) {
      fail("a call of the ring did not arrive");
    }
  }
  notePeerCost(shared.result, before, setup.senders - 1);
  closeParties(parties);
}

pid_t startChild(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child < 0) {
    fail("fork: %s", std::strerror(errno));
  }
  if (child == 0) {
    alarm(secondsToHang);
    work();
    _exit(0);
  }
  return child;
}

struct Unmap {
  void operator()(Shared* shared) const { munmap(shared, sizeof *shared); }
};
using SharedPointer = std::unique_ptr<Shared, Unmap>;

SharedPointer runInChildren(const std::string& name,
                            const std::vector<std::function<void(Shared&)>>& works) {
  void* const memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    fail("mmap: %s", std::strerror(errno));
  }
  SharedPointer shared(new (memory) Shared{});
  std::vector<pid_t> children;
  for (const auto& work : works) {
    children.push_back(startChild([&] { work(*shared); }));
  }
  for (size_t left = children.size(); left > 0; --left) {
    int status = 0;
    const pid_t ended = wait(&status);
    std::erase(children, ended);
    if (status != 0) {
      for (const pid_t child : children) {
        kill(child, SIGKILL);
      }
      fail("%s: a process ended with status %#x", name.c_str(), static_cast<unsigned>(status));
    }
  }
  return shared;
}

}  // namespace

Result measure(const Setup& setup) {
  const auto first = [&](Shared& shared) {
    setup.kind == Kind::Rate ? streamSend(setup, shared) : ask(setup, shared);
  };
  const auto second = [&](Shared& shared) {
    setup.kind == Kind::Rate ? streamReceive(setup, shared) : answer(setup, shared);
  };
  if (setup.kind == Kind::Crowd) {
    return runInChildren(setup.name, {[&](Shared& shared) { crowd(setup, shared); }})->result;
  }
  if (setup.transport == Transport::Inproc) {
    return runInChildren(setup.name, {[&](Shared& shared) {
                           std::thread thread([&] { second(shared); });
                           first(shared);
                           thread.join();
                         }})
        ->result;
  }
  return runInChildren(setup.name, {first, second})->result;
}

std::vector<uint8_t> packTablesApart() {
  const SharedPointer shared = runInChildren("tables", {[](Shared& to) {
                                               const std::vector<uint8_t> tables = packTables();
                                               std::copy(tables.begin(), tables.end(), to.tables);
                                             }});
  return {std::begin(shared->tables), std::end(shared->tables)};
}

}  // namespace transport_bench
