// Peers that send a message with an endless number of parts.
#include <malloc.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>
#include <vector>

#include "support/held_library_thread.hpp"
#include "support/node_fixture.hpp"
#include "support/own_process.hpp"
#include "support/raw_connection.hpp"
#include "support/raw_sender.hpp"

namespace platform_test {
namespace {

constexpr uint32_t payloadLimit = 1 << 20;

class EndlessMessage : public NodeFixture {
 protected:
  EndlessMessage() {
    options_.address_book = book_.c_str();
    options_.payload_limit = payloadLimit;
    node_ = open(ownNode, options_);
  }

  static std::string oneNote(RawHeader header, const std::string& text) {
    header.count = 1;
    header.payloadBytes = static_cast<uint32_t>(text.size());
    return header.bytes() + littleEndian(noteId, 4) + littleEndian(text.size(), 4) + text;
  }

  const uint16_t port_ = freePort();
  const std::string book_ = std::to_string(ownNode) + " " + tcpEndpoint(port_);
  mesh_node_options options_ = impatient();
  OpenNode node_;
};

TEST_F(EndlessMessage, EndsItsConnectionWithBoundedMemory) {
  const size_t before = residentMebibytes();
  std::atomic<uint64_t> taken = 0;
  std::atomic<bool> ended = false;
  std::thread peer([&] {
    RawConnection connection(port_);
    const std::string part(64 << 10, 'a');
    // A message may have 2 MiB, so 4 GiB counts as endless.
    while (taken < uint64_t{4} << 30 && connection.sendPart(part, true)) {
      taken += part.size();
    }
    ended = true;
  });
  size_t most = before;
  const Deadline deadline;
  while (!ended && !deadline.passed()) {
    ASSERT_GE(mesh_node_receive(node_, 10, nullptr, nullptr), 0);
    most = std::max(most, residentMebibytes());
  }
  EXPECT_TRUE(ended);
  peer.join();
  EXPECT_LT(taken, uint64_t{1} << 30);
  EXPECT_LT(most, before + 512);
  EXPECT_EQ(statisticsOf(node_).malformed, 1u);

  RawSender sender(tcpEndpoint(port_));
  RawHeader header;
  header.destination = ownNode;
  sender.sendNote(header, "good");
  EXPECT_EQ(receiveNotes(node_, 1).size(), 1u);
  EXPECT_EQ(statisticsOf(node_).received_calls, 1u);
}

TEST_F(EndlessMessage, EndsItsConnectionWhileAThreadWaits) {
  RawConnection connection(port_);
  RawHeader header;
  header.destination = ownNode;
  ASSERT_TRUE(connection.sendPart(header.bytes(), false));
  EXPECT_EQ(receiveUntil(node_, &mesh_node_statistics::received_calls, 1), 1u);
  std::atomic<bool> ended = false;
  uint64_t taken = 0;
  std::chrono::steady_clock::duration took{};
  std::thread peer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const std::string part(64 << 10, 'a');
    const auto start = std::chrono::steady_clock::now();
    while (taken < uint64_t{1} << 30 && connection.sendPart(part, true)) {
      taken += part.size();
    }
    took = std::chrono::steady_clock::now() - start;
    ended = true;
  });
  const Deadline deadline;
  while (!ended && !deadline.passed()) {
    EXPECT_EQ(mesh_node_receive(node_, 700, nullptr, nullptr), 0);
  }
  peer.join();
  EXPECT_LT(taken, uint64_t{1} << 30);
  EXPECT_EQ(statisticsOf(node_).malformed, 1u);
  // The node looks at its connections every 20 ms.
  EXPECT_LT(took, std::chrono::milliseconds(400));
}

TEST_F(EndlessMessage, IsDetectedOnABusyNode) {
  // Slower than the sender, so that there is always more to receive.
  const auto slowly = [](const mesh_received*, void*) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  };
  const auto receive = [&] { ASSERT_GE(mesh_node_receive(node_, 10, slowly, nullptr), 0); };
  const OpenNode other = open(6, options_);
  std::atomic<bool> ended = false;
  std::atomic<uint32_t> failures = 0;
  std::thread busy([&] {
    EXPECT_EQ(mesh_node_attach(other), MESH_OK);
    while (!ended) {
      // After the test the queue stays full.
      const uint32_t result = sendNotes(ownNode, {std::string(1000, 'b')});
      failures += result != MESH_OK && !ended ? 1 : 0;
    }
  });
  const Deadline deadline;
  while (statisticsOf(node_).received_calls < 100 && !deadline.passed()) {
    receive();
  }
  std::atomic<uint64_t> taken = 0;
  std::thread peer([&] {
    RawConnection connection(port_);
    const std::string part(64 << 10, 'a');
    while (taken < uint64_t{1} << 30 && connection.sendPart(part, true)) {
      taken += part.size();
    }
    ended = true;
  });
  while (!ended && !deadline.passed()) {
    receive();
  }
  EXPECT_TRUE(ended);
  peer.join();
  busy.join();
  EXPECT_LT(taken, uint64_t{1} << 30);
  EXPECT_EQ(failures, 0u);
  EXPECT_EQ(statisticsOf(node_).malformed, 1u);
}

// A message of the largest size is accepted, even if it arrives slowly.
TEST_F(EndlessMessage, IsNotALargeMessage) {
  RawConnection connection(port_);
  RawHeader header;
  header.destination = ownNode;
  header.count = payloadLimit / 8;
  header.payloadBytes = payloadLimit;
  std::string index;
  for (uint32_t entry = 0; entry < header.count; ++entry) {
    index += littleEndian(noteId, 4) + littleEndian(8, 4);
  }
  for (uint64_t call = 1; call <= 12; ++call) {
    header.sequence = call;
    // The node checks its connections while most of the message is missing.
    const std::string message = header.bytes() + index + std::string(payloadLimit, 'a');
    ASSERT_TRUE(connection.beginPart(message.size(), message.substr(0, 100)));
    EXPECT_EQ(mesh_node_receive(node_, 50, nullptr, nullptr), 0);
    ASSERT_TRUE(connection.send(message.substr(100)));
    EXPECT_EQ(mesh_node_receive(node_, 10000, nullptr, nullptr), header.count);
  }
  EXPECT_EQ(statisticsOf(node_).malformed, 0u);
  EXPECT_EQ(statisticsOf(node_).received_calls, 12u);
}

// Many complete calls wait for a node that does not receive yet.
TEST_F(EndlessMessage, IsNotABacklogOfCalls) {
  const OpenNode other = open(6, options_);
  ASSERT_EQ(mesh_node_attach(other), MESH_OK);
  uint32_t calls = 0;
  while (calls < 40 && sendNotes(ownNode, {std::string(payloadLimit, 'a')}) == MESH_OK) {
    ++calls;
  }
  ASSERT_GT(calls, 20u);
  EXPECT_EQ(receiveNotes(node_, calls).size(), calls);
  EXPECT_EQ(statisticsOf(node_).malformed, 0u);
  EXPECT_EQ(statisticsOf(node_).lost_calls, 0u);
}

// At a check some connections have delivered nothing since the last one, because ZeroMQ served the
// others.
// The node looks for endless messages while nothing arrives.
TEST_F(EndlessMessage, IsNotALongRowOfCallsWithPauses) {
  const OpenNode other = open(6, options_);
  constexpr uint32_t calls = 10;
  for (int pause = 0; pause < 4; ++pause) {
    std::thread sending([&] {
      EXPECT_EQ(mesh_node_attach(other), MESH_OK);
      for (uint32_t call = 0; call < calls; ++call) {
        EXPECT_EQ(sendNotes(ownNode, {std::string(payloadLimit, 'a')}), MESH_OK);
      }
    });
    EXPECT_EQ(receiveNotes(node_, calls).size(), calls);
    sending.join();
    ASSERT_EQ(mesh_node_receive(node_, 100, nullptr, nullptr), 0);
  }
  EXPECT_EQ(statisticsOf(node_).malformed, 0u);
}

TEST_F(EndlessMessage, IsNotACallThatWaitsForItsTurn) {
  constexpr uint32_t senders = 3;
  constexpr uint32_t callsOfEach = 14;
  std::vector<OpenNode> others;
  for (uint32_t sender = 0; sender < senders; ++sender) {
    others.push_back(open(6 + sender, options_));
    ASSERT_EQ(mesh_node_attach(others.back()), MESH_OK);
    for (uint32_t call = 0; call < callsOfEach; ++call) {
      ASSERT_EQ(sendNotes(ownNode, {std::string(payloadLimit, 'a')}), MESH_OK);
    }
  }
  const auto slowly = [](const mesh_received*, void*) {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  };
  const Deadline deadline;
  while (statisticsOf(node_).received_calls < senders * callsOfEach && !deadline.passed() &&
         statisticsOf(node_).malformed == 0) {
    ASSERT_GE(mesh_node_receive(node_, 1000, slowly, nullptr), 0);
  }
  EXPECT_EQ(statisticsOf(node_).received_calls, senders * callsOfEach);
  EXPECT_EQ(statisticsOf(node_).malformed, 0u);
  EXPECT_EQ(statisticsOf(node_).lost_calls, 0u);
}

// Its connection got the descriptor of one that ended, and the node hears of both only afterwards.
TEST_F(EndlessMessage, IsNotSeenInAConnectionThatFollowsAnother) {
  constexpr uint64_t calls = 40;
  // The node hears of connections when it looks at them, which only this thread makes it do.
  const HeldLibraryThread held(9);
  RawHeader header;
  header.destination = ownNode;
  const std::set<int> before = openDescriptors();
  std::set<int> ofFirst;
  {
    RawConnection first(port_);
    ASSERT_TRUE(first.sendPart(oneNote(header, "a"), false));
    ASSERT_EQ(receiveNotes(node_, 1).size(), 1u);
    ofFirst = openDescriptors();
  }
  for (const Deadline deadline; openDescriptors() != before && !deadline.passed();) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  RawConnection second(port_);
  header.source = 98;
  for (header.sequence = 1; header.sequence <= calls; ++header.sequence) {
    ASSERT_TRUE(second.sendPart(oneNote(header, std::string(payloadLimit, 'a')), false));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(200));  // ZeroMQ reads them
  ASSERT_EQ(openDescriptors(), ofFirst) << "used again";
  for (uint64_t call = 0; call < calls; ++call) {
    ASSERT_EQ(mesh_node_receive(node_, 10'000, nullptr, nullptr), 1) << call;
  }
  // The peer says nothing for some looks.
  for (int look = 0; look < 5; ++look) {
    ASSERT_EQ(mesh_node_receive(node_, 30, nullptr, nullptr), 0);
  }
  EXPECT_EQ(statisticsOf(node_).malformed, 0u);
  ASSERT_TRUE(second.sendPart(oneNote(header, "b"), false));
  EXPECT_EQ(receiveNotes(node_, 1).size(), 1u);
}

// Nothing ends such a connection over ipc. A peer can take memory, but not keep it.
TEST_F(EndlessMessage, TakesMemoryOverIpcUntilItEnds) {
  if (keepsFreedMemory) {
    GTEST_SKIP() << "the sanitizer has its own allocator";
  }
  const OpenNode node = open(7);
  constexpr size_t parts = 1 << 19;
  const std::string empty("\x01\0", 2);
  std::string all;
  for (size_t part = 0; part < parts; ++part) {
    all += empty;
  }
  const auto inUse = [] {
    const struct mallinfo2 now = mallinfo2();
    return now.uordblks + now.hblkhd;
  };
  const auto waitFor = [&](auto&& holds) {
    for (const Deadline deadline; !holds() && !deadline.passed();) {
      EXPECT_EQ(mesh_node_receive(node, 10, nullptr, nullptr), 0);
    }
  };
  const size_t before = inUse();
  constexpr size_t little = 1 << 20;
  for (const bool complete : {true, false}) {
    RawConnection connection(directory() + "/7");
    ASSERT_TRUE(connection.send(all));
    waitFor([&] { return inUse() >= before + parts * 60; });
    EXPECT_GE(inUse(), before + parts * 60);
    EXPECT_LE(inUse(), before + parts * 66 + little);
    if (complete) {
      ASSERT_TRUE(connection.send(std::string(2, '\0')));
      waitFor([&] { return statisticsOf(node).malformed == 1; });
      EXPECT_EQ(statisticsOf(node).malformed, 1u);
      EXPECT_LE(inUse(), before + little);
    }
  }
  waitFor([&] { return inUse() <= before + little; });
  EXPECT_LE(inUse(), before + little);
  EXPECT_EQ(statisticsOf(node).malformed, 1u);
}

}  // namespace
}  // namespace platform_test
