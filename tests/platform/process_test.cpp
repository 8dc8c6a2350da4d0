// Nodes of several processes.
#include <chrono>
#include <cstdio>
#include <thread>

#include "support/child_process.hpp"
#include "support/node_fixture.hpp"

namespace platform_test {
namespace {

class Processes : public NodeFixture {};

TEST_F(Processes, SendToEachOther) {
  const OpenNode node = open(1);
  ChildProcess receiver(peer({"receive", "2", "3"}));
  ASSERT_EQ(receiver.readLine(), "ready");
  ASSERT_EQ(sendNotes(2, {"a", "b"}), MESH_OK);
  ASSERT_EQ(sendNotes(2, {"c"}), MESH_OK);
  EXPECT_EQ(receiver.readLine(), "notes 3 lost 0 missed 0");
  EXPECT_EQ(receiver.wait(), 0);
}

TEST_F(Processes, DeliverEverythingBeforeExit) {
  const OpenNode node = open(1);
  ChildProcess sender(peer({"send", "2", "1", "50", "20"}));
  EXPECT_EQ(receiveNotes(node, 1000).size(), 1000u);
  EXPECT_EQ(sender.wait(), 0);
  EXPECT_EQ(statisticsOf(node).received_calls, 50u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 0u);
}

TEST_F(Processes, StartInAnyOrder) {
  ChildProcess sender(peer({"send", "2", "1", "1", "1"}));
  ASSERT_EQ(sender.readLine(), "ready");
  const OpenNode node = open(1);
  EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
  EXPECT_EQ(sender.wait(), 0);
}

TEST_F(Processes, CannotShareAnAddress) {
  ChildProcess holder(peer({"hold", "7", "0"}));
  ASSERT_EQ(holder.readLine(), "ready");
  EXPECT_EQ(resultOfOpening(7, defaults()), MESH_ADDRESS_IN_USE);
  ChildProcess rival(peer({"receive", "7", "1"}));
  EXPECT_NE(rival.readLine().find("in use by a live node"), std::string::npos);
  EXPECT_EQ(rival.wait(), MESH_ADDRESS_IN_USE);
}

TEST_F(Processes, FreeTheirAddressOnCrash) {
  ChildProcess holder(peer({"hold", "7", "0"}));
  ASSERT_EQ(holder.readLine(), "ready");
  holder.kill();
  EXPECT_EQ(holder.wait(), -SIGKILL);
  const OpenNode successor = open(7);
  ASSERT_EQ(sendNotes(7, {"a"}), MESH_OK);
  EXPECT_EQ(receiveNotes(successor, 1).size(), 1u);
}

TEST_F(Processes, FreeTheirAddressOnExit) {
  for (int round = 0; round < 3; ++round) {
    const OpenNode node = open(1);
    ChildProcess receiver(peer({"receive", "7", "1"}));
    ASSERT_EQ(receiver.readLine(), "ready");
    ASSERT_EQ(sendNotes(7, {"a"}), MESH_OK);
    EXPECT_EQ(receiver.wait(), 0);
  }
}

TEST_F(Processes, CountCallsLostWithAKilledPredecessor) {
  const OpenNode sender = open(1, impatient());
  ChildProcess killed(peer({"hold", "2", "10"}));
  ASSERT_EQ(killed.readLine(), "ready");
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(sendNotes(2, {"never read"}), MESH_OK);
  }
  ASSERT_EQ(killed.readLine(), "waiting");
  killed.kill();
  killed.wait();
  // Until the sender notices the end of the connection, calls wait for a successor.
  uint32_t result = MESH_OK;
  const Deadline deadline;
  while (result == MESH_OK && !deadline.passed()) {
    result = sendNotes(2, {"no receiver"});
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(result, uint32_t{MESH_NO_DESTINATION});

  ChildProcess restarted(peer({"count", "2"}));
  ASSERT_EQ(restarted.readLine(), "ready");
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
  ASSERT_EQ(sendNotes(2, {"b"}), MESH_OK);
  restarted.closeInput();
  uint64_t received = 0;
  uint64_t missed = 0;
  const std::string told = restarted.readLine();
  ASSERT_EQ(
      std::sscanf(told.c_str(), "calls %lu lost 0 missed %lu malformed 0", &received, &missed), 2)
      << told;
  EXPECT_GE(missed, 10u);
  EXPECT_EQ(received + missed, statisticsOf(sender).sent_calls);
  EXPECT_EQ(statisticsOf(sender).undelivered_calls, missed);
  EXPECT_EQ(restarted.wait(), 0);
}

TEST_F(Processes, AreNewSendersAfterARestart) {
  const OpenNode node = open(1);
  for (size_t round = 1; round <= 3; ++round) {
    ChildProcess sender(peer({"send", "2", "1", "4", "1"}));
    EXPECT_EQ(receiveNotes(node, 4).size(), 4u);
    EXPECT_EQ(sender.wait(), 0);
  }
  EXPECT_EQ(statisticsOf(node).received_calls, 12u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 0u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
}

}  // namespace
}  // namespace platform_test
