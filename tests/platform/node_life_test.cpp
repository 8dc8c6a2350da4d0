// Opening, attaching and closing nodes. Registration of hooks.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <thread>

#include "support/node_fixture.hpp"

namespace platform_test {
namespace {

class NodeLife : public NodeFixture {};
using Registration = NodeLife;

TEST_F(NodeLife, RejectsSendsWithoutAnOpenNode) {
  EXPECT_EQ(sendNotes(1, {"a"}), MESH_NOT_OPEN);
  EXPECT_STRNE(mesh_node_last_error(), "");
}

TEST_F(NodeLife, RejectsSendsAfterTheLastClose) {
  ASSERT_EQ(open(1).close(), MESH_OK);
  EXPECT_EQ(sendNotes(1, {"a"}), MESH_NOT_OPEN);
}

TEST_F(NodeLife, SendsFromTheOldestOpenNodeByDefault) {
  OpenNode first = open(1);
  const OpenNode second = open(2);
  const OpenNode receiver = open(3);
  ASSERT_EQ(sendNotes(3, {"a"}), MESH_OK);
  ASSERT_EQ(first.close(), MESH_OK);
  ASSERT_EQ(sendNotes(3, {"b"}), MESH_OK);
  const std::vector<Received> notes = receiveNotes(receiver, 2);
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[0].source, 1u);
  EXPECT_EQ(notes[1].source, 2u);
}

TEST_F(NodeLife, SendsFromTheThreadsAttachedNode) {
  const OpenNode first = open(1);
  const OpenNode second = open(2);
  ASSERT_EQ(mesh_node_attach(second), MESH_OK);
  ASSERT_EQ(sendNotes(1, {"attached"}), MESH_OK);
  std::thread([] { EXPECT_EQ(sendNotes(1, {"other thread"}), MESH_OK); }).join();
  ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  ASSERT_EQ(sendNotes(1, {"detached"}), MESH_OK);
  std::vector<Received> notes = receiveNotes(first, 3);
  ASSERT_EQ(notes.size(), 3u);
  for (const Received& note : notes) {
    EXPECT_EQ(note.source, note.text == "attached" ? 2u : 1u) << note.text;
  }
}

TEST_F(NodeLife, RejectsSendsFromAClosedAttachedNode) {
  const OpenNode other = open(1);
  OpenNode node = open(2);
  ASSERT_EQ(mesh_node_attach(node), MESH_OK);
  ASSERT_EQ(node.close(), MESH_OK);
  EXPECT_EQ(sendNotes(1, {"a"}), MESH_NOT_OPEN);
  ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  EXPECT_EQ(sendNotes(1, {"a"}), MESH_OK);
}

TEST_F(NodeLife, RejectsAClosedHandle) {
  mesh_node* node = nullptr;
  ASSERT_EQ(mesh_node_open(1, nullptr, &node), MESH_OK);
  ASSERT_EQ(mesh_node_close(node), MESH_OK);
  mesh_node_statistics statistics;
  EXPECT_EQ(mesh_node_close(node), MESH_NOT_OPEN);
  EXPECT_EQ(mesh_node_attach(node), MESH_NOT_OPEN);
  EXPECT_EQ(mesh_node_stats(node, &statistics), MESH_NOT_OPEN);
  EXPECT_EQ(mesh_node_receive(node, 0, nullptr, nullptr), -MESH_NOT_OPEN);
  EXPECT_EQ(mesh_node_close(nullptr), MESH_NOT_OPEN);
}

TEST_F(NodeLife, RejectsBadArguments) {
  EXPECT_EQ(mesh_node_open(1, nullptr, nullptr), MESH_BAD_ARGUMENT);
  const OpenNode node = open(1);
  EXPECT_EQ(mesh_node_stats(node, nullptr), MESH_BAD_ARGUMENT);

  mesh_node_options options = defaults();
  options.transport = 7;
  EXPECT_EQ(resultOfOpening(2, options), MESH_BAD_ARGUMENT);
  options = defaults();
  options.send_queue_calls = 0;
  EXPECT_EQ(resultOfOpening(2, options), MESH_BAD_ARGUMENT);
  options = defaults();
  options.receive_queue_calls = UINT32_MAX;
  EXPECT_EQ(resultOfOpening(2, options), MESH_BAD_ARGUMENT);
  options = defaults();
  options.linger_ms = UINT32_MAX;
  EXPECT_EQ(resultOfOpening(2, options), MESH_BAD_ARGUMENT);
  options = defaults();
  options.payload_limit = 0;
  EXPECT_EQ(resultOfOpening(2, options), MESH_BAD_ARGUMENT);
}

TEST_F(NodeLife, RejectsAnAddressInUse) {
  const OpenNode node = open(7);
  EXPECT_EQ(resultOfOpening(7, defaults()), MESH_ADDRESS_IN_USE);

  mesh_node_options inproc = defaults();
  inproc.transport = MESH_TRANSPORT_INPROC;
  const OpenNode inside = open(7, inproc);
  EXPECT_EQ(resultOfOpening(7, inproc), MESH_ADDRESS_IN_USE);
}

TEST_F(NodeLife, KeepsNoAddressThatItCouldNotOpen) {
  const std::string socket = directory() + "/1";
  ASSERT_EQ(mkdir(socket.c_str(), 0700), 0);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_BAD_CONFIGURATION);
  ASSERT_EQ(rmdir(socket.c_str()), 0);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_OK) << mesh_node_last_error();
}

TEST_F(NodeLife, RaisesTheProcessesLimitOfDescriptors) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit low{.rlim_cur = 200, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
  rlimit after = low;
  // Not every open looks at the limit.
  for (int round = 0; round < 100 && after.rlim_cur != before.rlim_max; ++round) {
    ASSERT_EQ(open(1).close(), MESH_OK);
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &after), 0);
  }
  EXPECT_EQ(after.rlim_cur, before.rlim_max);
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
}

TEST_F(NodeLife, RejectsALockThatIsALink) {
  const std::string elsewhere = directory() + "/elsewhere";
  ASSERT_EQ(symlink(elsewhere.c_str(), (directory() + "/1.lock").c_str()), 0);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_SYSTEM_ERROR);
  struct stat status {};
  EXPECT_NE(stat(elsewhere.c_str(), &status), 0) << "not made";
}

TEST_F(NodeLife, KeepsItsSocketUntilItCloses) {
  const std::string socket = directory() + "/1";
  OpenNode node = open(1);
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(stat(socket.c_str(), &before), 0);
  // It looks after the socket while it receives.
  ASSERT_EQ(mesh_node_receive(node, 600, nullptr, nullptr), 0);
  ASSERT_EQ(stat(socket.c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);
  ASSERT_EQ(node.close(), MESH_OK);
  EXPECT_NE(stat(socket.c_str(), &after), 0);
}

TEST_F(NodeLife, RejectsASecondReceiver) {
  const OpenNode node = open(1);
  // The thread keeps receiving, so the test will call at the same time.
  std::atomic<bool> done = false;
  std::thread first([&] {
    while (!done) {
      static_cast<void>(mesh_node_receive(node, 20, nullptr, nullptr));
    }
  });
  int64_t second = 0;
  const Deadline deadline;
  while (second == 0 && !deadline.passed()) {
    second = mesh_node_receive(node, 0, nullptr, nullptr);
  }
  done = true;
  first.join();
  EXPECT_EQ(second, -MESH_BUSY);
}

TEST_F(NodeLife, RejectsCloseDuringReceive) {
  const OpenNode node = open(1);
  ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK);
  struct Closing {
    mesh_node* node;
    mesh_result result;
  } closing{node, MESH_OK};
  const auto close = [](const mesh_received*, void* user) {
    auto* attempt = static_cast<Closing*>(user);
    attempt->result = mesh_node_close(attempt->node);
  };
  ASSERT_EQ(mesh_node_receive(node, 10000, close, &closing), 1);
  EXPECT_EQ(closing.result, MESH_BUSY);
}

TEST_F(NodeLife, RejectsUseInAForkedChild) {
  const OpenNode node = open(1);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    mesh_node_statistics statistics;
    mesh_node* own = nullptr;
    const bool refused = mesh_node_open(2, nullptr, &own) == MESH_NOT_OPEN && own == nullptr &&
                         sendNotes(1, {"a"}) == MESH_NOT_OPEN &&
                         mesh_node_stats(node, &statistics) == MESH_NOT_OPEN &&
                         mesh_node_close(node) == MESH_NOT_OPEN;
    _exit(refused ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(sendNotes(1, {"from the parent"}), MESH_OK);
  EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
}

TEST_F(Registration, RejectsNullHooks) {
  const mesh_unpack_hook unpack = [](const uint8_t*, uint32_t, void*) { return 0u; };
  const mesh_free_hook release = [](void*) {};
  EXPECT_EQ(MESH_RegIDLFuncHook(1, nullptr, release), uint32_t{MESH_BAD_ARGUMENT});
  EXPECT_EQ(MESH_RegIDLFuncHook(1, unpack, nullptr), uint32_t{MESH_BAD_ARGUMENT});
  EXPECT_EQ(MESH_RegIDLResorceCleanFuncHook(nullptr), uint32_t{MESH_BAD_ARGUMENT});
}

TEST_F(Registration, ReplacesAnEarlierRegistration) {
  const mesh_free_hook release = [](void*) {};
  const mesh_unpack_hook one = [](const uint8_t*, uint32_t, void*) { return 1u; };
  const mesh_unpack_hook two = [](const uint8_t*, uint32_t, void*) { return 2u; };
  const OpenNode node = open(1);
  const auto sizeReceived = [&] {
    uint32_t size = 0;
    EXPECT_EQ(sendNotes(1, {"a"}, 0, 0x2001), MESH_OK);
    EXPECT_EQ(mesh_node_receive(
                  node, 10000,
                  [](const mesh_received* received, void* user) {
                    *static_cast<uint32_t*>(user) = received->record_size;
                  },
                  &size),
              1);
    return size;
  };
  ASSERT_EQ(MESH_RegIDLFuncHook(0x2001, one, release), uint32_t{MESH_OK});
  EXPECT_EQ(sizeReceived(), 1u);
  ASSERT_EQ(MESH_RegIDLFuncHook(0x2001, two, release), uint32_t{MESH_OK});
  EXPECT_EQ(sizeReceived(), 2u);
}

std::atomic<int> firstCleaned = 0;
std::atomic<int> secondCleaned = 0;

TEST_F(Registration, CallsEachCleanHookOnceAtTheLastClose) {
  const mesh_clean_hook first = [] { ++firstCleaned; };
  const mesh_clean_hook second = [] { ++secondCleaned; };
  ASSERT_EQ(MESH_RegIDLResorceCleanFuncHook(first), uint32_t{MESH_OK});
  ASSERT_EQ(MESH_RegIDLResorceCleanFuncHook(first), uint32_t{MESH_OK});
  ASSERT_EQ(MESH_RegIDLResorceCleanFuncHook(second), uint32_t{MESH_OK});
  OpenNode one = open(1);
  OpenNode two = open(2);
  ASSERT_EQ(one.close(), MESH_OK);
  EXPECT_EQ(firstCleaned, 0);
  ASSERT_EQ(two.close(), MESH_OK);
  EXPECT_EQ(firstCleaned, 1);
  EXPECT_EQ(secondCleaned, 1);
  ASSERT_EQ(open(3).close(), MESH_OK);
  EXPECT_EQ(firstCleaned, 2);
}

// By SIGSEGV, or with a sanitizer's nonzero exit code.
bool diedAtTheGuardPage(int status) {
  return WIFSIGNALED(status) ? WTERMSIG(status) == SIGSEGV : WEXITSTATUS(status) != 0;
}

TEST_F(Registration, GivesDecodersAZeroedMebibyteWithAGuardPage) {
  constexpr uint32_t areaSize = 1 << 20;
  const mesh_free_hook release = [](void*) {};
  const mesh_unpack_hook fill = [](const uint8_t*, uint32_t length, void* record) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(record) % static_cast<uintptr_t>(sysconf(_SC_PAGESIZE)),
              0u);
    auto* bytes = static_cast<unsigned char*>(record);
    for (uint32_t i = 0; i < areaSize; ++i) {
      if (bytes[i] != 0) {
        ADD_FAILURE() << "byte " << i << " is not zero";
        break;
      }
    }
    std::memset(bytes, 0xFF, areaSize);
    if (length > 1) {
      std::fputs("decoding\n", stderr);
      *static_cast<volatile unsigned char*>(bytes + areaSize) = 1;
    }
    return areaSize;
  };
  ASSERT_EQ(MESH_RegIDLFuncHook(0x2002, fill, release), uint32_t{MESH_OK});
  {
    const OpenNode node = open(1);
    ASSERT_EQ(sendNotes(1, {"1", "2"}, 0, 0x2002), MESH_OK);
    EXPECT_EQ(mesh_node_receive(node, 10000, nullptr, nullptr), 2);
  }
  const auto overrun = [] {
    const OpenNode node = open(1);
    static_cast<void>(sendNotes(1, {"over"}, 0, 0x2002));
    static_cast<void>(mesh_node_receive(node, 10000, nullptr, nullptr));
  };
  // Only the guard page ends the child this way, after the decoder has the record. A sanitizer
  // handles the signal and reports SEGV instead.
  EXPECT_EXIT(overrun(), diedAtTheGuardPage, "decoding|SEGV");
}

TEST(ResultText, IsDifferentForEachResult) {
  for (uint32_t one = 0; one <= MESH_BAD_CONFIGURATION; ++one) {
    for (uint32_t other = one + 1; other <= MESH_BAD_CONFIGURATION + 1; ++other) {
      EXPECT_STRNE(mesh_result_text(one), mesh_result_text(other));
    }
  }
  EXPECT_STREQ(mesh_result_text(0xFFFFFFFF), "unknown result");
}

}  // namespace
}  // namespace platform_test
