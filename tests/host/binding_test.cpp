// When and how often the library looks up the host's functions. It ignores a later host.

#include <gtest/gtest.h>

#include <array>
#include <set>

#include "host/binding.hpp"
#include "host/process.hpp"
#include "host/scenarios.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"

namespace {

using harness::bring;
using harness::inANewProcess;
using harness::Lines;
using harness::note;
using mesh::host::Module;

constexpr std::array<Module*, 6> modules{
    &mesh::l2vpn_cfg::receiveModule,  &mesh::l2vpn_cfg::sendModule,
    &mesh::l2vpn_stat::receiveModule, &mesh::l2vpn_stat::sendModule,
    &mesh::l2vpn_sync::receiveModule, &mesh::l2vpn_sync::sendModule};

// "110000": one digit per module.
std::string flags(std::atomic<uint32_t> mesh::host::serial_env::*flag) {
  std::string digits;
  for (const Module* const module : modules) {
    digits += std::to_string((module->env.*flag).load());
  }
  return digits;
}
std::string unpackBound() {
  return flags(&mesh::host::serial_env::unpackBound);
}
std::string hostBound() {
  return flags(&mesh::host::serial_env::hostBound);
}

// Any message of a service, as a table without fields.
const std::array<uint8_t, 12> emptyTable{8, 0, 0, 0, 4, 0, 4, 0, 4, 0, 0, 0};

template <typename Record>
void receive(uint32_t (*unpack)(const uint8_t*, uint32_t, Record*)) {
  Record record;
  unpack(emptyTable.data(), emptyTable.size(), &record);
}
template <typename Record>
void pack(uint32_t (*packRecord)(const Record*, uint8_t*, uint32_t*)) {
  const Record record{};
  std::array<uint8_t, 256> buffer;
  uint32_t length = buffer.size();
  packRecord(&record, buffer.data(), &length);
}

TEST(Binding, DoesNotHappenAtLoad) {
  EXPECT_EQ(inANewProcess([] {
              bring(harness::wholeHost);
              note(unpackBound() + " " + hostBound());
            }),
            Lines({"000000 000000"}));
}

TEST(Binding, HappensOncePerModule) {
  EXPECT_EQ(inANewProcess([] {
              bring(harness::wholeHost);
              for (int round = 0; round < 3; ++round) {
                receive(&dbginfo_key_l2vpn__unpack);
                note(unpackBound());
                receive(&dbginfo_para_l2vpn__unpack);
                pack(&dbginfo_key_l2vpn__pack);
                note(unpackBound());
                receive(&l2vpn_stat_pw_stat__unpack);
                note(unpackBound());
                pack(&l2vpn_stat_pw_stat__pack);
                note(unpackBound());
                receive(&l2vpn_sync_stp__unpack);
                receive(&l2vpn_sync_stp_update__unpack);
                note(unpackBound());
                pack(&l2vpn_sync_stp__pack);
                pack(&l2vpn_sync_stp_delete__pack);
                note(unpackBound());
                if (round == 0) {
                  note(hostBound());
                  note("again");
                }
              }
            }),
            Lines({"useFlagGet 12", "100000", "useFlagGet 12", "110000", "useFlagGet 12", "111000",
                   "useFlagGet 12", "111100", "useFlagGet 12", "111110", "useFlagGet 12", "111111",
                   "000000",        "again",  "111111",        "111111", "111111",        "111111",
                   "111111",        "111111", "111111",        "111111", "111111",        "111111",
                   "111111",        "111111"}));
}

// Decoding does not bind the log or the send allocator; sending does not bind the unpack allocator.
TEST(Binding, HappensOncePerLock) {
  EXPECT_EQ(inANewProcess([] {
              bring(harness::MemUseFlagGet);
              harness::receiveNothing();
              note(unpackBound() + " " + hostBound());
              harness::receiveText();
              note(unpackBound() + " " + hostBound());
              harness::packToNowhere();
              note(unpackBound() + " " + hostBound());
              harness::sendKey();
              note(unpackBound() + " " + hostBound());
            }),
            Lines({"000000 100000", "useFlagGet 12", "100000 100000", "100000 110000",
                   "useFlagGet 12", "110000 110000"}));
}

TEST(Binding, OfTheUnpackAllocatorHappensInEachOperationThatNeedsIt) {
  const auto bound = [](void (*call)()) {
    const Lines lines = inANewProcess([&] {
      call();
      note(unpackBound());
    });
    return lines.size() == 1 ? lines[0] : "not one line";
  };
  EXPECT_EQ(bound([] { dbginfo_key_l2vpn_free__unpacked(nullptr); }), "100000");
  EXPECT_EQ(bound([] { receive(&dbginfo_key_l2vpn__unpack); }), "100000");
  EXPECT_EQ(bound([] { receive(&l2vpn_sync_stp__unpack); }), "000010");
  EXPECT_EQ(bound([] { pack(&l2vpn_sync_stp__pack); }), "000001");
  EXPECT_EQ(bound([] { harness::sendKey(); }), "010000");
  EXPECT_EQ(bound([] {
              const l2vpn_stat_pw_stat record{};
              l2vpn_stat_pw_stat__sendsingle(1, &record, 0, 0);
            }),
            "000100");
  EXPECT_EQ(bound([] {
              const l2vpn_stat_pw_stat records[2]{};
              l2vpn_stat_pw_stat__sendbatch(1, records, 2, 0);
            }),
            "000100");
  // These calls fail before they touch the record, or write nothing.
  EXPECT_EQ(bound([] { harness::receiveNothing(); }), "000000");
  EXPECT_EQ(bound([] { harness::packToNowhere(); }), "000000");
}

// A message that uses the table reader clears the record before it reads the root.
TEST(Binding, FollowsTheMessagesChecksAndPrecedesTheTableReader) {
  EXPECT_EQ(inANewProcess([] {
              const std::array<uint8_t, 4> rootAlone{4, 0, 0, 0};
              dbginfo_key_l2vpn key;
              dbginfo_key_l2vpn__unpack(rootAlone.data(), 4, &key);
              note(unpackBound());
              l2vpn_sync_stp_update update;
              l2vpn_sync_stp_update__unpack(rootAlone.data(), 4, &update);
              note(unpackBound());
              l2vpn_stat_pw_stat statistics;
              l2vpn_stat_pw_stat__unpack(rootAlone.data(), 4, &statistics);
              note(unpackBound());
              l2vpn_sync_stp record;
              l2vpn_sync_stp__unpack(rootAlone.data(), 4, &record);
              note(unpackBound());
            }),
            Lines({"000000", "000000", "001000", "001010"}));
}

TEST(Binding, IgnoresALaterHost) {
  EXPECT_EQ(inANewProcess([] {
              harness::receiveText();
              harness::receiveNothing();
              harness::sendKey();
              harness::packToNowhere();
              bring(harness::wholeHost);
              note("the host is here");
              note(harness::receiveText() ? "received" : "not received");
              note(harness::receiveNothing() ? "refused" : "not refused");
              note(harness::sendKey() ? "sent" : "not sent");
              note(harness::packToNowhere() ? "told" : "not told");
            }),
            Lines({"the host is here", "received", "refused", "sent", "told"}));
}

// A module that was unused when the host appeared finds it.
TEST(Binding, IsSeparateInEachModule) {
  EXPECT_EQ(inANewProcess([] {
              harness::receiveText();
              harness::receiveNothing();
              bring(harness::wholeHost);
              harness::receiveText();
              harness::receiveNothing();
              harness::sendKey();
            }),
            Lines({"alloc 28 25088 dbginfo_key_l2vpn__sendsingle", "useFlagGet 12",
                   "free 25088 dbginfo_key_l2vpn__sendsingle"}));
}

// Simulates a thread that saw the flag unset and then waited for the lock.
TEST(Binding, IsNotRepeatedByWaitingThreads) {
  EXPECT_EQ(inANewProcess([] {
              Module& module = mesh::l2vpn_sync::receiveModule;
              mesh::host::bindHost(module.env);
              mesh::host::bindCodec(module);
              bring(harness::wholeHost);
              mesh::host::bindHostOnce(module.env);
              mesh::host::bindUnpackAllocator(module);
              note(module.env.memAlloc == &mesh::host::mallocWrapper ? "kept" : "bound again");
              note(module.env.unpackAlloc == &mesh::host::mallocWrapper ? "kept" : "bound again");
            }),
            Lines({"kept", "kept"}));
}

void ownLogWriter(const void*, uint32_t, uint32_t, const char*, uint32_t, const char*, const char*,
                  ...) {
  note("own log writer");
}

TEST(Binding, KeepsTheFirstLogWriter) {
  EXPECT_EQ(inANewProcess([] {
              bring(harness::wholeHost);
              mesh::l2vpn_sync::receiveModule.env.logWrite = &ownLogWriter;
              l2vpn_sync_stp__unpack(nullptr, 0, nullptr);
            }),
            Lines({"own log writer"}));
}

TEST(Binding, LogsNothingWithoutALogWriter) {
  EXPECT_EQ(inANewProcess([] {
              bring(harness::wholeHost & ~harness::LogWrite, 0);
              dbginfo_key_l2vpn key;
              std::array<uint8_t, 12> bytes = emptyTable;
              const auto refuse = [&](const char* what) {
                const uint32_t result = dbginfo_key_l2vpn__unpack(bytes.data(), 12, &key);
                note(std::string(what) + (result == sizeof key ? " refused" : " not refused"));
                bytes = emptyTable;
              };
              note(harness::receiveNothing() ? "nothing refused" : "?");
              bytes[0] = 0;
              refuse("table");
              bytes[8] = 8;
              refuse("vtable");
              bytes[4] = 9;
              refuse("vtable's length");
              note(harness::packToNowhere() ? "size told" : "?");
            }),
            Lines({"nothing refused", "table refused", "vtable refused", "vtable's length refused",
                   "size told"}));
}

TEST(Identity, IsThatOfTheFramework) {
  for (const Module* const module : modules) {
    EXPECT_STREQ(module->env.frameworkName, "VELTA");
    EXPECT_STREQ(module->env.moduleName, "VELTA_PLOVANE_SERIAL");
    EXPECT_EQ(module->env.memModuleId, 0x6200);
  }
  EXPECT_EQ(std::set(modules.begin(), modules.end()).size(), 6U) << "nothing is shared";
}

// Runs before the library's constructors, which have no priority. So the zeros that the test sees
// are their stores.
[[gnu::constructor(101)]] void reverseEveryModule() {
  for (Module* const module : modules) {
    module->swapBytes.store(1);
  }
}

TEST(ByteOrder, IsTheHostsAfterLoading) {
  EXPECT_EQ(inANewProcess([] {
              std::string digits;
              for (const Module* const module : modules) {
                digits += std::to_string(module->swapBytes.load());
              }
              note(digits);
            }),
            Lines({"000000"}));
}

TEST(ByteOrder, IsSetByBindingAlone) {
  EXPECT_EQ(inANewProcess([] {
              Module& module = mesh::l2vpn_cfg::receiveModule;
              module.swapBytes.store(1);
              dbginfo_key_l2vpn_free__unpacked(nullptr);
              note(std::to_string(module.swapBytes.load()));
              module.swapBytes.store(1);
              dbginfo_key_l2vpn_free__unpacked(nullptr);
              note(std::to_string(module.swapBytes.load()));
            }),
            Lines({"0", "1"}));
}

// Binding precedes writing: the first message has the host's byte order, whatever was set before.
TEST(ByteOrder, IsTheHostsForTheFirstMessageWritten) {
  EXPECT_EQ(inANewProcess([] {
              for (Module* const module : modules) {
                module->swapBytes.store(1);
              }
              const dbginfo_key_l2vpn key{};
              std::array<uint8_t, 20> buffer;
              uint32_t length = 20;
              dbginfo_key_l2vpn__pack(&key, buffer.data(), &length);
              note(std::to_string(buffer[0]));
              note(std::to_string(mesh::l2vpn_cfg::sendModule.swapBytes.load()));
              note(std::to_string(mesh::l2vpn_sync::sendModule.swapBytes.load()));
            }),
            Lines({"16", "0", "1"}));
}

}  // namespace
