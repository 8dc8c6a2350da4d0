// The functions of host and middleware call the library while it calls them.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "ddm/osal.h"
#include "host/process.hpp"
#include "host/scenarios.hpp"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"
#include "zarnimesh/mesh.h"

namespace {

using harness::inANewProcess;
using harness::Lines;
using harness::note;

// The function of host or middleware that calls the library, if any.
std::string caller;
// Whether its calls are running: functions that they call do not call the library again.
bool isInside = false;
int entries = 0;

bool receiveStp() {
  const l2vpn_sync_stp sent{1, 2, 3, 4};
  std::array<uint8_t, 64> buffer;
  uint32_t length = buffer.size();
  l2vpn_sync_stp read;
  return l2vpn_sync_stp__pack(&sent, buffer.data(), &length) == 0 &&
         l2vpn_sync_stp__unpack(buffer.data(), length, &read) == sizeof read &&
         std::memcmp(&sent, &read, sizeof read) == 0;
}

bool sendBatches() {
  const std::array<dbginfo_key_l2vpn, 2> keys{};
  const std::array<l2vpn_stat_pw_stat, 3> counters{};
  return dbginfo_key_l2vpn__sendbatch(1, keys.data(), 2, 0) == 0 &&
         l2vpn_stat_pw_stat__sendtomsg(1, counters.data(), 3, 7) == 0 &&
         l2vpn_stat_pw_stat__sendsingle(1, counters.data(), 0, 0) == 0;
}

bool registerAll() {
  return l2vpn_cfg_recv_init() == 0 && l2vpn_sync_recv_init() == 0 && l2vpn_cfg_send_init() == 0;
}

// Calls every operation. The calls reach every function of host and middleware.
void callAll(const std::string& who) {
  note(who + (harness::receiveText() ? " received" : " did not receive"));
  note(who + (harness::receiveNothing() ? " was refused" : " was not refused"));
  note(who + (harness::packToNowhere() ? " was told the size" : " was not told the size"));
  note(who + (receiveStp() ? " packed" : " did not pack"));
  note(who + (harness::sendKey() ? " sent" : " did not send"));
  note(who + (sendBatches() ? " sent batches" : " did not send batches"));
  note(who + (registerAll() ? " registered" : " did not register"));
}

void enter(const std::string& function) {
  if (function == caller && !isInside) {
    isInside = true;
    ++entries;
    callAll(function);
    isInside = false;
  }
}

// The descriptors and their tables do not change while the middleware calls the library.
uint32_t take(const std::string& function, const mesh_msg_desc* descriptors, uint32_t count) {
  const auto contents = [&] {
    std::string bytes;
    for (uint32_t index = 0; index < count; ++index) {
      bytes += std::to_string(descriptors[index].msg_id) + " ";
      bytes.append(reinterpret_cast<const char*>(descriptors[index].data),
                   descriptors[index].length);
    }
    return bytes;
  };
  const std::string before = contents();
  enter(function);
  if (contents() != before) {
    note("a table changed");
  }
  return 0;
}

// The note of `who` if everything is correct.
Lines allWell(const std::string& who) {
  return {who + " received", who + " was refused",  who + " was told the size", who + " packed",
          who + " sent",     who + " sent batches", who + " registered"};
}

class Reentry : public testing::TestWithParam<const char*> {
 protected:
  // A process in which the function calls the library. Each of its calls, and the outer call, notes
  // that everything is correct.
  static void expectAllWell(const std::function<void()>& before) {
    const Lines lines = inANewProcess([&] {
      alarm(20);  // a deadlocked call never ends
      before();
      caller = GetParam();
      callAll("program");
      note(entries > 0 ? "entered" : "never entered");
    });
    Lines programs;
    Lines functions;
    for (const std::string& line : lines) {
      (line.rfind(GetParam(), 0) == 0 ? functions : programs).push_back(line);
    }
    Lines expected = allWell("program");
    expected.emplace_back("entered");
    EXPECT_EQ(programs, expected);
    const Lines once = allWell(GetParam());
    ASSERT_EQ(functions.size() % once.size(), 0U);
    for (size_t at = 0; at < functions.size(); ++at) {
      EXPECT_EQ(functions[at], once[at % once.size()]);
    }
  }
};

TEST_P(Reentry, AtTheFirstUse) {
  expectAllWell([] {});
}

TEST_P(Reentry, OnceAllIsBound) {
  expectAllWell([] {
    callAll("before");
    harness::forgetNotes();
  });
}

// Not DDM_OsalMemUseFlagGet: the library calls it under the lock of the module that it binds.
INSTANTIATE_TEST_SUITE_P(From, Reentry,
                         testing::Values("DDM_OsalLogWrite", "DDM_OsalMemAlloc",
                                         "DDM_OsalMemCacheAlloc", "DDM_OsalMemFree", "MESH_SendMsg",
                                         "MESH_SendToMsg", "MESH_RegIDLFuncHook",
                                         "MESH_RegIDLResorceCleanFuncHook"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace

extern "C" {

void DDM_OsalLogWrite(const void*, uint32_t, uint32_t, const char*, uint32_t, const char*,
                      const char*, ...) {
  enter("DDM_OsalLogWrite");
}
void* DDM_OsalMemAlloc(uint32_t size, uint32_t, const char*) {
  enter("DDM_OsalMemAlloc");
  return std::malloc(size);
}
void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t, const char*) {
  enter("DDM_OsalMemCacheAlloc");
  return std::malloc(size);
}
void DDM_OsalMemFree(void* block, uint32_t, const char*) {
  enter("DDM_OsalMemFree");
  std::free(block);
}
uint32_t DDM_OsalMemUseFlagGet(uint32_t owner) {
  return owner == 12 ? 1 : 0;
}
uint32_t MESH_SendMsg(uint32_t, const mesh_msg_desc* descriptors, uint32_t count) {
  return take("MESH_SendMsg", descriptors, count);
}
uint32_t MESH_SendToMsg(uint32_t, const mesh_msg_desc* descriptors, uint32_t count, uint64_t) {
  return take("MESH_SendToMsg", descriptors, count);
}
uint32_t MESH_RegIDLFuncHook(uint32_t, mesh_unpack_hook, mesh_free_hook) {
  enter("MESH_RegIDLFuncHook");
  return 0;
}
uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook) {
  enter("MESH_RegIDLResorceCleanFuncHook");
  return 0;
}

}  // extern "C"
