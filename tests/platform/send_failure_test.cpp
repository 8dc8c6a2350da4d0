// Sends that fail or have to wait.
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "support/node_fixture.hpp"
#include "support/own_process.hpp"

namespace platform_test {
namespace {

using std::chrono::milliseconds;

class Send : public NodeFixture, public ::testing::WithParamInterface<mesh_transport> {
 protected:
  static mesh_node_options options() { return impatient(GetParam()); }

  // Queues of one call on both sides.
  static mesh_node_options narrow() {
    mesh_node_options options = impatient(GetParam());
    options.send_queue_calls = 1;
    options.receive_queue_calls = 1;
    return options;
  }

  // Sends numbered calls until one fails. They are large, so that system buffers hold only a few.
  static uint32_t fill(uint32_t destination, uint32_t& accepted) {
    const std::string padding(256 << 10, ' ');
    for (accepted = 0; accepted < 1000; ++accepted) {
      const uint32_t result = sendNotes(destination, {std::to_string(accepted) + padding});
      if (result != MESH_OK) {
        return result;
      }
    }
    return MESH_OK;
  }
};

INSTANTIATE_TEST_SUITE_P(Transports, Send, bothTransports, transportName);

TEST_P(Send, ReturnsNoDestinationAfterTheTimeout) {
  const OpenNode node = open(1, options());
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(sendNotes(2, {"a"}), MESH_NO_DESTINATION);
  EXPECT_GE(since(start), milliseconds(300));
  EXPECT_EQ(statisticsOf(node).failed_no_destination, 1u);
  EXPECT_EQ(statisticsOf(node).sent_calls, 0u);
  EXPECT_NE(std::string(mesh_node_last_error()).find("no receiver answers"), std::string::npos);
}

TEST_P(Send, WaitsWithoutTheProcessor) {
  const OpenNode node = open(1, options());
  const mesh_msg_desc empty{};
  const auto before = processorTime();
  EXPECT_EQ(mesh_node_send(node, 2, &empty, 1, 0, 600), MESH_NO_DESTINATION);
  EXPECT_LT(processorTime() - before, milliseconds(60));
}

TEST_P(Send, FindsAReceiverThatOpensDuringTheWait) {
  mesh_node_options patient = options();
  patient.connect_timeout_ms = 10000;
  const OpenNode sender = open(1, patient);
  uint32_t result = MESH_NOT_OPEN;
  std::thread sending([&] { result = sendNotes(2, {"early"}); });
  std::this_thread::sleep_for(milliseconds(100));
  const OpenNode receiver = open(2, options());
  EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
  sending.join();
  EXPECT_EQ(result, uint32_t{MESH_OK});
  EXPECT_EQ(statisticsOf(receiver).missed_before_first, 0u);
}

TEST_P(Send, FindsAReceiverThatOpensAfterAFailure) {
  const OpenNode sender = open(1, options());
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_NO_DESTINATION);
  const OpenNode receiver = open(2, options());
  ASSERT_EQ(sendNotes(2, {"b"}), MESH_OK);
  EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
  // The failed call used no sequence number.
  EXPECT_EQ(statisticsOf(receiver).missed_before_first, 0u);
}

TEST_P(Send, ReturnsNoDestinationAfterTheReceiverClosed) {
  OpenNode sender = open(1, options());
  OpenNode receiver = open(2, options());
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  ASSERT_EQ(receiveNotes(receiver, 1).size(), 1u);
  ASSERT_EQ(receiver.close(), MESH_OK);
  // The sender may notice the end of the connection a moment later.
  uint32_t result = MESH_OK;
  uint64_t sent = 0;
  for (int i = 0; i < 1000 && result == MESH_OK; ++i) {
    result = sendNotes(2, {"b"});
    sent += result == MESH_OK ? 1 : 0;
    std::this_thread::sleep_for(milliseconds(5));
  }
  EXPECT_EQ(result, uint32_t{MESH_NO_DESTINATION});
  EXPECT_EQ(statisticsOf(sender).unconfirmed_calls, sent);
  EXPECT_EQ(sender.close(), sent == 0 ? MESH_OK : MESH_UNDELIVERED);
}

TEST_P(Send, ReturnsQueueFullAndLosesNothing) {
  const OpenNode sender = open(1, narrow());
  const OpenNode receiver = open(2, narrow());
  uint32_t accepted = 0;
  ASSERT_EQ(fill(2, accepted), MESH_QUEUE_FULL) << mesh_node_last_error();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(sendNotes(2, {"one more"}), MESH_QUEUE_FULL);
  EXPECT_GE(since(start), milliseconds(300));
  EXPECT_EQ(statisticsOf(sender).failed_queue_full, 2u);

  const std::vector<Received> notes = receiveNotes(receiver, accepted);
  ASSERT_EQ(notes.size(), accepted);
  for (uint32_t i = 0; i < accepted; ++i) {
    EXPECT_EQ(std::stoul(notes[i].text), i);
  }
  ASSERT_EQ(sendNotes(2, {"room again"}), MESH_OK);
  EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
  EXPECT_EQ(statisticsOf(receiver).lost_calls, 0u);
}

TEST_P(Send, ContinuesWhenTheReceiverMakesRoom) {
  mesh_node_options patient = narrow();
  patient.send_timeout_ms = 30000;
  const OpenNode sender = open(1, patient);
  const OpenNode receiver = open(2, narrow());
  constexpr size_t calls = 40;
  std::atomic<uint32_t> failures = 0;
  std::thread sending([&] {
    const std::string large(256 << 10, ' ');
    for (size_t i = 0; i < calls; ++i) {
      failures += sendNotes(2, {large}) != MESH_OK;
    }
  });
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(receiveNotes(receiver, calls).size(), calls);
  sending.join();
  EXPECT_EQ(failures, 0u);
}

TEST_P(Send, IncludesTheWaitForOtherThreadsInTheTimeout) {
  mesh_node_options options = impatient(GetParam());
  options.connect_timeout_ms = 500;
  options.send_timeout_ms = 500;
  const OpenNode node = open(1, options);
  std::atomic<uint32_t> absent = 0;
  std::vector<std::thread> threads;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) {
    threads.emplace_back([&] {
      const uint32_t result = sendNotes(2, {"a"});
      absent += result == MESH_NO_DESTINATION || result == MESH_QUEUE_FULL;
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(absent, 20u);
  // One after the other they would take ten seconds.
  EXPECT_LT(since(start), milliseconds(5000));
}

TEST_P(Send, EndsWhenItsNodeIsClosed) {
  mesh_node_options patient = narrow();
  patient.send_timeout_ms = 600000;
  patient.connect_timeout_ms = 600000;
  OpenNode sender = open(1, patient);
  const OpenNode receiver = open(2, narrow());
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  uint32_t full = MESH_OK;
  uint32_t absent = MESH_OK;
  std::thread filling([&, node = static_cast<mesh_node*>(sender)] {
    uint32_t accepted = 0;
    EXPECT_EQ(mesh_node_attach(node), MESH_OK);
    full = fill(2, accepted);
  });
  std::thread searching([&, node = static_cast<mesh_node*>(sender)] {
    EXPECT_EQ(mesh_node_attach(node), MESH_OK);
    absent = sendNotes(3, {"a"});
  });
  std::this_thread::sleep_for(milliseconds(300));
  EXPECT_EQ(sender.close(), MESH_OK);
  filling.join();
  searching.join();
  EXPECT_EQ(full, uint32_t{MESH_NOT_OPEN});
  EXPECT_EQ(absent, uint32_t{MESH_NOT_OPEN});
}

TEST_P(Send, RefusesBadDescriptors) {
  const OpenNode node = open(1, options());
  EXPECT_EQ(MESH_SendMsg(1, nullptr, 1), uint32_t{MESH_REFUSED});
  const mesh_msg_desc descriptors[] = {{0, noteId, 0}, {0, noteId, 1}};
  EXPECT_EQ(MESH_SendMsg(1, descriptors, 2), uint32_t{MESH_REFUSED});
  EXPECT_NE(std::string(mesh_node_last_error()).find("descriptor 1"), std::string::npos);
  EXPECT_EQ(statisticsOf(node).failed_refused, 2u);
  EXPECT_EQ(mesh_node_receive(node, 50, nullptr, nullptr), 0);
}

TEST_P(Send, RefusesCallsAboveTheLimits) {
  mesh_node_options limited = options();
  limited.payload_limit = 100;
  const OpenNode node = open(1, limited);
  EXPECT_EQ(sendNotes(1, {std::string(50, 'a'), std::string(51, 'b')}), MESH_REFUSED);
  EXPECT_EQ(sendNotes(1, {std::string(50, 'a'), std::string(50, 'b')}), MESH_OK);
  EXPECT_EQ(receiveNotes(node, 2).size(), 2u);
  EXPECT_EQ(sendNotes(1, std::vector<std::string>(13, "c")), MESH_REFUSED);
  EXPECT_EQ(sendNotes(1, std::vector<std::string>(12, "c")), MESH_OK);
  EXPECT_EQ(receiveNotes(node, 12).size(), 12u);
}

}  // namespace
}  // namespace platform_test
