// One allocation of the middleware fails, each in turn.
#include <algorithm>
#include <chrono>
#include <climits>
#include <thread>

#include "support/failing_allocation.hpp"
#include "support/held_library_thread.hpp"
#include "support/node_fixture.hpp"

namespace platform_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Allocation : public NodeFixture, public ::testing::WithParamInterface<mesh_transport> {
 protected:
  // With a hook: each change of a peer takes memory. Few calls reach the water marks.
  static mesh_node_options options() {
    mesh_node_options options = defaults();
    options.transport = GetParam();
    options.send_queue_calls = 8;
    options.peer = [](const mesh_peer_event*, void*) {};
    return options;
  }

  static mesh_result sendTo(uint32_t destination, mesh_node* node, int32_t patience = 1000) {
    const mesh_msg_desc note{
        .data = reinterpret_cast<uintptr_t>("n"), .msg_id = noteId, .length = 1};
    return mesh_node_send(node, destination, &note, 1, 0, patience);
  }

  // Takes what arrives, and waits until `least` records have. Returns their number.
  static uint64_t take(mesh_node* node, uint64_t least) {
    uint64_t taken = 0;
    const Deadline deadline;
    int64_t each = 0;
    do {
      each = mesh_node_receive(node, 20, nullptr, nullptr);
      EXPECT_GE(each, 0) << mesh_node_last_error();
      taken += static_cast<uint64_t>(std::max<int64_t>(each, 0));
    } while ((taken < least || each > 0) && !deadline.passed());
    return taken;
  }

  // Closes the node, soon. Returns its undelivered calls.
  static uint64_t undeliveredAtClosing(OpenNode& node) {
    mesh_node_statistics last{};
    const auto start = steady_clock::now();
    mesh_node* const handle = node.release();
    const mesh_result result = mesh_node_close_counted(handle, &last);
    EXPECT_LT(since(start), milliseconds(5000));
    EXPECT_TRUE(result == MESH_OK || result == MESH_UNDELIVERED) << mesh_node_last_error();
    return last.undelivered_calls;
  }
};

INSTANTIATE_TEST_SUITE_P(Transports, Allocation, bothTransports, transportName);

TEST_P(Allocation, OfAnOpenMayFail) {
  int number = 1;
  for (bool failed = true; failed; ++number) {
    {
      const FailingAllocation failing(number);
      mesh_node* node = nullptr;
      const mesh_node_options each = options();
      const mesh_result result = mesh_node_open(2, &each, &node);
      failed = FailingAllocation::happened();
      EXPECT_EQ(result, failed ? MESH_OUT_OF_MEMORY : MESH_OK) << number;
      const OpenNode closing(node);
    }
    EXPECT_EQ(resultOfOpening(2, options()), MESH_OK) << number << mesh_node_last_error();
  }
  EXPECT_GT(number, 2) << "no allocation failed";
}

TEST_P(Allocation, OfASendMayFail) {
  for (const bool connected : {true, false}) {
    int number = 1;
    for (bool failed = true; failed; ++number) {
      OpenNode sender = open(1, options());
      const OpenNode receiver = open(2, options());
      uint64_t sent = 0;
      if (connected) {
        ASSERT_EQ(sendTo(2, sender), MESH_OK);
        ++sent;
      }
      uint64_t refused = 0;
      {
        const FailingAllocation failing(number);
        for (int call = 0; call < 7; ++call) {
          ++(sendTo(2, sender) == MESH_OK ? sent : refused);
        }
        failed = FailingAllocation::happened();
      }
      EXPECT_LE(refused, 1u) << number;
      EXPECT_EQ(take(receiver, sent), sent) << number;
      ASSERT_EQ(sendTo(2, sender), MESH_OK) << number << mesh_node_last_error();
      EXPECT_EQ(take(receiver, 1), 1u) << number;
      EXPECT_EQ(statisticsOf(sender).sent_calls, sent + 1);
      EXPECT_EQ(statisticsOf(sender).failed_other, refused);
      EXPECT_EQ(statisticsOf(receiver).lost_calls, 0u);
      EXPECT_EQ(undeliveredAtClosing(sender), 0u);
    }
    EXPECT_GT(number, 2) << "no allocation failed";
  }
}

// The memory of the unconfirmed calls grows.
TEST_P(Allocation, OfALongQueueMayFail) {
  mesh_node_options wide = options();
  wide.send_queue_calls = 1024;
  int number = 1;
  for (bool failed = true; failed; ++number) {
    OpenNode sender = open(1, wide);
    const OpenNode receiver = open(2, wide);
    uint64_t sent = 0;
    {
      const FailingAllocation failing(number);
      for (int call = 0; call < 300; ++call) {
        sent += sendTo(2, sender) == MESH_OK ? 1 : 0;
      }
      failed = FailingAllocation::happened();
    }
    EXPECT_GE(sent, 299u) << number;
    EXPECT_EQ(take(receiver, sent), sent) << number;
    EXPECT_EQ(undeliveredAtClosing(sender), 0u) << number;
  }
  EXPECT_GT(number, 2) << "no allocation failed";
}

TEST_P(Allocation, OfAReceiveMayFail) {
  for (const bool connected : {true, false}) {
    int number = 1;
    for (bool failed = true; failed; ++number) {
      OpenNode sender = open(1, options());
      const OpenNode receiver = open(2, options());
      uint64_t sent = 7;
      uint64_t delivered = 0;
      if (connected) {
        ASSERT_EQ(sendTo(2, sender), MESH_OK);
        ++sent;
        ASSERT_EQ(take(receiver, 1), 1u);
        ++delivered;
      }
      std::thread sending([&] {
        for (int call = 0; call < 7; ++call) {
          EXPECT_EQ(sendTo(2, sender), MESH_OK);
        }
      });
      {
        const FailingAllocation failing(number);
        for (int call = 0; call < 7; ++call) {
          const int64_t taken = mesh_node_receive(receiver, 100, nullptr, nullptr);
          EXPECT_TRUE(taken >= 0 || taken == -MESH_OUT_OF_MEMORY) << mesh_node_last_error();
          delivered += static_cast<uint64_t>(std::max<int64_t>(taken, 0));
        }
        failed = FailingAllocation::happened();
      }
      sending.join();
      const uint64_t undelivered = undeliveredAtClosing(sender);
      delivered += take(receiver, sent - std::min(sent, delivered + undelivered));
      EXPECT_EQ(delivered + undelivered, sent) << number;
      const mesh_node_statistics counters = statisticsOf(receiver);
      EXPECT_EQ(delivered + counters.lost_calls + counters.missed_before_first, sent) << number;
    }
    EXPECT_GT(number, 2) << "no allocation failed";
  }
}

// Each call waits until the one before is confirmed. The library's thread does not hear of that.
TEST_P(Allocation, OfAWaitMayFail) {
  const HeldLibraryThread held(9);
  mesh_node_options narrow = options();
  narrow.send_queue_calls = 1;
  int number = 1;
  for (bool failed = true; failed; ++number) {
    OpenNode sender = open(1, narrow);
    const OpenNode receiver = open(2, narrow);
    ASSERT_EQ(sendTo(2, sender), MESH_OK);
    uint64_t sent = 1;
    uint64_t taken = 0;
    std::thread receiving([&] {
      std::this_thread::sleep_for(milliseconds(10));
      taken = take(receiver, 4);
    });
    {
      const FailingAllocation failing(number);
      for (int call = 0; call < 4; ++call) {
        sent += sendTo(2, sender) == MESH_OK ? 1 : 0;
      }
      failed = FailingAllocation::happened();
    }
    receiving.join();
    EXPECT_GE(sent, 4u) << number;
    taken += take(receiver, sent - taken);
    EXPECT_EQ(taken, sent) << number;
    EXPECT_EQ(undeliveredAtClosing(sender), 0u) << number;
  }
  EXPECT_GT(number, 2) << "no allocation failed";
}

// The closing thread hears what the library's thread would have heard before.
TEST_P(Allocation, OfACloseMayFail) {
  const HeldLibraryThread held(9);
  for (const bool receiverFails : {false, true}) {
    int number = 1;
    for (bool failed = true; failed; ++number) {
      OpenNode sender = open(1, options());
      OpenNode receiver = open(2, options());
      for (int call = 0; call < 7; ++call) {
        ASSERT_EQ(sendTo(2, sender), MESH_OK);
      }
      EXPECT_EQ(take(receiver, 7), 7u) << number;
      for (OpenNode* const node : {&sender, &receiver}) {
        const bool fails = (node == &receiver) == receiverFails;
        const FailingAllocation failing(fails ? number : INT_MAX);
        EXPECT_EQ(undeliveredAtClosing(*node), 0u) << number;
        failed = fails ? FailingAllocation::happened() : failed;
      }
      for (const uint32_t address : {1u, 2u}) {
        EXPECT_EQ(resultOfOpening(address, options()), MESH_OK) << number << mesh_node_last_error();
      }
    }
    EXPECT_GT(number, 2) << "no allocation failed";
  }
}

// The receiver has closed before, and has not delivered all.
TEST_P(Allocation, OfACloseThatCountsMayFail) {
  const HeldLibraryThread held(9);
  int number = 1;
  for (bool failed = true; failed; ++number) {
    OpenNode sender = open(1, options());
    OpenNode receiver = open(2, options());
    for (int call = 0; call < 7; ++call) {
      ASSERT_EQ(sendTo(2, sender), MESH_OK);
    }
    ASSERT_EQ(mesh_node_receive(receiver, 1000, nullptr, nullptr), 1);
    ASSERT_EQ(receiver.close(), MESH_OK);
    const FailingAllocation failing(number);
    EXPECT_EQ(undeliveredAtClosing(sender), 6u) << number;
    failed = FailingAllocation::happened();
  }
  EXPECT_GT(number, 2) << "no allocation failed";
}

// It takes calls and answers while no other thread does.
TEST_P(Allocation, OfTheLibrarysThreadMayFail) {
  int number = 1;
  for (bool failed = true; failed; ++number) {
    OpenNode sender = open(1, options());
    const OpenNode receiver = open(2, options());
    uint64_t sent = 0;
    {
      const FailingAllocation failing(number, Threads::Others);
      OpenNode other = open(3, options());
      for (mesh_node* const each :
           {static_cast<mesh_node*>(sender), static_cast<mesh_node*>(other)}) {
        for (int call = 0; call < 3; ++call) {
          ASSERT_EQ(sendTo(2, each), MESH_OK);
          ++sent;
        }
      }
      std::this_thread::sleep_for(milliseconds(60));
      sent -= undeliveredAtClosing(other);
      failed = FailingAllocation::happened();
    }
    sent -= undeliveredAtClosing(sender);
    EXPECT_EQ(take(receiver, sent), sent) << number;
  }
  EXPECT_GT(number, 2) << "no allocation failed";
}

}  // namespace
}  // namespace platform_test
