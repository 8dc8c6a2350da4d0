// Nodes of one process, over both transports that need no configuration.
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "support/node_fixture.hpp"
#include "support/own_process.hpp"

namespace platform_test {
namespace {

class Node : public NodeFixture, public ::testing::WithParamInterface<mesh_transport> {
 protected:
  static mesh_node_options options() {
    mesh_node_options options = defaults();
    options.transport = GetParam();
    return options;
  }
};

INSTANTIATE_TEST_SUITE_P(Transports, Node, bothTransports, transportName);

TEST_P(Node, DeliversRecordsInOrder) {
  const OpenNode sender = open(1, options());
  const OpenNode receiver = open(2, options());
  ASSERT_EQ(sendNotes(2, {"one", "two", "three"}), MESH_OK) << mesh_node_last_error();
  const std::vector<Received> expected{
      {1, noteId, 0, "one", 0}, {1, noteId, 0, "two", 0}, {1, noteId, 0, "three", 0}};
  EXPECT_EQ(receiveNotes(receiver, 3), expected);
}

TEST_P(Node, PassesTheExtraWord) {
  const OpenNode node = open(1, options());
  ASSERT_EQ(sendNotes(1, {"a"}, 0xFEDCBA9876543210), MESH_OK);
  const std::vector<Received> expected{{1, noteId, 0xFEDCBA9876543210, "a", 0}};
  EXPECT_EQ(receiveNotes(node, 1), expected);
}

TEST_P(Node, DeliversSeveralTypesInOneCall) {
  const OpenNode node = open(1, options());
  const char text[] = "abc";
  const auto at = reinterpret_cast<uintptr_t>(text);
  const mesh_msg_desc descriptors[] = {{at, noteId, 1}, {at + 1, otherNoteId, 2}, {at, noteId, 3}};
  ASSERT_EQ(MESH_SendMsg(1, descriptors, 3), MESH_OK);
  const std::vector<Received> expected{
      {1, noteId, 0, "a", 0}, {1, otherNoteId, 0, "bc", 0}, {1, noteId, 0, "abc", 0}};
  EXPECT_EQ(receiveNotes(node, 3), expected);
}

TEST_P(Node, CopiesTablesBeforeReturning) {
  const OpenNode node = open(1, options());
  std::string text = "before";
  const mesh_msg_desc descriptor{reinterpret_cast<uintptr_t>(text.data()), noteId, 6};
  ASSERT_EQ(MESH_SendMsg(1, &descriptor, 1), MESH_OK);
  text = "after!";
  const std::vector<Received> notes = receiveNotes(node, 1);
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0].text, "before");
}

TEST_P(Node, HandsOutTablesUndecoded) {
  constexpr uint32_t unknownId = 0x7777;
  const OpenNode node = open(1, options());
  const char text[] = "abcdef";
  const auto at = reinterpret_cast<uintptr_t>(text);
  const mesh_msg_desc descriptors[] = {{at, noteId, 1}, {at + 1, unknownId, 3}, {at, noteId, 0}};
  ASSERT_EQ(MESH_SendToMsg(1, descriptors, 3, 77), MESH_OK);
  mesh_tables tables;
  ASSERT_EQ(mesh_node_receive_tables(node, 5000, &tables), 3) << mesh_node_last_error();
  ASSERT_EQ(tables.count, 3u);
  for (size_t index = 0; index < 3; ++index) {
    const mesh_received& received = tables.received[index];
    EXPECT_EQ(received.msg_id, descriptors[index].msg_id);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(received.table), received.table_length),
              std::string(reinterpret_cast<const char*>(descriptors[index].data),
                          descriptors[index].length));
    EXPECT_EQ(received.record, nullptr);
    EXPECT_EQ(received.record_size, 0u);
    EXPECT_EQ(received.source, 1u);
    EXPECT_EQ(received.extra, 77u);
    EXPECT_EQ(received.sequence, 1u);
  }
  mesh_node_free_tables(&tables);
  EXPECT_EQ(tables.count, 0u);
  EXPECT_EQ(notesOut(), 0);
  const mesh_node_statistics counted = statisticsOf(node);
  EXPECT_EQ(counted.received_records, 3u);
  EXPECT_EQ(counted.unknown_identifiers, 0u);
}

TEST_P(Node, HandsOutNoTablesAfterATimeoutOrWrongUse) {
  const OpenNode node = open(1, options());
  mesh_tables tables{.received = nullptr, .count = 9, .owner = nullptr};
  EXPECT_EQ(mesh_node_receive_tables(node, 0, &tables), 0);
  EXPECT_EQ(tables.count, 0u);
  mesh_node_free_tables(&tables);
  EXPECT_EQ(mesh_node_receive_tables(node, 0, nullptr), -int64_t{MESH_BAD_ARGUMENT});
  EXPECT_EQ(mesh_node_receive_tables(nullptr, 0, &tables), -int64_t{MESH_NOT_OPEN});
  mesh_node_free_tables(nullptr);
}

TEST_P(Node, AcceptsACallWithoutTables) {
  const OpenNode node = open(1, options());
  ASSERT_EQ(MESH_SendMsg(1, nullptr, 0), MESH_OK);
  EXPECT_EQ(receiveUntil(node, &mesh_node_statistics::received_calls, 1), 1u);
  EXPECT_EQ(statisticsOf(node).received_records, 0u);
  EXPECT_EQ(statisticsOf(node).malformed, 0u);
}

TEST_P(Node, DeliversEmptyTables) {
  const OpenNode node = open(1, options());
  const mesh_msg_desc descriptor{0, noteId, 0};
  ASSERT_EQ(MESH_SendMsg(1, &descriptor, 1), MESH_OK);
  const std::vector<Received> expected{{1, noteId, 0, "", 0}};
  EXPECT_EQ(receiveNotes(node, 1), expected);
}

TEST_P(Node, ClearsTheRecordAreaBetweenRecords) {
  const OpenNode node = open(1, options());
  // The decoder leaves the second record untouched. With old bytes in it, the release would free
  // the first copy again.
  ASSERT_EQ(sendNotes(1, {"full", "", "again"}), MESH_OK);
  const std::vector<Received> expected{
      {1, noteId, 0, "full", 0}, {1, noteId, 0, "", 0}, {1, noteId, 0, "again", 0}};
  EXPECT_EQ(receiveNotes(node, 3), expected);
}

TEST_P(Node, DeliversALargeCall) {
  const OpenNode node = open(1, options());
  const std::string large(3 << 20, 'x');
  ASSERT_EQ(sendNotes(1, {large, "end"}), MESH_OK);
  const std::vector<Received> notes = receiveNotes(node, 2);
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_TRUE(notes[0].text == large);
  EXPECT_EQ(notes[1].text, "end");
}

// More calls wait than there is memory set aside for messages, and of more lengths than fit into
// it.
TEST_P(Node, KeepsTheBytesOfCallsThatWait) {
  constexpr uint32_t calls = 2000;
  const auto bytesOf = [](uint32_t sender, uint32_t call) {
    return std::string(call % 1100, static_cast<char>('a' + (call + 13 * sender) % 26));
  };
  const OpenNode receiver = open(3, options());
  const OpenNode senders[] = {open(1, options()), open(2, options())};
  const auto sendAll = [&](uint32_t address) {
    for (uint32_t call = 0; call < calls; ++call) {
      const std::string bytes = bytesOf(address, call);
      const mesh_msg_desc table{reinterpret_cast<uintptr_t>(bytes.data()), noteId,
                                static_cast<uint32_t>(bytes.size())};
      EXPECT_EQ(mesh_node_send(senders[address - 1], 3, &table, 1, 0, -1), MESH_OK)
          << mesh_node_last_error();
    }
  };
  std::thread first([&] { sendAll(1); });
  std::thread second([&] { sendAll(2); });
  const Deadline deadline;
  while (statisticsOf(receiver).received_calls < 1500 && !deadline.passed()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  uint32_t received[] = {0, 0, 0};
  while (received[1] + received[2] < 2 * calls && !deadline.passed()) {
    mesh_tables tables;
    ASSERT_GE(mesh_node_receive_tables(receiver, 5000, &tables), 0) << mesh_node_last_error();
    for (size_t i = 0; i < tables.count; ++i) {
      const mesh_received& each = tables.received[i];
      EXPECT_EQ(std::string(reinterpret_cast<const char*>(each.table), each.table_length),
                bytesOf(each.source, received[each.source]++));
    }
    mesh_node_free_tables(&tables);
  }
  EXPECT_EQ(received[1], calls);
  EXPECT_EQ(received[2], calls);
  first.join();
  second.join();
}

TEST_P(Node, DecodesWithoutAHandler) {
  const OpenNode node = open(1, options());
  ASSERT_EQ(sendNotes(1, {"a", "b"}), MESH_OK);
  EXPECT_EQ(mesh_node_receive(node, 10000, nullptr, nullptr), 2);
}

TEST_P(Node, ReturnsZeroAtTimeout) {
  const OpenNode node = open(1, options());
  EXPECT_EQ(mesh_node_receive(node, 20, nullptr, nullptr), 0);
  EXPECT_EQ(mesh_node_receive(node, 0, nullptr, nullptr), 0);
}

TEST_P(Node, WaitsWithoutTheProcessor) {
  const OpenNode node = open(1, options());
  const auto before = processorTime();
  EXPECT_EQ(mesh_node_receive(node, 500, nullptr, nullptr), 0);
  EXPECT_LT(processorTime() - before, std::chrono::milliseconds(50));
}

TEST_P(Node, ReopensAtOnceWithoutOldCalls) {
  OpenNode first = open(2, options());
  const OpenNode sender = open(1, options());
  ASSERT_EQ(sendNotes(2, {"old"}), MESH_OK);
  ASSERT_EQ(receiveNotes(first, 1).size(), 1u);
  for (int round = 0; round < 5; ++round) {
    ASSERT_EQ(first.close(), MESH_OK);
    first = open(2, options());
    // A call sent just before the old connection ends may return MESH_OK and be lost.
    std::vector<Received> notes;
    const Deadline deadline;
    while (notes.empty() && !deadline.passed()) {
      ASSERT_EQ(sendNotes(2, {"new"}), MESH_OK) << mesh_node_last_error();
      ASSERT_GE(mesh_node_receive(first, 200, &collect, &notes), 0);
    }
    ASSERT_FALSE(notes.empty());
    EXPECT_EQ(notes[0].text, "new");
  }
}

TEST_P(Node, CountsSentAndReceivedCalls) {
  const OpenNode sender = open(1, options());
  const OpenNode receiver = open(2, options());
  ASSERT_EQ(sendNotes(2, {"12", "345"}), MESH_OK);
  ASSERT_EQ(sendNotes(2, {"6789"}), MESH_OK);
  ASSERT_EQ(receiveNotes(receiver, 3).size(), 3u);
  const mesh_node_statistics sent = statisticsOf(sender);
  EXPECT_EQ(sent.sent_calls, 2u);
  EXPECT_EQ(sent.sent_records, 3u);
  EXPECT_EQ(sent.sent_bytes, 9u);
  EXPECT_EQ(sent.received_calls, 0u);
  const mesh_node_statistics received = statisticsOf(receiver);
  EXPECT_EQ(received.received_calls, 2u);
  EXPECT_EQ(received.received_records, 3u);
  EXPECT_EQ(received.received_bytes, 9u);
  EXPECT_EQ(received.lost_calls, 0u);
  EXPECT_EQ(received.missed_before_first, 0u);
  EXPECT_EQ(received.sent_calls, 0u);
}

TEST_P(Node, KeepsEachThreadsOrder) {
  constexpr uint32_t threads = 4;
  constexpr uint32_t calls = 200;
  const OpenNode sender = open(1, options());
  const OpenNode receiver = open(2, options());
  std::atomic<uint32_t> failures = 0;
  std::vector<std::thread> senders;
  for (uint32_t thread = 0; thread < threads; ++thread) {
    senders.emplace_back([&failures, thread] {
      for (uint32_t call = 0; call < calls; ++call) {
        failures += sendNotes(2, {std::to_string(call)}, thread + 1) != MESH_OK;
      }
    });
  }
  const std::vector<Received> notes = receiveNotes(receiver, threads * calls);
  for (std::thread& thread : senders) {
    thread.join();
  }
  EXPECT_EQ(failures, 0u);
  ASSERT_EQ(notes.size(), threads * calls);
  std::vector<uint32_t> next(threads + 1, 0);
  for (const Received& note : notes) {
    EXPECT_EQ(note.text, std::to_string(next[note.extra]++));
  }
  EXPECT_EQ(statisticsOf(receiver).lost_calls, 0u);
  EXPECT_EQ(statisticsOf(receiver).duplicate_calls, 0u);
}

TEST_P(Node, DeliversSentCallsOnClose) {
  const OpenNode receiver = open(2, options());
  OpenNode sender = open(1, options());
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(sendNotes(2, {std::to_string(i)}), MESH_OK);
  }
  ASSERT_EQ(sender.close(), MESH_OK);
  EXPECT_EQ(receiveNotes(receiver, 20).size(), 20u);
  EXPECT_EQ(statisticsOf(receiver).lost_calls, 0u);
}

TEST_P(Node, LetsAHandlerSend) {
  const OpenNode first = open(1, options());
  const OpenNode second = open(2, options());
  ASSERT_EQ(sendNotes(2, {"ping"}), MESH_OK);
  const auto answer = [](const mesh_received* received, void* user) {
    *static_cast<uint32_t*>(user) = sendNotes(received->source, {"pong"});
  };
  uint32_t result = MESH_NOT_OPEN;
  ASSERT_EQ(mesh_node_receive(second, 10000, answer, &result), 1);
  EXPECT_EQ(result, uint32_t{MESH_OK});
  const std::vector<Received> expected{{1, noteId, 0, "pong", 0}};
  EXPECT_EQ(receiveNotes(first, 1), expected);
}

}  // namespace
}  // namespace platform_test
