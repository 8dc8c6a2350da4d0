// One allocation of the middleware fails, each in turn.
#include <dlfcn.h>
#include <link.h>
#include <unwind.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <thread>

#include "support/node_fixture.hpp"
#include "support/own_process.hpp"

namespace platform_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How many allocations of the middleware are left until one fails; 0: none fails.
std::atomic<int> untilFailure = 0;
// Which threads it concerns.
enum class Threads { This, Others };
std::atomic<Threads> failingThreads = Threads::This;
thread_local bool isThisThread = false;

// Makes allocation `number`, from 1, fail during its own lifetime.
class FailingAllocation {
 public:
  explicit FailingAllocation(int number, Threads which = Threads::This) {
    isThisThread = true;
    failingThreads = which;
    untilFailure = number;
  }
  ~FailingAllocation() {
    untilFailure = 0;
    isThisThread = false;
  }
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  static bool happened() { return untilFailure == 0; }
};

// Where a loaded library lies in memory.
struct Library {
  explicit Library(const char* part) : name(part) {
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* user) {
          auto& self = *static_cast<Library*>(user);
          if (std::strstr(info->dlpi_name, self.name) == nullptr) {
            return 0;
          }
          for (int i = 0; i < info->dlpi_phnum; ++i) {
            const auto& segment = info->dlpi_phdr[i];
            if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
              self.begin = info->dlpi_addr + segment.p_vaddr;
              self.end = self.begin + segment.p_memsz;
            }
          }
          return 1;
        },
        this);
  }
  bool has(uintptr_t address) const { return begin <= address && address < end; }

  const char* name;
  uintptr_t begin = 0;
  uintptr_t end = 0;
};

const Library middleware("libzarnimesh");
const Library standard("libstdc++");

// Whether the middleware allocates, itself or through the standard library. `caller`: of operator
// new.
bool isOfMiddleware(const void* caller) {
  struct Walk {
    uintptr_t caller;
    bool reached = false;
    bool found = false;
  } walk{.caller = reinterpret_cast<uintptr_t>(caller)};
  _Unwind_Backtrace(
      [](_Unwind_Context* context, void* user) {
        auto& self = *static_cast<Walk*>(user);
        const uintptr_t address = _Unwind_GetIP(context);
        self.reached = self.reached || address == self.caller;
        if (!self.reached || standard.has(address)) {
          return _URC_NO_REASON;
        }
        self.found = middleware.has(address);
        return _URC_END_OF_STACK;
      },
      &walk);
  return walk.found;
}

bool allocationFails(const void* caller) {
  return untilFailure > 0 && isThisThread == (failingThreads == Threads::This) &&
         isOfMiddleware(caller) && --untilFailure == 0;
}

}  // namespace
}  // namespace platform_test

void* operator new(size_t size) {
  if (platform_test::allocationFails(__builtin_return_address(0))) {
    throw std::bad_alloc();
  }
  // The sanitizers' functions know by which one a block was allocated.
  void* const block = platform_test::keepsFreedMemory ? operator new(size, std::nothrow)
                                                      : std::malloc(size > 0 ? size : 1);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

namespace platform_test {
namespace {

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
  bool failed = true;
  for (int number = 1; failed; ++number) {
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
}

TEST_P(Allocation, OfASendMayFail) {
  for (const bool connected : {true, false}) {
    bool failed = true;
    for (int number = 1; failed; ++number) {
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
  }
}

// The memory of the unconfirmed calls grows.
TEST_P(Allocation, OfALongQueueMayFail) {
  mesh_node_options wide = options();
  wide.send_queue_calls = 1024;
  bool failed = true;
  for (int number = 1; failed; ++number) {
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
}

TEST_P(Allocation, OfAReceiveMayFail) {
  for (const bool connected : {true, false}) {
    bool failed = true;
    for (int number = 1; failed; ++number) {
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
          const int64_t taken = mesh_node_receive(receiver, 20, nullptr, nullptr);
          EXPECT_TRUE(taken >= 0 || taken == -MESH_OUT_OF_MEMORY) << mesh_node_last_error();
          delivered += static_cast<uint64_t>(std::max<int64_t>(taken, 0));
        }
        failed = FailingAllocation::happened();
      }
      sending.join();
      delivered += take(receiver, 0);
      const uint64_t undelivered = undeliveredAtClosing(sender);
      EXPECT_EQ(delivered + undelivered, sent) << number;
      const mesh_node_statistics counters = statisticsOf(receiver);
      EXPECT_EQ(delivered + counters.lost_calls + counters.missed_before_first, sent) << number;
    }
  }
}

// A thread waits for room meanwhile.
TEST_P(Allocation, OfAWaitMayFail) {
  bool failed = true;
  for (int number = 1; failed; ++number) {
    OpenNode sender = open(1, options());
    const OpenNode receiver = open(2, options());
    for (int call = 0; call < 8; ++call) {
      ASSERT_EQ(sendTo(2, sender), MESH_OK);
    }
    uint64_t sent = 8;
    uint64_t taken = 0;
    std::thread receiving([&] {
      std::this_thread::sleep_for(milliseconds(10));
      taken = take(receiver, 8);
    });
    {
      const FailingAllocation failing(number);
      for (int call = 0; call < 4; ++call) {
        sent += sendTo(2, sender) == MESH_OK ? 1 : 0;
      }
      failed = FailingAllocation::happened();
    }
    receiving.join();
    EXPECT_GE(sent, 11u) << number;
    taken += take(receiver, sent - taken);
    EXPECT_EQ(taken, sent) << number;
    EXPECT_EQ(undeliveredAtClosing(sender), 0u) << number;
  }
}

TEST_P(Allocation, OfACloseMayFail) {
  bool failed = true;
  for (int number = 1; failed; ++number) {
    OpenNode sender = open(1, options());
    OpenNode receiver = open(2, options());
    for (int call = 0; call < 7; ++call) {
      ASSERT_EQ(sendTo(2, sender), MESH_OK);
    }
    failed = false;
    for (OpenNode* const node : {&sender, &receiver}) {
      {
        const FailingAllocation failing(number);
        EXPECT_EQ(undeliveredAtClosing(*node), 0u) << number;
        failed = failed || FailingAllocation::happened();
      }
      if (node == &sender) {
        EXPECT_EQ(take(receiver, 7), 7u) << number;
      }
    }
    for (const uint32_t address : {1u, 2u}) {
      EXPECT_EQ(resultOfOpening(address, options()), MESH_OK) << number << mesh_node_last_error();
    }
  }
}

// The receiver has closed before, and has not delivered all.
TEST_P(Allocation, OfACloseThatCountsMayFail) {
  bool failed = true;
  for (int number = 1; failed; ++number) {
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
}

// It takes calls and answers while no other thread does.
TEST_P(Allocation, OfTheLibrarysThreadMayFail) {
  bool failed = true;
  for (int number = 1; failed; ++number) {
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
    const uint64_t delivered = take(receiver, 0);
    EXPECT_EQ(delivered + undeliveredAtClosing(sender), sent) << number;
  }
}

}  // namespace
}  // namespace platform_test
