// What a node tells of its peers: changes, counts, gaps, water marks, and when to receive.
#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "support/child_process.hpp"
#include "support/free_port.hpp"
#include "support/node_fixture.hpp"
#include "support/raw_sender.hpp"

namespace platform_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The events of a node.
class Events {
 public:
  void hear(mesh_node_options& options) {
    options.peer_user = this;
    options.peer = [](const mesh_peer_event* event, void* user) {
      auto* const events = static_cast<Events*>(user);
      const std::lock_guard lock(events->mutex_);
      events->events_.push_back(*event);
    };
  }

  // Waits for it.
  bool has(mesh_peer_change change, uint32_t address, uint64_t from = 0, uint64_t to = 0) {
    const Deadline deadline;
    while (!had(change, address, from, to) && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    return had(change, address, from, to);
  }

  bool had(mesh_peer_change change, uint32_t address, uint64_t from = 0, uint64_t to = 0) {
    const std::lock_guard lock(mutex_);
    return std::any_of(events_.begin(), events_.end(), [&](const mesh_peer_event& event) {
      return event.change == static_cast<uint32_t>(change) && event.address == address &&
             event.from == from && event.to == to;
    });
  }

  // Those until now.
  std::vector<uint32_t> changes() {
    const std::lock_guard lock(mutex_);
    std::vector<uint32_t> changes;
    for (const mesh_peer_event& event : events_) {
      changes.push_back(event.change);
    }
    return changes;
  }

 private:
  std::mutex mutex_;
  std::vector<mesh_peer_event> events_;
};

class Peers : public NodeFixture {
 protected:
  static mesh_peer_statistics peerOf(mesh_node* node, uint32_t address) {
    mesh_peer_statistics peers[16];
    uint32_t count = 0;
    EXPECT_EQ(mesh_node_peers(node, peers, std::size(peers), &count), MESH_OK);
    for (uint32_t i = 0; i < std::min<uint32_t>(count, std::size(peers)); ++i) {
      if (peers[i].address == address) {
        return peers[i];
      }
    }
    ADD_FAILURE() << "no such peer";
    return {};
  }

  static void expectConfirmed(mesh_node* node, uint64_t unconfirmed) {
    const Deadline deadline;
    while (statisticsOf(node).unconfirmed_calls != unconfirmed && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(statisticsOf(node).unconfirmed_calls, unconfirmed);
  }
};

TEST_F(Peers, AreCountedApart) {
  const OpenNode one = open(1);
  const OpenNode two = open(2);
  const OpenNode three = open(3);
  ASSERT_EQ(mesh_node_attach(one), MESH_OK);
  for (int call = 0; call < 5; ++call) {
    ASSERT_EQ(sendNotes(2, {"abc", "d"}), MESH_OK);
  }
  ASSERT_EQ(sendNotes(3, {"e"}), MESH_OK);
  ASSERT_EQ(receiveNotes(two, 4).size(), 4u);
  expectConfirmed(one, 4);

  const mesh_peer_statistics of = peerOf(one, 2);
  EXPECT_EQ(of.connected, 1u);
  EXPECT_EQ(of.sent_calls, 5u);
  EXPECT_EQ(of.sent_bytes, 20u);
  EXPECT_EQ(of.unconfirmed_calls, 3u);
  EXPECT_GE(of.most_unconfirmed_calls, 3u);
  EXPECT_EQ(of.received_calls, 0u);
  EXPECT_LT(of.last_heard_ms, 10'000u);
  EXPECT_EQ(peerOf(one, 3).sent_calls, 1u);

  const mesh_peer_statistics from = peerOf(two, 1);
  EXPECT_EQ(from.received_calls, 5u);
  EXPECT_EQ(from.received_bytes, 20u);
  EXPECT_EQ(from.waiting_calls, 3u);
  EXPECT_EQ(from.sent_calls, 0u);
  EXPECT_NE(from.incarnation, 0u);
  EXPECT_LT(from.last_heard_ms, 10'000u);
  uint32_t count = 0;
  EXPECT_EQ(mesh_node_peers(one, nullptr, 0, &count), MESH_OK);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(mesh_node_peers(one, nullptr, 1, &count), MESH_BAD_ARGUMENT);
  EXPECT_EQ(receiveNotes(two, 6).size(), 6u);
  EXPECT_EQ(receiveNotes(three, 1).size(), 1u);
}

TEST_F(Peers, ComeGoAndRestart) {
  Events ofReceiver;
  mesh_node_options options = defaults();
  ofReceiver.hear(options);
  const OpenNode receiver = open(1, options);
  for (int round = 0; round < 2; ++round) {
    ChildProcess sender(peer({"send", "2", "1", "3", "1"}));
    EXPECT_EQ(receiveNotes(receiver, 3).size(), 3u);
    EXPECT_EQ(sender.wait(), MESH_OK);
  }
  EXPECT_TRUE(ofReceiver.has(MESH_PEER_UP, 2));
  EXPECT_TRUE(ofReceiver.has(MESH_PEER_DOWN, 2));

  Events ofSender;
  options = defaults();
  ofSender.hear(options);
  OpenNode sender = open(3, options);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  for (int round = 0; round < 2; ++round) {
    const OpenNode other = open(4);
    // A call to the first node may be on its way when that ends.
    const Deadline deadline;
    while (statisticsOf(other).received_calls == 0 && !deadline.passed()) {
      static_cast<void>(sendNotes(4, {"a"}));
      ASSERT_GE(mesh_node_receive(other, 20, nullptr, nullptr), 0);
    }
  }
  EXPECT_TRUE(ofSender.has(MESH_PEER_UP, 4));
  EXPECT_TRUE(ofSender.has(MESH_PEER_DOWN, 4));
  EXPECT_TRUE(ofSender.has(MESH_PEER_RESTARTED, 4));
  static_cast<void>(sender.close());
  ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
}

TEST_F(Peers, GoOnceWhenTheyCloseRightAfterARestart) {
  mesh_node_options options = defaults();
  options.transport = MESH_TRANSPORT_INPROC;
  OpenNode receiver = open(1, options);
  mesh_node* sender = nullptr;
  ASSERT_EQ(mesh_node_open(2, &options, &sender), MESH_OK);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  for (int call = 0; call < 10; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  }
  ASSERT_EQ(receiveNotes(receiver, 8).size(), 8u);
  expectConfirmed(sender, 2);
  ASSERT_EQ(receiver.close(), MESH_OK);
  Events events;
  events.hear(options);
  receiver = open(1, options);
  mesh_node_statistics last;
  EXPECT_EQ(mesh_node_close_counted(sender, &last), MESH_UNDELIVERED);
  EXPECT_EQ(last.undelivered_calls, 2u);
  EXPECT_TRUE(events.has(MESH_PEER_DOWN, 2));
  const mesh_peer_statistics from = peerOf(receiver, 2);
  EXPECT_EQ(from.missed_before_first, 2u);
  EXPECT_EQ(statisticsOf(receiver).missed_before_first, 2u);
  // The last events are told at the end.
  ASSERT_EQ(receiver.close(), MESH_OK);
  EXPECT_EQ(events.changes(), (std::vector<uint32_t>{MESH_PEER_UP, MESH_PEER_GAP, MESH_PEER_DOWN}));
}

TEST_F(Peers, TellOfGaps) {
  Events events;
  mesh_node_options options = defaults();
  events.hear(options);
  const OpenNode node = open(1, options);
  RawSender sender("ipc://" + directory() + "/1");
  RawHeader header;
  header.destination = 1;
  for (const uint64_t sequence : {1u, 2u, 5u, 6u}) {
    header.sequence = sequence;
    sender.sendNote(header, "a");
  }
  struct Seen {
    std::vector<uint64_t> sequences;
    std::vector<uint64_t> afterGap;
  } seen;
  const auto note = [](const mesh_received* received, void* user) {
    auto* const all = static_cast<Seen*>(user);
    all->sequences.push_back(received->sequence);
    if (received->after_gap != 0) {
      all->afterGap.push_back(received->sequence);
    }
    EXPECT_EQ(received->incarnation, RawHeader{}.incarnation);
  };
  const Deadline deadline;
  while (seen.sequences.size() < 4 && !deadline.passed()) {
    ASSERT_GE(mesh_node_receive(node, 1000, note, &seen), 0);
  }
  EXPECT_EQ(seen.sequences, (std::vector<uint64_t>{1, 2, 5, 6}));
  EXPECT_EQ(seen.afterGap, (std::vector<uint64_t>{5}));
  EXPECT_TRUE(events.has(MESH_PEER_GAP, 99, 3, 4));
}

TEST_F(Peers, AreRestartedWhenTheirPredecessorHasNotClosed) {
  Events events;
  mesh_node_options options = defaults();
  events.hear(options);
  const OpenNode node = open(1, options);
  RawHeader header;
  header.destination = 1;
  for (uint64_t incarnation = 1; incarnation <= 2; ++incarnation) {
    header.incarnation = incarnation;
    RawSender("ipc://" + directory() + "/1").sendNote(header, "a");
    EXPECT_EQ(mesh_node_receive(node, 5000, nullptr, nullptr), 1);
  }
  EXPECT_TRUE(events.has(MESH_PEER_RESTARTED, 99));
  EXPECT_EQ(events.changes(), (std::vector<uint32_t>{MESH_PEER_UP, MESH_PEER_RESTARTED}));
}

TEST_F(Peers, TellOfNoGapThatIsTakenBack) {
  const OpenNode node = open(1);
  RawSender sender("ipc://" + directory() + "/1");
  RawHeader header;
  header.destination = 1;
  header.sequence = 10;
  header.confirmed = 8;
  RawHeader sync = header;
  sync.kind = 1;
  sender.send({sync.bytes()});
  const std::string state = sender.receive();
  EXPECT_EQ(peerOf(node, header.source).missed_before_first, 2u);
  // The predecessor had confirmed the two as well.
  constexpr size_t incarnationAt = 16;
  std::memcpy(&sync.count, state.data() + incarnationAt, sizeof sync.count);
  sender.send({sync.bytes()});
  header.sequence = 11;
  sender.sendNote(header, "a");
  const auto note = [](const mesh_received* received, void*) {
    EXPECT_EQ(received->sequence, 11u);
    EXPECT_EQ(received->after_gap, 0u);
  };
  EXPECT_EQ(mesh_node_receive(node, 5000, note, nullptr), 1);
  EXPECT_EQ(peerOf(node, header.source).missed_before_first, 0u);
}

// Of a State of node 1 for node 2.
RawHeader stateHeader(uint64_t sequence, uint64_t confirmed) {
  RawHeader state;
  state.kind = 2;
  state.source = 1;
  state.destination = 2;
  state.sequence = sequence;
  state.confirmed = confirmed;
  return state;
}

std::string stateBody(uint64_t first, uint64_t missingAhead, uint64_t missedBefore) {
  return littleEndian(first, 8) + littleEndian(missingAhead, 8) + littleEndian(missedBefore, 8);
}

// A receiver that has forgotten a sender between two connections.
TEST_F(Peers, CannotTakeLossesBack) {
  RawSender receiver(RawSender::Listening{}, "ipc://" + directory() + "/1");
  const OpenNode node = open(2);
  for (int call = 1; call <= 3; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK) << mesh_node_last_error();
  }
  RawHeader state = stateHeader(3, 2);
  state.extra = 1;
  receiver.receive();
  receiver.send({state.bytes() + stateBody(1, 0, 0)});
  expectConfirmed(node, 1);
  EXPECT_EQ(statisticsOf(node).undelivered_calls, 1u);
  state.confirmed = 3;
  state.extra = 0;
  receiver.send({state.bytes() + stateBody(4, 0, 1)});
  expectConfirmed(node, 0);
  EXPECT_EQ(statisticsOf(node).undelivered_calls, 2u);
}

TEST_F(Peers, HearWhatTheirPredecessorsConfirmedFromASenderThatCloses) {
  RawSender receiver(RawSender::Listening{}, "ipc://" + directory() + "/1");
  OpenNode node = open(2);
  RawHeader state = stateHeader(2, 1);
  for (int call = 1; call <= 2; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK) << mesh_node_last_error();
    receiver.receive();
  }
  receiver.send({state.bytes() + stateBody(1, 0, 0)});
  expectConfirmed(node, 1);
  const auto start = steady_clock::now();
  std::jthread closing([&] { EXPECT_EQ(node.close(), MESH_OK); });
  receiver.receive();
  state.flags = 1;
  state.incarnation = 7;
  state.confirmed = 2;
  // The second time it answers what was on its way. It is a successor that got the second call.
  for (int time = 0; time < 2; ++time) {
    receiver.send({state.bytes() + stateBody(2, 0, 1)});
    const std::string sync = receiver.receive();
    EXPECT_EQ(sync.substr(40, 12), littleEndian(0, 8) + littleEndian(7, 4));
  }
  receiver.send({state.bytes() + stateBody(2, 0, 0)});
  closing.join();
  EXPECT_LT(since(start), milliseconds(1000));
}

TEST_F(Peers, CannotDenyMoreCallsThanThereWere) {
  RawSender receiver(RawSender::Listening{}, "ipc://" + directory() + "/1");
  mesh_node* node = nullptr;
  ASSERT_EQ(mesh_node_open(2, nullptr, &node), MESH_OK);
  RawHeader state = stateHeader(UINT64_MAX, UINT64_MAX);
  state.extra = UINT64_MAX;
  state.count = 100;
  state.payloadBytes = 1000;
  for (uint64_t call = 1; call <= 5; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK) << mesh_node_last_error();
    receiver.receive();
    state.incarnation = call;
    receiver.send({state.bytes() + stateBody(call, UINT64_MAX, UINT64_MAX)});
    expectConfirmed(node, 0);
    EXPECT_EQ(statisticsOf(node).undelivered_calls, call);
  }
  mesh_node_statistics last;
  EXPECT_EQ(mesh_node_close_counted(node, &last), MESH_OK);
  EXPECT_EQ(last.undelivered_calls, 5u);
}

TEST_F(Peers, HaveHighAndLowWater) {
  Events events;
  mesh_node_options options = defaults();
  options.send_queue_calls = 8;
  events.hear(options);
  const OpenNode sender = open(1, options);
  const OpenNode receiver = open(2);
  for (int call = 0; call < 5; ++call) {
    ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  }
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_FALSE(events.had(MESH_PEER_HIGH_WATER, 2));
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  EXPECT_TRUE(events.has(MESH_PEER_HIGH_WATER, 2)) << "at three quarters";
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  const mesh_msg_desc note{.data = reinterpret_cast<uintptr_t>("n"), .msg_id = noteId, .length = 1};
  const auto start = steady_clock::now();
  EXPECT_EQ(mesh_node_send(sender, 2, &note, 1, 0, 0), MESH_QUEUE_FULL);
  EXPECT_LT(steady_clock::now() - start, milliseconds(1000)) << "0 does not wait";
  EXPECT_EQ(mesh_node_send(sender, 2, &note, 1, 0, 200), MESH_QUEUE_FULL);
  EXPECT_GE(steady_clock::now() - start, milliseconds(200)) << "its own deadline";
  EXPECT_EQ(receiveNotes(receiver, 6).size(), 6u);
  // Nobody sends: the library hears the receiver on its own.
  EXPECT_TRUE(events.has(MESH_PEER_LOW_WATER, 2)) << "at one quarter";
  EXPECT_EQ(mesh_node_send(sender, 2, &note, 1, 0, 0), MESH_OK);
  EXPECT_EQ(receiveNotes(receiver, 3).size(), 3u);
}

// A node with a hook that sends, and what its sends returned.
struct Answering {
  void hear(mesh_node_options& options, mesh_peer_change to) {
    change = to;
    options.peer_user = this;
    options.peer = [](const mesh_peer_event* event, void* user) {
      auto* const self = static_cast<Answering*>(user);
      if (event->change == static_cast<uint32_t>(self->change) && self->answers == 0) {
        const mesh_msg_desc note{
            .data = reinterpret_cast<uintptr_t>("hello"), .msg_id = noteId, .length = 5};
        const auto start = steady_clock::now();
        self->result = mesh_node_send(self->node, event->address, &note, 1, 0, -1);
        self->took = since(start);
        ++self->answers;
      }
    };
  }

  mesh_peer_change change = MESH_PEER_UP;
  std::atomic<mesh_node*> node = nullptr;
  std::atomic<uint32_t> result = MESH_OK;
  std::atomic<milliseconds> took = milliseconds(0);
  std::atomic<int> answers = 0;
};

TEST_F(Peers, AreAnsweredByAHook) {
  for (const mesh_transport transport : {MESH_TRANSPORT_IPC, MESH_TRANSPORT_INPROC}) {
    Answering answering;
    mesh_node_options options = defaults();
    options.transport = transport;
    OpenNode caller = open(2, options);
    answering.hear(options, MESH_PEER_UP);
    OpenNode node = open(1, options);
    answering.node = node;
    ASSERT_EQ(mesh_node_attach(caller), MESH_OK);
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
    // Nobody receives on the node: the library's thread takes the call and runs the hook.
    const std::vector<Received> notes = receiveNotes(caller, 1);
    ASSERT_EQ(notes.size(), 1u);
    EXPECT_EQ(notes[0].text, "hello");
    EXPECT_EQ(notes[0].source, 1u);
    EXPECT_EQ(answering.result, MESH_OK);
    EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
    expectConfirmed(caller, 0);
    expectConfirmed(node, 0);
    EXPECT_EQ(node.close(), MESH_OK);
    EXPECT_EQ(caller.close(), MESH_OK);
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }
}

// The receiver is one of the process, and the thread that runs the hook answers for it.
TEST_F(Peers, AreNotWaitedForByAHook) {
  Answering answering;
  mesh_node_options options = defaults();
  options.send_queue_calls = 4;
  // High water is reached with the third call; the hook finds the queue full after the fourth.
  answering.hear(options, MESH_PEER_HIGH_WATER);
  const OpenNode sender = open(1, options);
  answering.node = sender;
  const OpenNode receiver = open(2);
  for (int call = 0; call < 4; ++call) {
    ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  }
  const Deadline deadline;
  while (answering.answers == 0 && !deadline.passed()) {
    std::this_thread::sleep_for(milliseconds(5));
  }
  EXPECT_GT(answering.answers, 0);
  EXPECT_EQ(answering.result, MESH_QUEUE_FULL);
  EXPECT_LT(answering.took.load(), milliseconds(options.send_timeout_ms / 2));
  EXPECT_EQ(receiveNotes(receiver, 4).size(), 4u);
  expectConfirmed(sender, 0);
}

// The library's thread is in the hook when the node closes, and another change is to be told.
TEST_F(Peers, AreToldOneAfterTheOtherWhileTheNodeCloses) {
  struct Telling {
    std::atomic<int> inside = 0;
    std::atomic<bool> together = false;
    std::atomic<bool> closing = false;
    std::vector<uint32_t> told{};
  } telling;
  mesh_node_options options = defaults();
  options.peer_user = &telling;
  options.peer = [](const mesh_peer_event* event, void* user) {
    auto& all = *static_cast<Telling*>(user);
    if (++all.inside > 1) {
      all.together = true;
      return;
    }
    const Deadline deadline;
    while (!all.closing && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(1));
    }
    std::this_thread::sleep_for(milliseconds(200));
    all.told.push_back(event->address);
    --all.inside;
  };
  OpenNode node = open(1, options);
  const OpenNode two = open(2);
  const OpenNode three = open(3);
  const mesh_msg_desc note{.data = reinterpret_cast<uintptr_t>("n"), .msg_id = noteId, .length = 1};
  ASSERT_EQ(mesh_node_send(two, 1, &note, 1, 0, -1), MESH_OK);
  const Deadline deadline;
  while (telling.inside == 0 && !deadline.passed()) {
    std::this_thread::sleep_for(milliseconds(1));
  }
  ASSERT_EQ(mesh_node_send(three, 1, &note, 1, 0, -1), MESH_OK);
  ASSERT_EQ(receiveNotes(node, 2).size(), 2u);
  telling.closing = true;
  EXPECT_EQ(node.close(), MESH_OK);
  EXPECT_FALSE(telling.together);
  EXPECT_EQ(telling.told, (std::vector<uint32_t>{2, 3}));
}

TEST_F(Peers, AreDownWhenTheyDoNotAnswerHeartbeats) {
  for (const bool tcp : {false, true}) {
    const std::string book =
        tcp ? "1 " + tcpEndpoint(freePort()) + "\n2 " + tcpEndpoint(freePort()) + "\n" : "";
    const std::string path = directory() + "/book";
    FILE* file = std::fopen(path.c_str(), "w");
    std::fputs(book.c_str(), file);
    std::fclose(file);
    setenv("ZARNIMESH_ADDRESS_BOOK", path.c_str(), 1);
    Events events;
    mesh_node_options options = defaults();
    options.heartbeat_ms = 100;
    events.hear(options);
    OpenNode sender = open(1, options);
    ChildProcess receiver(peer({"count", "2"}));
    ASSERT_EQ(receiver.readLine(), "ready");
    ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
    expectConfirmed(sender, 0);
    receiver.stop();
    EXPECT_TRUE(events.has(MESH_PEER_DOWN, 2)) << (tcp ? "tcp" : "ipc");
    EXPECT_EQ(sendNotes(2, {"b"}), MESH_NO_DESTINATION);
    receiver.resume();
    const Deadline deadline;
    while (peerOf(sender, 2).connected == 0 && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(sendNotes(2, {"c"}), MESH_OK) << mesh_node_last_error();
    expectConfirmed(sender, 0);
    receiver.closeInput();
    EXPECT_EQ(receiver.readLine(), "calls 2 lost 0 missed 0 malformed 0");
    EXPECT_EQ(receiver.wait(), MESH_OK);
    ASSERT_EQ(sender.close(), MESH_OK);
  }
}

TEST_F(Peers, StayUpIfTheyNeverGotACall) {
  Events events;
  mesh_node_options options = defaults();
  options.heartbeat_ms = 300;
  events.hear(options);
  const OpenNode sender = open(1, options);
  const mesh_msg_desc empty{};
  EXPECT_EQ(mesh_node_send(sender, 2, &empty, 1, 0, 0), MESH_NO_DESTINATION);
  const OpenNode receiver = open(2);
  EXPECT_TRUE(events.has(MESH_PEER_UP, 2));
  std::this_thread::sleep_for(milliseconds(1500));
  EXPECT_FALSE(events.had(MESH_PEER_DOWN, 2));
}

TEST_F(Peers, MayEndWhileANodeWithQuickHeartbeatsCloses) {
  mesh_node_options options = defaults();
  options.heartbeat_ms = 1;
  for (int round = 0; round < 20; ++round) {
    OpenNode receiver = open(2, options);
    std::vector<std::unique_ptr<ChildProcess>> senders;
    for (const char* address : {"3", "4", "5", "6"}) {
      senders.push_back(std::make_unique<ChildProcess>(peer({"stream", address, "2", "1"})));
      ASSERT_EQ(senders.back()->readLine(), "ready");
    }
    ASSERT_FALSE(receiveNotes(receiver, 10).empty());
    std::thread closing([&] { ASSERT_EQ(receiver.close(), MESH_OK); });
    for (const auto& sender : senders) {
      sender->kill();
    }
    closing.join();
  }
}

TEST_F(Peers, AreAskedByTheKernelOverTcp) {
  const std::string book = "1 " + tcpEndpoint(freePort()) + "\n2 " + tcpEndpoint(freePort()) + "\n";
  mesh_node_options options = defaults();
  options.address_book = book.c_str();
  for (const auto& [interval, seconds] : {std::pair(1500u, 2), std::pair(2147483647u, 32767)}) {
    options.heartbeat_ms = interval;
    OpenNode receiver = open(2, options);
    OpenNode sender = open(1, options);
    ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
    ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
    ASSERT_EQ(receiveNotes(receiver, 1).size(), 1u);
    std::vector<int> idle;  // seconds, of the connections that are asked
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      const int file = std::stoi(entry.path().filename());
      const auto option = [&](int level, int name) {
        int value = 0;
        socklen_t size = sizeof value;
        return getsockopt(file, level, name, &value, &size) == 0 ? value : 0;
      };
      if (option(SOL_SOCKET, SO_ACCEPTCONN) == 0 && option(SOL_SOCKET, SO_KEEPALIVE) == 1) {
        idle.push_back(option(IPPROTO_TCP, TCP_KEEPIDLE));
      }
    }
    EXPECT_EQ(idle, std::vector<int>{seconds});
    ASSERT_EQ(sender.close(), MESH_OK);
    ASSERT_EQ(receiver.close(), MESH_OK);
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }
}

TEST_F(Peers, WakeAPoll) {
  const OpenNode node = open(1);
  uint32_t pending = 7;
  const int file = mesh_node_descriptor(node, &pending);
  ASSERT_GE(file, 0);
  EXPECT_EQ(pending, 0u);
  std::thread sending([] {
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(sendNotes(1, {"a"}), MESH_OK);
    EXPECT_EQ(sendNotes(1, {"b"}), MESH_OK);
  });
  std::vector<Received> notes;
  const Deadline deadline;
  while (notes.size() < 2 && !deadline.passed()) {
    static_cast<void>(mesh_node_descriptor(node, &pending));
    if (pending == 0) {
      pollfd item{.fd = file, .events = POLLIN, .revents = 0};
      static_cast<void>(poll(&item, 1, 100));
    }
    ASSERT_GE(mesh_node_receive(node, 0, collect, &notes), 0);
  }
  sending.join();
  EXPECT_EQ(notes.size(), 2u);
  // It is not readable for ever.
  pollfd item{.fd = file, .events = POLLIN, .revents = 0};
  while (poll(&item, 1, 0) != 0 && !deadline.passed()) {
    EXPECT_EQ(mesh_node_receive(node, 1, nullptr, nullptr), 0);
  }
  EXPECT_EQ(poll(&item, 1, 0), 0);
  EXPECT_EQ(mesh_node_descriptor(nullptr, nullptr), -MESH_NOT_OPEN);
}

TEST_F(Peers, CanHaveCallsPending) {
  const OpenNode node = open(1);
  for (int call = 0; call < 3; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  }
  for (const uint32_t left : {3u, 2u, 1u, 0u}) {
    uint32_t pending = 0;
    int file = mesh_node_descriptor(node, &pending);
    const Deadline deadline;
    while (pending != left && !deadline.passed()) {
      file = mesh_node_descriptor(node, &pending);
    }
    EXPECT_EQ(pending, left);
    pollfd item{.fd = file, .events = POLLIN, .revents = 0};
    if (left > 0) {
      EXPECT_EQ(poll(&item, 1, 0), 1);
      EXPECT_EQ(mesh_node_receive(node, 0, nullptr, nullptr), 1);
    }
  }
}

// What our poll() below does once before it waits.
thread_local void (*beforePoll)() = nullptr;

// The library's thread looks after the node, but not while another one begins to wait.
TEST_F(Peers, AreHeardWhenTheySendJustBeforeTheWait) {
  const OpenNode node = open(1);
  ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  ASSERT_EQ(receiveNotes(node, 1).size(), 1u);
  ASSERT_EQ(mesh_node_receive(node, 100, nullptr, nullptr), 0);
  beforePoll = [] {
    EXPECT_EQ(sendNotes(1, {"b"}), MESH_OK);
    std::this_thread::sleep_for(milliseconds(100));
  };
  const auto start = steady_clock::now();
  EXPECT_EQ(mesh_node_receive(node, 10'000, nullptr, nullptr), 1);
  EXPECT_EQ(beforePoll, nullptr);
  EXPECT_LT(since(start), milliseconds(400));
}

TEST_F(Peers, ReachAnyOfSeveralNodes) {
  const OpenNode one = open(1);
  const OpenNode two = open(2);
  mesh_node* const nodes[] = {one, two};
  EXPECT_EQ(mesh_node_receive_any(nodes, 2, 10, nullptr, nullptr), 0);
  std::thread sending([] {
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(sendNotes(2, {"to two"}), MESH_OK);
    EXPECT_EQ(sendNotes(1, {"to one"}), MESH_OK);
  });
  std::vector<Received> notes;
  const Deadline deadline;
  while (notes.size() < 2 && !deadline.passed()) {
    ASSERT_GE(mesh_node_receive_any(nodes, 2, 1000, collect, &notes), 0);
  }
  sending.join();
  EXPECT_EQ(notes.size(), 2u);
  EXPECT_EQ(mesh_node_receive_any(nullptr, 1, 0, nullptr, nullptr), -MESH_BAD_ARGUMENT);
  mesh_node* const twice[] = {one, one};
  EXPECT_EQ(mesh_node_receive_any(twice, 2, 0, nullptr, nullptr), -MESH_BAD_ARGUMENT);
}

TEST_F(Peers, AreHeardInTurnsByTheNodesThatAThreadReceivesOn) {
  const OpenNode one = open(1);
  const OpenNode two = open(2);
  const OpenNode three = open(3);
  constexpr size_t calls = 6;  // to each
  for (size_t call = 0; call < calls; ++call) {
    ASSERT_EQ(sendNotes(1, {"one"}), MESH_OK);
    ASSERT_EQ(sendNotes(2, {"two"}), MESH_OK);
    ASSERT_EQ(sendNotes(3, {"three"}), MESH_OK);
  }
  mesh_node* const nodes[] = {one, two, three};
  for (mesh_node* const node : nodes) {
    for (const Deadline deadline; !deadline.passed();) {
      uint32_t pending = 0;
      ASSERT_GE(mesh_node_descriptor(node, &pending), 0);
      if (pending == calls) {
        break;
      }
    }
  }
  std::vector<Received> notes;
  for (size_t call = 0; call < 4; ++call) {
    ASSERT_EQ(mesh_node_receive_any(nodes, 2, 0, collect, &notes), 1);
  }
  // A receive on other nodes between them.
  for (size_t call = 0; call < 4; ++call) {
    ASSERT_EQ(mesh_node_receive_any(nodes, 2, 0, collect, &notes), 1);
    ASSERT_EQ(mesh_node_receive(three, 0, nullptr, nullptr), 1);
  }
  const auto failing = [](const mesh_received* received, void* user) {
    collect(received, user);
    throw std::runtime_error("the handler");
  };
  // A call that a handler left has its turn again, to be ended.
  for (const int64_t result : {-MESH_SYSTEM_ERROR, -MESH_SYSTEM_ERROR, 0, 0, -MESH_SYSTEM_ERROR,
                               -MESH_SYSTEM_ERROR, 0, 0}) {
    ASSERT_EQ(mesh_node_receive_any(nodes, 2, 0, failing, &notes), result);
  }
  ASSERT_EQ(notes.size(), 2 * calls);
  for (size_t call = 0; call < notes.size(); ++call) {
    EXPECT_EQ(notes[call].text, call % 2 == 0 ? "one" : "two") << "call " << call;
  }
  EXPECT_EQ(receiveNotes(three, 2).size(), 2u);
}

// The thread that waits takes the call, also if another one asks for the descriptor.
TEST_F(Peers, AreHeardWhileAThreadAsksForTheDescriptor) {
  static mesh_node* node = nullptr;
  static pollfd item{};
  static uint32_t pending = 0;
  static steady_clock::time_point asked;
  const OpenNode own = open(1);
  node = own;
  pending = 7;
  ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  ASSERT_EQ(receiveNotes(node, 1).size(), 1u);
  ASSERT_EQ(mesh_node_receive(node, 100, nullptr, nullptr), 0);
  item = {.fd = mesh_node_descriptor(node, nullptr), .events = POLLIN, .revents = 0};
  beforePoll = [] {
    std::thread([] {
      EXPECT_EQ(mesh_node_attach(node), MESH_OK);
      EXPECT_EQ(sendNotes(1, {"b"}), MESH_OK);
      EXPECT_EQ(poll(&item, 1, 10'000), 1) << "the call has arrived";
      EXPECT_GE(mesh_node_descriptor(node, &pending), 0);
    }).join();
    asked = steady_clock::now();
  };
  EXPECT_EQ(mesh_node_receive(node, 10'000, nullptr, nullptr), 1);
  EXPECT_LT(since(asked), milliseconds(400));
  EXPECT_EQ(beforePoll, nullptr);
  EXPECT_EQ(pending, 0u) << "the waiting thread takes it";
}

// What our getaddrinfo() below finds for the name.
constexpr const char* hostName = "zarnimesh-test-host";
std::atomic<const char*> numberOfHost = "127.0.0.1";

// An endpoint whose host ZeroMQ has to resolve. The number appears when a connection follows
// another.
class ResolvedPeers : public Peers, public ::testing::WithParamInterface<bool> {
 protected:
  ResolvedPeers() {
    const std::string port = ":" + std::to_string(freePort());
    receiversBook_ = "3 tcp://127.0.0.3" + port + "\n4 tcp://127.0.0.4" + port + "\n2 tcp://" +
                     (ipv6_ ? "[::1]" : "127.0.0.1") + port;
    movedBook_ = "2 tcp://127.0.0.2" + port;
    sendersBook_ = "3 tcp://127.0.0.3" + port + "\n4 tcp://127.0.0.4" + port + "\n2 tcp://" +
                   (ipv6_ ? "[0:0:0:0:0:0:0:1]" : hostName) + port;
    numberOfHost = "127.0.0.1";
    receivers_.address_book = receiversBook_.c_str();
    mesh_node_options options = defaults();
    events_.hear(options);
    options.address_book = sendersBook_.c_str();
    options.connect_timeout_ms = 10'000;
    options.heartbeat_ms = 0;  // nothing else finds them
    sender_ = open(1, options);
    EXPECT_EQ(mesh_node_attach(sender_), MESH_OK);
    // Nobody receives there.
    EXPECT_EQ(tryOnce(3), MESH_NO_DESTINATION);
    other_ = open(4, receivers_);
    EXPECT_EQ(sendNotes(4, {"a"}), MESH_OK) << mesh_node_last_error();
    EXPECT_EQ(receiveNotes(other_, 1).size(), 1u);
  }
  ~ResolvedPeers() override { EXPECT_EQ(mesh_node_attach(nullptr), MESH_OK); }

  void SetUp() override {
    if (ipv6_ && resultOfOpening(2, receivers_) != MESH_OK) {
      GTEST_SKIP() << "this machine has no [::1]";
    }
  }

  mesh_result tryOnce(uint32_t destination) {
    const mesh_msg_desc empty{};
    return mesh_node_send(sender_, destination, &empty, 1, 0, 0);
  }

  void awaitConnected(uint32_t connected) {
    const auto start = steady_clock::now();
    while (peerOf(sender_, 2).connected != connected && since(start) < milliseconds(10'000)) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(peerOf(sender_, 2).connected, connected);
  }

  void expectDelivery(mesh_node* receiver) {
    EXPECT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
    EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
    expectConfirmed(sender_, 0);
    EXPECT_EQ(peerOf(sender_, 3).connected, 0u);
    EXPECT_FALSE(events_.had(MESH_PEER_DOWN, 4));
  }

  const bool ipv6_ = GetParam();
  std::string receiversBook_;
  std::string movedBook_;
  std::string sendersBook_;
  mesh_node_options receivers_ = defaults();
  Events events_;
  OpenNode other_;
  OpenNode sender_;
};

INSTANTIATE_TEST_SUITE_P(Hosts, ResolvedPeers, ::testing::Bool(),
                         [](const auto& suite) { return suite.param ? "ipv6" : "ipv4"; });

TEST_P(ResolvedPeers, AreFoundAgain) {
  for (int round = 0; round < 6 && !HasFailure(); ++round) {
    // A name may lead to another machine.
    const bool moved = !ipv6_ && (round == 2 || round == 3);
    numberOfHost = moved ? "127.0.0.2" : "127.0.0.1";
    receivers_.address_book = moved ? movedBook_.c_str() : receiversBook_.c_str();
    OpenNode receiver = open(2, receivers_);
    expectDelivery(receiver);
    EXPECT_EQ(receiver.close(), MESH_OK);
    awaitConnected(0);
  }
}

TEST_P(ResolvedPeers, DoNotTakeOthersAlong) {
  for (int round = 0; round < 2; ++round) {
    OpenNode receiver = open(2, receivers_);
    expectDelivery(receiver);
    EXPECT_EQ(receiver.close(), MESH_OK);
    awaitConnected(0);
  }
  OpenNode receiver = open(2, receivers_);
  expectDelivery(receiver);
  const OpenNode third = open(3, receivers_);
  EXPECT_TRUE(events_.has(MESH_PEER_UP, 3));
  EXPECT_EQ(sendNotes(3, {"a"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(third, 1).size(), 1u);
  EXPECT_EQ(receiver.close(), MESH_OK);
  awaitConnected(0);
  EXPECT_EQ(peerOf(sender_, 3).connected, 1u);
  EXPECT_FALSE(events_.had(MESH_PEER_DOWN, 3));
}

TEST_P(ResolvedPeers, AreFoundAgainBeforeTheirFirstAnswer) {
  EXPECT_EQ(tryOnce(2), MESH_NO_DESTINATION);
  OpenNode receiver = open(2, receivers_);
  awaitConnected(1);
  EXPECT_EQ(receiver.close(), MESH_OK);
  awaitConnected(0);
  receiver = open(2, receivers_);
  expectDelivery(receiver);
  EXPECT_EQ(receiver.close(), MESH_OK);
  awaitConnected(0);
}

}  // namespace
}  // namespace platform_test

// Replaces the system's poll(), also for the middleware and ZeroMQ.
extern "C" int poll(pollfd* files, nfds_t count, int timeout) {
  if (const auto first =
          timeout > 0 ? std::exchange(platform_test::beforePoll, nullptr) : nullptr) {
    first();
  }
  static const auto system =
      reinterpret_cast<int (*)(pollfd*, nfds_t, int)>(dlsym(RTLD_NEXT, "poll"));
  return system(files, count, timeout);
}

// Replaces the system's getaddrinfo(), also for ZeroMQ.
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                           addrinfo** result) {
  const bool ours = host != nullptr && std::strcmp(host, platform_test::hostName) == 0;
  static const auto system =
      reinterpret_cast<int (*)(const char*, const char*, const addrinfo*, addrinfo**)>(
          dlsym(RTLD_NEXT, "getaddrinfo"));
  return system(ours ? platform_test::numberOfHost.load() : host, service, hints, result);
}
