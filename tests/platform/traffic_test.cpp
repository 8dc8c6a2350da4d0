// Processes that are killed, stopped and restarted during traffic: sends end within their timeouts,
// and every lost call is counted.
#include <sys/time.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.hpp"
#include "support/node_fixture.hpp"
#include "support/own_process.hpp"

namespace platform_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Traffic : public NodeFixture {
 protected:
  // A send ends within its timeouts. A busy machine may add some time.
  static void expectInTime(steady_clock::time_point start, const mesh_node_options& options) {
    const auto took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    EXPECT_LT(took.count(), options.connect_timeout_ms + options.send_timeout_ms + 3000);
  }
};

TEST_F(Traffic, ToAKilledReceiverIsDeliveredOrCounted) {
  const mesh_node_options options = impatient();
  const OpenNode sender = open(1, options);
  uint64_t failed = 0;
  const auto sendFor = [&](milliseconds time) {
    for (const auto end = steady_clock::now() + time; steady_clock::now() < end;) {
      const auto start = steady_clock::now();
      failed += sendNotes(2, {std::string(1000, 'a'), "b"}) != MESH_OK ? 1 : 0;
      expectInTime(start, options);
    }
  };
  for (int round = 0; round < 4; ++round) {
    ChildProcess killed(peer({"count", "2"}));
    ASSERT_EQ(killed.readLine(), "ready");
    // Another thread kills it, so that it dies during a call.
    std::thread killer([&] {
      std::this_thread::sleep_for(milliseconds(60 + 7 * round));
      killed.kill();
    });
    sendFor(milliseconds(200));
    killer.join();
    EXPECT_EQ(killed.wait(), -SIGKILL);
  }
  ChildProcess last(peer({"count", "2"}));
  ASSERT_EQ(last.readLine(), "ready");
  sendFor(milliseconds(200));
  ASSERT_EQ(sendNotes(2, {"the last"}), MESH_OK) << mesh_node_last_error();
  last.closeInput();
  const std::string told = last.readLine();
  uint64_t received = 0;
  uint64_t lost = 0;
  uint64_t missed = 0;
  uint64_t malformed = 1;
  ASSERT_EQ(std::sscanf(told.c_str(), "calls %lu lost %lu missed %lu malformed %lu", &received,
                        &lost, &missed, &malformed),
            4)
      << told;
  const Deadline deadline;
  while (statisticsOf(sender).unconfirmed_calls > 0 && !deadline.passed()) {
    std::this_thread::sleep_for(milliseconds(5));
  }
  const mesh_node_statistics sent = statisticsOf(sender);
  EXPECT_GT(received, 1u);
  EXPECT_GT(sent.undelivered_calls, 0u) << "calls of the killed receivers";
  EXPECT_GE(sent.undelivered_calls, missed);
  EXPECT_EQ(sent.unconfirmed_calls, 0u);
  EXPECT_EQ(lost, 0u);
  EXPECT_EQ(malformed, 0u);
  EXPECT_EQ(failed, sent.failed_no_destination + sent.failed_queue_full);
  EXPECT_EQ(sent.failed_other, 0u);
}

TEST_F(Traffic, FromAKilledSenderHasWholeCallsOnly) {
  const OpenNode receiver = open(1);
  uint64_t calls = 0;
  for (int round = 0; round < 6; ++round) {
    ChildProcess sender(peer({"stream", "2", "1", "500"}));
    ASSERT_EQ(sender.readLine(), "ready");
    ASSERT_GT(receiveNotes(receiver, 1).size(), 0u);
    sender.kill();
    EXPECT_EQ(sender.wait(), -SIGKILL);
    int64_t delivered = 0;
    while ((delivered = mesh_node_receive(receiver, 100, nullptr, nullptr)) > 0) {
      EXPECT_EQ(delivered, 500) << "calls are delivered whole";
    }
    EXPECT_EQ(delivered, 0);
    EXPECT_GT(statisticsOf(receiver).received_calls, calls);
    calls = statisticsOf(receiver).received_calls;
  }
  const mesh_node_statistics counted = statisticsOf(receiver);
  EXPECT_EQ(counted.received_records, counted.received_calls * 500);
  EXPECT_EQ(counted.malformed, 0u);
  EXPECT_EQ(counted.lost_calls, 0u);
  EXPECT_EQ(counted.duplicate_calls, 0u);
}

TEST_F(Traffic, ToAStoppedReceiverContinuesWhenItResumes) {
  mesh_node_options options = impatient();
  options.send_timeout_ms = 50;
  const OpenNode sender = open(1, options);
  ChildProcess receiver(peer({"count", "2"}));
  ASSERT_EQ(receiver.readLine(), "ready");
  ASSERT_EQ(sendNotes(2, {"while it runs"}), MESH_OK);
  receiver.stop();
  const std::string large(100 << 10, 'a');
  uint64_t accepted = 1;
  uint32_t result = MESH_OK;
  while ((result = sendNotes(2, {large})) == MESH_OK && accepted < 1000) {
    ++accepted;
  }
  EXPECT_EQ(result, uint32_t{MESH_QUEUE_FULL}) << mesh_node_last_error();
  // The queue is full: refused calls must not use memory.
  const size_t before = residentMebibytes();
  for (int call = 0; call < 20; ++call) {
    const auto start = steady_clock::now();
    EXPECT_EQ(sendNotes(2, {std::string(8 << 20, 'b')}), MESH_QUEUE_FULL);
    expectInTime(start, options);
  }
  if (!keepsFreedMemory) {
    EXPECT_LT(residentMebibytes(), before + 64) << "160 MiB were refused";
  }
  EXPECT_EQ(statisticsOf(sender).failed_queue_full, 21u);

  receiver.resume();
  const Deadline deadline;
  while (sendNotes(2, {"room again"}) != MESH_OK && !deadline.passed()) {
  }
  receiver.closeInput();
  EXPECT_EQ(receiver.readLine(),
            "calls " + std::to_string(accepted + 1) + " lost 0 missed 0 malformed 0");
  EXPECT_EQ(receiver.wait(), 0);
}

TEST_F(Traffic, ThroughAThousandNodesLeaksNothing) {
  const OpenNode anchor = open(1);
  // Opens ten nodes, sends to each and closes them. Alternates between the transports.
  const auto round = [&](uint32_t number) {
    mesh_node_options options = impatient();
    options.transport = number % 2 == 0 ? MESH_TRANSPORT_IPC : MESH_TRANSPORT_INPROC;
    options.connect_timeout_ms = 10'000;
    std::vector<OpenNode> nodes;
    for (uint32_t node = 0; node < 10; ++node) {
      nodes.push_back(open(100 + node, options));
    }
    ASSERT_EQ(mesh_node_attach(nodes[0]), MESH_OK);
    for (uint32_t node = 0; node < 10; ++node) {
      ASSERT_EQ(sendNotes(100 + node, {"a"}), MESH_OK) << mesh_node_last_error();
      ASSERT_EQ(receiveNotes(nodes[node], 1).size(), 1u);
    }
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  };
  for (uint32_t number = 0; number < 10 && !HasFailure(); ++number) {
    round(number);
  }
  const size_t files = openFiles();
  const size_t memory = residentMebibytes();
  const size_t mapped = mappings();
  for (uint32_t number = 0; number < 90 && !HasFailure(); ++number) {
    round(number);
  }
  // ZeroMQ closes its descriptors a moment later.
  const Deadline deadline;
  while (openFiles() > files + 5 && !deadline.passed()) {
    std::this_thread::sleep_for(milliseconds(20));
  }
  EXPECT_LE(openFiles(), files + 5);
  EXPECT_LE(residentMebibytes(), memory + (keepsFreedMemory ? 256 : 8));
  EXPECT_LE(mappings(), mapped + 300) << "a node has one";
}

// Signals interrupt also those calls of ZeroMQ that do not wait.
TEST_F(Traffic, IsNotDisturbedBySignals) {
  static std::atomic<uint64_t> signals;
  signals = 0;
  const auto before = std::signal(SIGALRM, [](int) { ++signals; });
  const itimerval often{.it_interval = {.tv_sec = 0, .tv_usec = 100},
                        .it_value = {.tv_sec = 0, .tv_usec = 100}};
  ASSERT_EQ(setitimer(ITIMER_REAL, &often, nullptr), 0);
  for (const mesh_transport transport : {MESH_TRANSPORT_IPC, MESH_TRANSPORT_INPROC}) {
    mesh_node_options options = defaults();
    options.transport = transport;
    const OpenNode node = open(1, options);
    uint64_t latest = 0;
    const auto note = [](const mesh_received* received, void* user) {
      EXPECT_EQ(received->sequence, ++*static_cast<uint64_t*>(user));
    };
    constexpr uint64_t calls = 20'000;
    for (uint64_t sent = 0; sent < calls; ++sent) {
      ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK) << mesh_node_last_error();
      // A call that has not arrived yet stays behind, and only this thread receives.
      const int32_t wait = sent - latest < 512 ? 0 : 10;
      ASSERT_GE(mesh_node_receive(node, wait, note, &latest), 0);
    }
    const Deadline deadline;
    while (latest < calls && !deadline.passed()) {
      ASSERT_GE(mesh_node_receive(node, 10, note, &latest), 0);
    }
    EXPECT_EQ(latest, calls);
    const mesh_node_statistics statistics = statisticsOf(node);
    EXPECT_EQ(statistics.malformed + statistics.lost_calls + statistics.undelivered_calls, 0u);
  }
  const itimerval never{};
  EXPECT_EQ(setitimer(ITIMER_REAL, &never, nullptr), 0);
  static_cast<void>(std::signal(SIGALRM, before));
  EXPECT_GT(signals, 100u);
}

size_t threadsOfTransport() {
  size_t count = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string name;
    std::getline(std::ifstream(thread.path() / "comm"), name);
    count += name.starts_with("ZMQbg/IO/") ? 1 : 0;
  }
  return count;
}

TEST_F(Traffic, OverSeveralThreadsOfTheTransportArrivesInOrder) {
  constexpr uint32_t senders = 8;
  constexpr uint64_t callsOfEach = 3000;
  mesh_node_options options = defaults();
  options.io_threads = 4;
  const OpenNode receiver = open(100, options);
  options.io_threads = 1;
  std::vector<OpenNode> nodes;
  for (uint32_t sender = 1; sender <= senders; ++sender) {
    nodes.push_back(open(sender, options));
  }
  const Deadline named;  // each thread names itself
  while (threadsOfTransport() < 4 && !named.passed()) {
    std::this_thread::yield();
  }
  EXPECT_EQ(threadsOfTransport(), 4u) << "the first open node decides";
  std::atomic<uint32_t> failures = 0;
  std::vector<std::thread> threads;
  for (const OpenNode& node : nodes) {
    threads.emplace_back([&failures, handle = static_cast<mesh_node*>(node)] {
      EXPECT_EQ(mesh_node_attach(handle), MESH_OK);
      for (uint64_t call = 1; call <= callsOfEach; ++call) {
        failures += sendNotes(100, {"a"}, call) != MESH_OK ? 1 : 0;
      }
    });
  }
  std::map<uint32_t, uint64_t> latest;
  const auto note = [](const mesh_received* received, void* user) {
    uint64_t& before = (*static_cast<std::map<uint32_t, uint64_t>*>(user))[received->source];
    EXPECT_EQ(received->extra, before + 1);
    EXPECT_EQ(received->sequence, received->extra);
    before = received->extra;
  };
  const Deadline deadline;
  for (uint64_t taken = 0; taken < senders * callsOfEach && !deadline.passed();) {
    const int64_t records = mesh_node_receive(receiver, 1000, note, &latest);
    ASSERT_GE(records, 0);
    taken += static_cast<uint64_t>(records);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(failures, 0u);
  ASSERT_EQ(latest.size(), senders);
  for (const auto& [source, sequence] : latest) {
    EXPECT_EQ(sequence, callsOfEach) << "from node " << source;
  }
  EXPECT_EQ(statisticsOf(receiver).lost_calls + statisticsOf(receiver).duplicate_calls, 0u);
}

}  // namespace
}  // namespace platform_test
