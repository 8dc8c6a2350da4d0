// What is sent is delivered or counted: ends of bursts, ends of nodes, handlers that do not return.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csetjmp>
#include <filesystem>
#include <future>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

#include "support/child_process.hpp"
#include "support/free_port.hpp"
#include "support/held_library_thread.hpp"
#include "support/node_fixture.hpp"
#include "support/own_process.hpp"

namespace platform_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Delivery : public NodeFixture {
 protected:
  // Both nodes receive at tcp endpoints.
  void useTcp() {
    book_ = "1 " + tcpEndpoint(freePort()) + "\n2 " + tcpEndpoint(freePort()) + "\n";
    setenv("ZARNIMESH_ADDRESS_BOOK", writeBook().c_str(), 1);
  }

  static mesh_node_options small() {
    mesh_node_options options = defaults();
    options.transport = MESH_TRANSPORT_INPROC;
    options.payload_limit = 100;
    return options;
  }

  // From a new node 2 to a small node 1, which drops the seventh call. Returns the sender.
  static mesh_node* sendNineToSmall() {
    mesh_node_options options = defaults();
    options.transport = MESH_TRANSPORT_INPROC;
    OpenNode sender = open(2, options);
    EXPECT_EQ(mesh_node_attach(sender), MESH_OK);
    for (int call = 1; call <= 9; ++call) {
      EXPECT_EQ(sendNotes(1, {std::string(call == 7 ? 101 : 1, 'a')}), MESH_OK);
    }
    return sender.release();
  }

  // Waits until the node's receiver has confirmed all calls but `calls`.
  static void awaitUnconfirmed(mesh_node* node, uint64_t calls) {
    const Deadline deadline;
    while (statisticsOf(node).unconfirmed_calls != calls && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(statisticsOf(node).unconfirmed_calls, calls);
  }

  // Whether the process has a connection to the socket of this name in the node's directory. Looks
  // at no node.
  bool isConnectedTo(const std::string& name) const {
    const std::set<int> files = openDescriptors();
    return std::any_of(files.begin(), files.end(), [&](int file) {
      sockaddr_un peer{};
      socklen_t size = sizeof peer;
      return getpeername(file, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
             peer.sun_family == AF_UNIX && peer.sun_path == directory() + "/" + name;
    });
  }

  // The receiver is behind while a sender of another process sends `calls` calls and ends.
  void expectWholeBurst(bool killed) {
    const OpenNode receiver = open(1);
    ChildProcess sender(peer({killed ? "burst" : "send", "2", "1", "1000", "1"}));
    ASSERT_EQ(sender.readLine(), "ready");
    const auto slowly = [](const mesh_received*, void*) {
      std::this_thread::sleep_for(std::chrono::microseconds(300));
    };
    if (killed) {
      ASSERT_EQ(sender.readLine(), "sent");
      std::this_thread::sleep_for(milliseconds(100));
      sender.kill();
      EXPECT_EQ(sender.wait(), -SIGKILL);
    }
    const Deadline deadline;
    while (statisticsOf(receiver).received_records < 1000 && !deadline.passed()) {
      ASSERT_GE(mesh_node_receive(receiver, 100, slowly, nullptr), 0);
    }
    EXPECT_EQ(statisticsOf(receiver).received_records, 1000u);
    EXPECT_EQ(statisticsOf(receiver).lost_calls, 0u);
    if (!killed) {
      EXPECT_EQ(sender.wait(), MESH_OK);
    }
  }

 private:
  std::string writeBook() const {
    const std::string path = directory() + "/book";
    FILE* file = std::fopen(path.c_str(), "w");
    std::fputs(book_.c_str(), file);
    std::fclose(file);
    return path;
  }

  std::string book_;
};

TEST_F(Delivery, OfTheEndOfABurstFromASenderThatCloses) {
  expectWholeBurst(false);
}

TEST_F(Delivery, OfTheEndOfABurstFromASenderThatClosesOverTcp) {
  useTcp();
  expectWholeBurst(false);
}

TEST_F(Delivery, OfTheEndOfABurstFromASenderThatIsKilled) {
  expectWholeBurst(true);
}

TEST_F(Delivery, OfTheEndOfABurstFromASenderThatIsKilledOverTcp) {
  useTcp();
  expectWholeBurst(true);
}

TEST_F(Delivery, IsConfirmedToASenderThatClosesWhileNobodyReceives) {
  const OpenNode receiver = open(1);
  OpenNode sender = open(2);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  for (int call = 0; call < 1000; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  }
  mesh_node_statistics last;
  mesh_node* closing = sender;
  const auto start = steady_clock::now();
  EXPECT_EQ(sender.close(), MESH_OK);
  EXPECT_LT(since(start), milliseconds(1500)) << "not after the linger time";
  EXPECT_EQ(mesh_node_close_counted(closing, &last), MESH_NOT_OPEN);
  EXPECT_EQ(receiveNotes(receiver, 1000).size(), 1000u);
}

TEST_F(Delivery, IsReportedMissingByTheClosingSender) {
  OpenNode receiver = open(1);
  mesh_node* sender = nullptr;
  ASSERT_EQ(mesh_node_open(2, nullptr, &sender), MESH_OK);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  for (int call = 0; call < 10; ++call) {
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  }
  ASSERT_EQ(receiveNotes(receiver, 4).size(), 4u);
  ASSERT_EQ(receiver.close(), MESH_OK);
  mesh_node_statistics last;
  EXPECT_EQ(mesh_node_close_counted(sender, &last), MESH_UNDELIVERED);
  EXPECT_EQ(std::string(mesh_node_last_error()), "6 sent calls are not known to have arrived");
  EXPECT_EQ(last.sent_calls, 10u);
  EXPECT_EQ(last.undelivered_calls, 6u);
}

// Whether the clean hook below sends. It stays registered.
bool cleanHookSends = false;

TEST_F(Delivery, IsReportedMissingAlsoWhenHooksFailMeanwhile) {
  ASSERT_EQ(MESH_RegIDLResorceCleanFuncHook([] {
              if (cleanHookSends) {
                EXPECT_EQ(MESH_SendMsg(1, nullptr, 0), uint32_t{MESH_NOT_OPEN});
              }
            }),
            uint32_t{MESH_OK});
  struct Hooks {
    std::atomic<bool> blocks = false;
    std::atomic<bool> released = false;
    mesh_node* sender = nullptr;
    int sends = 0;
  };
  for (const bool clean : {false, true}) {
    Hooks hooks;
    // It keeps the library's thread, so that the closing one tells of the sender's peers.
    mesh_node_options blocking = defaults();
    blocking.peer_user = &hooks;
    blocking.peer = [](const mesh_peer_event*, void* user) {
      auto& all = *static_cast<Hooks*>(user);
      all.blocks = true;
      while (!all.released) {
        std::this_thread::sleep_for(milliseconds(1));
      }
    };
    mesh_node_options failing = defaults();
    failing.peer_user = &hooks;
    failing.peer = [](const mesh_peer_event*, void* user) {
      auto& all = *static_cast<Hooks*>(user);
      ++all.sends;
      EXPECT_EQ(mesh_node_send(all.sender, 1, nullptr, 0, 0, 0), MESH_NOT_OPEN);
    };
    OpenNode blocker = clean ? OpenNode() : open(3, blocking);
    if (!clean) {
      ASSERT_EQ(mesh_node_send(blocker, 3, nullptr, 0, 0, -1), MESH_OK);
      const Deadline deadline;
      while (!hooks.blocks && !deadline.passed()) {
        std::this_thread::sleep_for(milliseconds(1));
      }
    }
    OpenNode receiver = open(1);
    OpenNode sender = open(2, clean ? defaults() : failing);
    hooks.sender = sender;
    ASSERT_EQ(mesh_node_send(sender, 1, nullptr, 0, 0, -1), MESH_OK);
    ASSERT_EQ(receiver.close(), MESH_OK);
    cleanHookSends = clean;
    EXPECT_EQ(sender.close(), MESH_UNDELIVERED);
    cleanHookSends = false;
    EXPECT_EQ(std::string(mesh_node_last_error()), "1 sent calls are not known to have arrived");
    EXPECT_EQ(hooks.sends > 0, !clean);
    hooks.released = true;
    if (!clean) {
      EXPECT_EQ(mesh_node_receive(blocker, 1000, nullptr, nullptr), 0);
      EXPECT_EQ(statisticsOf(blocker).received_calls, 1u);
      EXPECT_EQ(blocker.close(), MESH_OK);
    }
  }
}

TEST_F(Delivery, IsNotMissedFromAPredecessorThatConfirmedIt) {
  OpenNode receiver = open(1);
  const OpenNode sender = open(2);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  for (int round = 0; round < 3; ++round) {
    for (int call = 0; call < 100; ++call) {
      ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
    }
    ASSERT_EQ(receiveNotes(receiver, 100).size(), 100u);
    awaitUnconfirmed(sender, 0);
    EXPECT_EQ(statisticsOf(receiver).missed_before_first, 0u);
    ASSERT_EQ(receiver.close(), MESH_OK);
    // What is sent before the sender notices the end of the connection may be lost with it.
    mesh_peer_statistics peer;
    peer.connected = 1;
    uint32_t count = 0;
    const Deadline deadline;
    while (peer.connected != 0 && !deadline.passed()) {
      ASSERT_EQ(mesh_node_peers(sender, &peer, 1, &count), MESH_OK);
    }
    receiver = open(1);
  }
  EXPECT_EQ(statisticsOf(sender).undelivered_calls, 0u);
}

TEST_F(Delivery, IsCountedWhenTheReceiverIsRestarted) {
  for (const mesh_transport transport : {MESH_TRANSPORT_IPC, MESH_TRANSPORT_INPROC}) {
    mesh_node_options options = defaults();
    options.transport = transport;
    OpenNode receiver = open(1, options);
    const OpenNode sender = open(2, options);
    ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
    for (int call = 0; call < 10; ++call) {
      ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
    }
    ASSERT_EQ(receiveNotes(receiver, 4).size(), 4u);
    ASSERT_EQ(receiver.close(), MESH_OK);
    receiver = open(1, options);
    // The sender asks its new receiver on its own.
    const Deadline deadline;
    while (statisticsOf(sender).undelivered_calls < 6 && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(statisticsOf(sender).undelivered_calls, 6u);
    EXPECT_EQ(statisticsOf(sender).unconfirmed_calls, 0u);
    EXPECT_EQ(statisticsOf(receiver).missed_before_first, 6u);
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }
}

TEST_F(Delivery, IsCountedOnceIfItIsMissingBehindACallThatWaits) {
  for (const bool restarted : {false, true}) {
    OpenNode receiver = open(1, small());
    mesh_node* const sender = sendNineToSmall();
    EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::received_records, 1), 1u);
    awaitUnconfirmed(sender, 8);
    EXPECT_EQ(statisticsOf(receiver).lost_calls, 1u);
    EXPECT_EQ(statisticsOf(sender).undelivered_calls, 0u) << "it is one of the unconfirmed";
    ASSERT_EQ(receiver.close(), MESH_OK);
    if (restarted) {
      receiver = open(1, small());
      awaitUnconfirmed(sender, 0);
      EXPECT_EQ(statisticsOf(receiver).missed_before_first, 8u);
      EXPECT_EQ(statisticsOf(sender).undelivered_calls, 8u);
    }
    mesh_node_statistics last;
    EXPECT_EQ(mesh_node_close_counted(sender, &last), restarted ? MESH_OK : MESH_UNDELIVERED);
    EXPECT_EQ(last.undelivered_calls, 8u);
  }
}

TEST_F(Delivery, IsCountedOnceIfItIsMissingBehindACallThatWaitsAtTheClose) {
  const OpenNode receiver = open(1, small());
  mesh_node_statistics last;
  EXPECT_EQ(mesh_node_close_counted(sendNineToSmall(), &last), MESH_UNDELIVERED);
  EXPECT_EQ(last.undelivered_calls, 1u);
  EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::received_records, 8), 8u);
}

// ZeroMQ ends the connection of a call that is too large, and connects again.
TEST_F(Delivery, IsCountedOnceIfTheSenderClosesWhenItsConnectionBroke) {
  for (const bool overTcp : {false, true}) {
    if (overTcp) {
      useTcp();
    }
    mesh_node_options options = defaults();
    options.payload_limit = 100;
    const OpenNode receiver = open(1, options);
    std::atomic<bool> broke = false;
    options = defaults();
    options.peer_user = &broke;
    options.peer = [](const mesh_peer_event* event, void* user) {
      if (event->change == MESH_PEER_DOWN) {
        *static_cast<std::atomic<bool>*>(user) = true;
      }
    };
    OpenNode sender = open(2, options);
    ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
    for (int call = 1; call <= 5; ++call) {
      ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
    }
    const Deadline deadline;
    while (statisticsOf(receiver).received_calls < 5 && !deadline.passed()) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    ASSERT_EQ(sendNotes(1, {std::string(4 << 20, 'a')}), MESH_OK);
    mesh_peer_statistics peer;
    peer.connected = 1;
    uint32_t count = 0;
    while (peer.connected != 0 && !broke && !deadline.passed()) {
      static_cast<void>(statisticsOf(sender));
      ASSERT_EQ(mesh_node_peers(sender, &peer, 1, &count), MESH_OK);
    }
    mesh_node_statistics last;
    EXPECT_EQ(mesh_node_close_counted(sender.release(), &last), MESH_UNDELIVERED);
    EXPECT_TRUE(broke);
    EXPECT_EQ(last.undelivered_calls, 1u);
    EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::received_records, 5), 5u);
    EXPECT_EQ(statisticsOf(receiver).lost_calls, 1u);
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }
}

// The answer of a restarted receiver arrives when the sender finds that another one has ended.
TEST_F(Delivery, IsNotMissedWhenAnotherReceiverEndsMeanwhile) {
  // What arrives at the sender waits until this thread makes it look.
  const HeldLibraryThread held(9);
  mesh_node_options options = defaults();
  options.address_book = "3 inproc://three";
  const OpenNode sender = open(1, options);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  OpenNode receiver = open(2);
  OpenNode other = open(3, options);
  ASSERT_EQ(sendNotes(3, {"a"}), MESH_OK);
  ASSERT_EQ(receiveNotes(other, 1).size(), 1u);
  for (int call = 0; call < 5; ++call) {
    ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  }
  ASSERT_EQ(receiveNotes(receiver, 5).size(), 5u);
  EXPECT_TRUE(isConnectedTo("2"));
  ASSERT_EQ(receiver.close(), MESH_OK);
  const Deadline closed;
  while (isConnectedTo("2") && !closed.passed()) {
    std::this_thread::sleep_for(milliseconds(5));
  }
  EXPECT_FALSE(isConnectedTo("2"));
  ASSERT_EQ(sendNotes(2, {"b"}), MESH_OK) << "it was not heard yet that five calls were confirmed";
  const auto awaitConnected = [&](uint32_t connected) {
    mesh_peer_statistics peers[2];
    uint32_t count = 0;
    const Deadline deadline;
    do {
      static_cast<void>(statisticsOf(sender));
      ASSERT_EQ(mesh_node_peers(sender, peers, 2, &count), MESH_OK);
    } while (peers[0].connected != connected && !deadline.passed());
    EXPECT_EQ(peers[0].address, 2u);
    EXPECT_EQ(peers[0].connected, connected);
  };
  awaitConnected(0);
  receiver = open(2);
  awaitConnected(1);
  ASSERT_EQ(receiveNotes(receiver, 1).size(), 1u);
  ASSERT_EQ(mesh_node_receive(receiver, 100, nullptr, nullptr), 0);
  EXPECT_EQ(statisticsOf(receiver).missed_before_first, 5u) << "as the call told";
  ASSERT_EQ(other.close(), MESH_OK);
  const mesh_msg_desc empty{};
  EXPECT_EQ(mesh_node_send(sender, 3, &empty, 1, 0, 0), MESH_NO_DESTINATION);
  const auto start = steady_clock::now();
  while (statisticsOf(receiver).missed_before_first != 0 && since(start) < milliseconds(5000)) {
    ASSERT_EQ(mesh_node_receive(receiver, 20, nullptr, nullptr), 0);
  }
  EXPECT_EQ(statisticsOf(receiver).missed_before_first, 0u);
  ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
}

// What our write() below does once before it writes an announcement.
thread_local void (*beforeAnnouncement)() = nullptr;
// What our zmq_msg_recv() below does once after it has found nothing.
thread_local void (*whenNothingArrived)() = nullptr;

// A thread that answers is stopped before it has announced its answer. It holds up the
// announcements of all others.
TEST_F(Delivery, IsNotMissedFromAReceiverWhoseLastWordsAreHeldUp) {
  static std::promise<void> holds;
  static std::promise<void> released;
  holds = {};
  released = {};
  const HeldLibraryThread held(9);
  mesh_node_options options = defaults();
  options.transport = MESH_TRANSPORT_INPROC;
  OpenNode sender = open(1, options);
  const OpenNode stopped = open(2, options);
  OpenNode receiver = open(3, options);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  ASSERT_EQ(sendNotes(3, {"a"}), MESH_OK);
  EXPECT_EQ(statisticsOf(sender).unconfirmed_calls, 2u);
  std::atomic<bool> closed = false;
  std::thread answering([&] {
    beforeAnnouncement = [] {
      holds.set_value();
      released.get_future().wait();
    };
    while (!closed) {
      EXPECT_GE(mesh_node_receive(stopped, 5, nullptr, nullptr), 0);
    }
  });
  holds.get_future().wait();
  EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
  EXPECT_EQ(receiver.close(), MESH_OK);
  std::thread releasing([] {
    std::this_thread::sleep_for(milliseconds(100));
    released.set_value();
  });
  mesh_node_statistics last;
  EXPECT_EQ(mesh_node_close_counted(sender.release(), &last), MESH_OK);
  EXPECT_EQ(last.undelivered_calls, 0u);
  closed = true;
  answering.join();
  releasing.join();
}

// The answer arrives when the closing sender has looked for answers, and not yet for events.
TEST_F(Delivery, IsNotMissedFromAReceiverThatEndsWhileItsSenderCloses) {
  static OpenNode receiver;
  const HeldLibraryThread held(9);
  receiver = open(1);
  OpenNode sender = open(2);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  ASSERT_EQ(receiveNotes(receiver, 1).size(), 1u);
  EXPECT_EQ(statisticsOf(sender).unconfirmed_calls, 1u);
  whenNothingArrived = [] {
    EXPECT_EQ(receiver.close(), MESH_OK);
    std::this_thread::sleep_for(milliseconds(100));
  };
  mesh_node_statistics last;
  EXPECT_EQ(mesh_node_close_counted(sender.release(), &last), MESH_OK);
  EXPECT_EQ(whenNothingArrived, nullptr);
  EXPECT_EQ(last.undelivered_calls, 0u);
}

TEST_F(Delivery, DoesNotWaitForADeadDestinationTwice) {
  mesh_node_options options = defaults();
  options.connect_timeout_ms = 500;
  const OpenNode node = open(1, options);
  ASSERT_EQ(sendNotes(9, {"a"}), MESH_NO_DESTINATION);
  const auto start = steady_clock::now();
  for (int call = 0; call < 10; ++call) {
    EXPECT_EQ(sendNotes(9, {"a"}), MESH_NO_DESTINATION);
  }
  EXPECT_LT(since(start), milliseconds(400));
  const OpenNode back = open(9);
  EXPECT_EQ(sendNotes(9, {"a"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(back, 1).size(), 1u);
}

// Each call is answered twice: without a bound that would grow for ever.
TEST_F(Delivery, GoesOnWhenHandlersAnswerTwice) {
  mesh_node_options options = defaults();
  options.send_queue_calls = 64;
  options.send_timeout_ms = 20'000;
  OpenNode one = open(1, options);
  OpenNode two = open(2, options);
  struct Answering {
    mesh_node* node;
    uint32_t to;
    uint64_t refused = 0;
  };
  const auto answer = [](const mesh_received*, void* user) {
    auto& answering = *static_cast<Answering*>(user);
    const mesh_msg_desc note{
        .data = reinterpret_cast<uintptr_t>("n"), .msg_id = noteId, .length = 1};
    for (int each = 0; each < 2; ++each) {
      const mesh_result result = mesh_node_send(answering.node, answering.to, &note, 1, 0, -1);
      EXPECT_TRUE(result == MESH_OK || result == MESH_QUEUE_FULL) << mesh_node_last_error();
      answering.refused += result == MESH_QUEUE_FULL ? 1 : 0;
    }
  };
  std::atomic<bool> done = false;
  Answering ofTwo{two, 1};
  std::thread other([&] {
    while (!done) {
      static_cast<void>(mesh_node_receive(two, 10, answer, &ofTwo));
    }
  });
  ASSERT_EQ(sendNotes(2, {"first"}), MESH_OK);
  Answering ofOne{one, 2};
  const Deadline deadline;
  while (statisticsOf(one).received_calls < 5000 && !deadline.passed()) {
    const int64_t received = mesh_node_receive(one, 100, answer, &ofOne);
    ASSERT_GE(received, 0);
    // When all answers are refused for a while, nothing is left to answer.
    if (received == 0) {
      static_cast<void>(sendNotes(2, {"again"}));
    }
  }
  done = true;
  other.join();
  EXPECT_GE(statisticsOf(one).received_calls, 5000u)
      << ofOne.refused << " and " << ofTwo.refused << " answers were refused, "
      << statisticsOf(one).unconfirmed_calls << " and " << statisticsOf(two).unconfirmed_calls
      << " are unconfirmed";
  EXPECT_GT(ofOne.refused + ofTwo.refused, 0u);
  EXPECT_EQ(two.close(), MESH_OK);
  // Node two has not delivered all answers of node one.
  const uint64_t undelivered = statisticsOf(one).unconfirmed_calls;
  EXPECT_EQ(one.close(), undelivered > 0 ? MESH_UNDELIVERED : MESH_OK);
}

TEST_F(Delivery, IsBoundedInBytesToo) {
  mesh_node_options options = impatient();
  options.queue_bytes = 1 << 20;
  const OpenNode sender = open(1, options);
  const OpenNode receiver = open(2, options);
  const std::string large(256 << 10, 'a');
  uint32_t accepted = 0;
  while (accepted < 100 && sendNotes(2, {large}) == MESH_OK) {
    ++accepted;
  }
  EXPECT_EQ(accepted, 4u) << "1024 KiB fit, 1280 do not";
  EXPECT_EQ(statisticsOf(sender).failed_queue_full, 1u);
  EXPECT_EQ(receiveNotes(receiver, 4).size(), 4u);
  awaitUnconfirmed(sender, 0);
  EXPECT_EQ(sendNotes(2, {std::string(3 << 20, 'b')}), MESH_OK) << "one call may be larger";
  EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
}

TEST_F(Delivery, IsBoundedByItsReceiverToo) {
  const OpenNode sender = open(1);
  mesh_node_options options = defaults();
  options.receive_queue_calls = 1;
  const OpenNode receiver = open(2, options);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK);
  ASSERT_EQ(receiveNotes(receiver, 1).size(), 1u);
  awaitUnconfirmed(sender, 0);
  const mesh_msg_desc empty{};
  EXPECT_EQ(mesh_node_send(sender, 2, &empty, 1, 0, 0), MESH_OK);
  EXPECT_EQ(mesh_node_send(sender, 2, &empty, 1, 0, 0), MESH_QUEUE_FULL);
  EXPECT_EQ(mesh_node_receive(receiver, 5000, nullptr, nullptr), 0) << "a call without a record";
}

TEST_F(Delivery, GoesOnAfterAHandlerThatThrows) {
  const OpenNode node = open(1);
  ASSERT_EQ(sendNotes(1, {"a", "b", "c", "d", "e"}), MESH_OK);
  const auto failing = [](const mesh_received*, void*) { throw std::runtime_error("50 % done"); };
  EXPECT_EQ(mesh_node_receive(node, 10000, failing, nullptr), -MESH_SYSTEM_ERROR);
  EXPECT_EQ(std::string(mesh_node_last_error()), "50 % done");
  const auto allocating = [](const mesh_received*, void*) { throw std::bad_alloc(); };
  EXPECT_EQ(mesh_node_receive(node, 10000, allocating, nullptr), -MESH_OUT_OF_MEMORY);
  const auto other = [](const mesh_received*, void*) { throw 1; };
  EXPECT_EQ(mesh_node_receive(node, 10000, other, nullptr), -MESH_SYSTEM_ERROR);
  std::vector<Received> notes;
  EXPECT_EQ(mesh_node_receive(node, 10000, collect, &notes), 2);
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[0].text, "d");
  EXPECT_EQ(notesOut(), 0);
  EXPECT_EQ(statisticsOf(node).received_records, 5u);
  awaitUnconfirmed(node, 0);
}

// Sends to the node itself until that fails, from a stack frame below those of handlers.
[[gnu::noinline]] mesh_result fillFromFarBelow(mesh_node* node, int32_t patience) {
  volatile char between[16 << 10] = {};
  const mesh_msg_desc empty{};
  mesh_result result = MESH_OK;
  while (result == MESH_OK) {
    result = mesh_node_send(node, 1, &empty, 1, 0, patience);
  }
  static_cast<void>(between[0]);
  return result;
}

std::jmp_buf leftTo;
int timesLeft = 0;

void leaveByLongjmp(const mesh_received*, void*) {
  ++timesLeft;
  std::longjmp(leftTo, 1);
}

TEST_F(Delivery, GoesOnAfterAHandlerThatLeavesByLongjmp) {
  const OpenNode node = open(1);
  ASSERT_EQ(sendNotes(1, {"a", "b", "c"}), MESH_OK);
  timesLeft = 0;
  if (setjmp(leftTo) == 0) {
    static_cast<void>(mesh_node_receive(node, 10000, leaveByLongjmp, nullptr));
    ADD_FAILURE() << "the handler was not called";
  }
  EXPECT_EQ(timesLeft, 1);
  std::vector<Received> notes;
  EXPECT_EQ(mesh_node_receive(node, 10000, collect, &notes), 2) << mesh_node_last_error();
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[0].text, "b");
  EXPECT_EQ(notesOut(), 0);
  awaitUnconfirmed(node, 0);
  // Sends wait for room again: the handler is left.
  constexpr int32_t patience = 100;
  const auto start = steady_clock::now();
  EXPECT_EQ(fillFromFarBelow(node, patience), MESH_QUEUE_FULL);
  EXPECT_GE(since(start), milliseconds(patience));
}

// Whatever the function calls next that called mesh_node_receive().
TEST_F(Delivery, GoesOnAfterAHandlerThatLeavesByLongjmpInOtherFunctions) {
  for (const int function : {0, 1, 2, 3}) {
    mesh_node* node = nullptr;
    ASSERT_EQ(mesh_node_open(1, nullptr, &node), MESH_OK) << mesh_node_last_error();
    ASSERT_EQ(mesh_node_attach(node), MESH_OK);
    ASSERT_EQ(sendNotes(1, {"a", "b"}), MESH_OK);
    if (setjmp(leftTo) == 0) {
      static_cast<void>(mesh_node_receive(node, 10000, leaveByLongjmp, nullptr));
      FAIL() << "the handler was not called";
    }
    if (function == 0) {
      EXPECT_EQ(mesh_node_receive_any(&node, 1, 0, nullptr, nullptr), 1);
    } else if (function == 1) {
      mesh_tables tables;
      EXPECT_EQ(mesh_node_receive_tables(node, 0, &tables), 1);
      mesh_node_free_tables(&tables);
    }
    if (function == 2) {
      mesh_node_statistics last;
      EXPECT_EQ(mesh_node_close_counted(node, &last), MESH_OK);
    } else {
      EXPECT_EQ(mesh_node_close(node), MESH_OK);
    }
  }
}

// Also for those that precede the next receive.
TEST_F(Delivery, WaitsForRoomAgainAfterAHandlerThatLeavesByLongjmp) {
  constexpr int32_t patience = 100;
  mesh_node_options options = defaults();
  options.send_timeout_ms = patience;
  OpenNode node = open(1, options);
  const mesh_msg_desc empty{};
  ASSERT_EQ(sendNotes(1, {"a", "b"}), MESH_OK);
  ASSERT_EQ(fillFromFarBelow(node, patience), MESH_QUEUE_FULL);
  if (setjmp(leftTo) == 0) {
    static_cast<void>(mesh_node_receive(node, 10000, leaveByLongjmp, nullptr));
    FAIL() << "the handler was not called";
  }
  auto start = steady_clock::now();
  EXPECT_EQ(mesh_node_send(node, 1, &empty, 1, 0, -1), MESH_QUEUE_FULL);
  EXPECT_GE(since(start), milliseconds(patience)) << "mesh_node_send";
  start = steady_clock::now();
  EXPECT_EQ(MESH_SendMsg(1, &empty, 1), uint32_t{MESH_QUEUE_FULL});
  EXPECT_GE(since(start), milliseconds(patience)) << "MESH_SendMsg";
  start = steady_clock::now();
  EXPECT_EQ(MESH_SendToMsg(1, &empty, 1, 1), uint32_t{MESH_QUEUE_FULL});
  EXPECT_GE(since(start), milliseconds(patience)) << "MESH_SendToMsg";
  // A receive tells it for sends from anywhere, whatever function it is.
  mesh_node* const any = node;
  ASSERT_EQ(mesh_node_receive_any(&any, 1, 0, nullptr, nullptr), 1) << "the rest of the call";
  start = steady_clock::now();
  EXPECT_EQ(fillFromFarBelow(node, patience), MESH_QUEUE_FULL);
  EXPECT_GE(since(start), milliseconds(patience)) << "from below";
}

// While the handler runs, only the library's thread confirms calls.
TEST_F(Delivery, IsSoonConfirmedToASenderThatClosesWhileAHandlerRuns) {
  milliseconds shortest = milliseconds::max();
  for (int round = 0; round < 5; ++round) {
    const OpenNode receiver = open(1);
    OpenNode sender = open(2);
    ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
    ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
    const auto close = [](const mesh_received*, void* user) {
      EXPECT_EQ(sendNotes(1, {"b"}), MESH_OK);
      EXPECT_EQ(static_cast<OpenNode*>(user)->close(), MESH_OK);
    };
    const auto start = steady_clock::now();
    ASSERT_EQ(mesh_node_receive(receiver, 10'000, close, &sender), 1);
    shortest = std::min(shortest, since(start));
    EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u);
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }
  EXPECT_LT(shortest, milliseconds(200));
}

TEST_F(Delivery, ContinuesWhenTheSocketsFileOrItsLockIsRemoved) {
  const OpenNode receiver = open(1);
  for (const char* removed : {"/1", "/1.lock"}) {
    ASSERT_TRUE(std::filesystem::remove(directory() + removed));
    const Deadline deadline;
    while (!std::filesystem::exists(directory() + removed) && !deadline.passed()) {
      ASSERT_EQ(mesh_node_receive(receiver, 20, nullptr, nullptr), 0);
    }
    const OpenNode late = open(2);
    ASSERT_EQ(mesh_node_attach(late), MESH_OK);
    EXPECT_EQ(sendNotes(1, {"a"}), MESH_OK) << removed << mesh_node_last_error();
    EXPECT_EQ(receiveNotes(receiver, 1).size(), 1u) << removed;
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
    EXPECT_EQ(resultOfOpening(1, defaults()), MESH_ADDRESS_IN_USE);
  }
}

TEST_F(Delivery, TellsANodeThatAnotherOneTookItsAddress) {
  OpenNode first = open(1);
  ASSERT_TRUE(std::filesystem::remove(directory() + "/1.lock"));
  const OpenNode second = open(1);
  const Deadline deadline;
  int64_t result = 0;
  while (result == 0 && !deadline.passed()) {
    result = mesh_node_receive(first, 100, nullptr, nullptr);
  }
  EXPECT_EQ(result, -MESH_ADDRESS_IN_USE);
  ASSERT_EQ(first.close(), MESH_OK);
  EXPECT_TRUE(std::filesystem::exists(directory() + "/1")) << "the successor's socket";
  const OpenNode sender = open(2);
  ASSERT_EQ(mesh_node_attach(sender), MESH_OK);
  ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  EXPECT_EQ(receiveNotes(second, 1).size(), 1u);
  ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
}

TEST_F(Delivery, EndsWithAResultWhenNoDescriptorsAreLeft) {
  std::vector<int> inherited;
  for (const char* limit : {"200", "400"}) {
    ChildProcess many(peer({"open", limit, "400"}), true);
    const std::string told = many.readAll();
    EXPECT_NE(told.find("file descriptors are in use"), std::string::npos) << told;
    EXPECT_EQ(many.wait(), MESH_SYSTEM_ERROR);
    // The second process inherits more descriptors than the first one may have.
    while (inherited.size() < 300) {
      inherited.push_back(::open("/dev/null", O_RDONLY));
    }
  }
  for (const int file : inherited) {
    close(file);
  }
}

// Locks that other threads held at the fork stay locked in the child for ever.
TEST_F(Delivery, IsRefusedInAChildThatWasForkedDuringSends) {
  const OpenNode node = open(1);
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([&] {
      while (!done) {
        static_cast<void>(sendNotes(1, {"a"}));
      }
    });
  }
  std::thread receiving([&] {
    while (!done) {
      static_cast<void>(mesh_node_receive(node, 10, nullptr, nullptr));
    }
  });
  int refused = 0;
  for (int round = 0; round < 200; ++round) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      alarm(10);
      mesh_node_statistics statistics;
      mesh_node* own = nullptr;
      const bool all = MESH_SendMsg(1, nullptr, 0) == MESH_NOT_OPEN &&
                       mesh_node_stats(node, &statistics) == MESH_NOT_OPEN &&
                       mesh_node_receive(node, 0, nullptr, nullptr) == -MESH_NOT_OPEN &&
                       mesh_node_attach(nullptr) == MESH_NOT_OPEN &&
                       mesh_node_open(2, nullptr, &own) == MESH_NOT_OPEN &&
                       mesh_node_close(node) == MESH_NOT_OPEN;
      _exit(all ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    refused += status == 0 ? 1 : 0;
  }
  done = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
  receiving.join();
  EXPECT_EQ(refused, 200);
}

}  // namespace
}  // namespace platform_test

// Replaces the system's write(), also for ZeroMQ, which writes eight bytes to wake a thread.
extern "C" ssize_t write(int file, const void* bytes, size_t size) {
  if (const auto first = size == sizeof(uint64_t)
                             ? std::exchange(platform_test::beforeAnnouncement, nullptr)
                             : nullptr) {
    first();
  }
  static const auto system =
      reinterpret_cast<ssize_t (*)(int, const void*, size_t)>(dlsym(RTLD_NEXT, "write"));
  return system(file, bytes, size);
}

// Replaces ZeroMQ's function.
extern "C" int zmq_msg_recv(void* message, void* socket, int flags) {
  static const auto real =
      reinterpret_cast<int (*)(void*, void*, int)>(dlsym(RTLD_NEXT, "zmq_msg_recv"));
  const int result = real(message, socket, flags);
  const int error = errno;
  if (const auto then =
          result < 0 ? std::exchange(platform_test::whenNothingArrived, nullptr) : nullptr) {
    then();
  }
  errno = error;
  return result;
}
