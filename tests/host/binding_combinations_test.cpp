// Every set of functions that a host may have: what is logged, and which allocator serves each
// side.

#include <gtest/gtest.h>

#include "host/binding.hpp"
#include "host/process.hpp"
#include "host/scenarios.hpp"
#include "l2vpn_cfg/schema.hpp"

namespace {

using harness::bring;
using harness::inANewProcess;
using harness::Lines;

struct Host {
  unsigned functions;
  uint32_t useFlag;
};

// For test output.
void PrintTo(const Host& host, std::ostream* out) {
  *out << "functions " << host.functions << ", flag " << host.useFlag;
}

std::vector<Host> everyHost() {
  std::vector<Host> hosts;
  for (unsigned functions = 0; functions <= harness::wholeHost; ++functions) {
    for (const uint32_t useFlag : {0U, 1U, 2U, 0xFFFFFFFFU}) {
      hosts.push_back({functions, useFlag});
      if ((functions & harness::MemUseFlagGet) == 0) {
        break;  // never asked
      }
    }
  }
  return hosts;
}

class Binding : public testing::TestWithParam<Host> {
 protected:
  bool has(unsigned functions) const { return (GetParam().functions & functions) == functions; }
  bool servesReceiving() const {
    return has(harness::MemUseFlagGet | harness::MemCacheAlloc | harness::MemFree) &&
           GetParam().useFlag == 1;
  }
  bool servesSending() const { return has(harness::MemAlloc | harness::MemFree); }

  Lines noted(bool (*call)()) const {
    return inANewProcess([&] {
      bring(GetParam().functions, GetParam().useFlag);
      harness::note(call() ? "as always" : "not as always");
    });
  }
};

TEST_P(Binding, BindsTheReceivingSide) {
  Lines expected;
  if (has(harness::MemUseFlagGet)) {
    expected.emplace_back("useFlagGet 12");
  }
  if (servesReceiving()) {
    expected.emplace_back("cacheAlloc 3 12 dbginfo_key_l2vpn_unpack");
    expected.emplace_back("free 12 dbginfo_key_l2vpn_free_unpacked");
  }
  expected.emplace_back("as always");
  EXPECT_EQ(noted(&harness::receiveText), expected);
}

TEST_P(Binding, BindsTheSendingSide) {
  Lines expected;
  // 20 bytes, and the widths of three fields.
  if (servesSending()) {
    expected.emplace_back("alloc 28 25088 dbginfo_key_l2vpn__sendsingle");
  }
  // The writer binds the unpack side of its own module.
  if (has(harness::MemUseFlagGet)) {
    expected.emplace_back("useFlagGet 12");
  }
  if (servesSending()) {
    expected.emplace_back("free 25088 dbginfo_key_l2vpn__sendsingle");
  }
  expected.emplace_back("as always");
  EXPECT_EQ(noted(&harness::sendKey), expected);
}

TEST_P(Binding, BindsTheLog) {
  Lines unpack;
  Lines pack;
  if (has(harness::LogWrite)) {
    unpack.emplace_back(
        "log VELTA 2 22 \"\" dbginfo_key_l2vpn_unpack [VELTA]:Param invalid(%s, %d, %s)");
    pack.emplace_back(
        "log VELTA 2 22 \"\" dbginfo_key_l2vpn_pack [VELTA]:Param invalid(%s, %u, %s)");
  }
  unpack.emplace_back("as always");
  pack.emplace_back("as always");
  EXPECT_EQ(noted(&harness::receiveNothing), unpack);
  EXPECT_EQ(noted(&harness::packToNowhere), pack);
}

// A module keeps the functions found at its first use, even if some are missing.
TEST_P(Binding, IgnoresLaterFunctions) {
  Lines expected;
  if (servesReceiving()) {
    expected.emplace_back("cacheAlloc 3 12 dbginfo_key_l2vpn_unpack");
    expected.emplace_back("free 12 dbginfo_key_l2vpn_free_unpacked");
  }
  if (servesSending()) {
    expected.emplace_back("alloc 28 25088 dbginfo_key_l2vpn__sendsingle");
    expected.emplace_back("free 25088 dbginfo_key_l2vpn__sendsingle");
  }
  if (has(harness::LogWrite)) {
    expected.emplace_back(
        "log VELTA 2 22 \"\" dbginfo_key_l2vpn_unpack [VELTA]:Param invalid(%s, %d, %s)");
  }
  expected.emplace_back("as always");
  EXPECT_EQ(inANewProcess([&] {
              const auto useAll = [] {
                const bool received = harness::receiveText();
                const bool sent = harness::sendKey();
                return harness::receiveNothing() && received && sent;
              };
              bring(GetParam().functions, GetParam().useFlag);
              useAll();
              bring(harness::wholeHost & ~GetParam().functions, 1);
              harness::forgetNotes();
              harness::note(useAll() ? "as always" : "not as always");
            }),
            expected);
}

// Both functions of a pair come from the host, or both from the C library.
TEST_P(Binding, TakesAllocatorsInPairs) {
  const auto owner = [](const void* function, const void* ours) {
    return function == nullptr ? "nobody" : function == ours ? "malloc" : "host";
  };
  const Lines lines = inANewProcess([&] {
    bring(GetParam().functions, GetParam().useFlag);
    harness::receiveText();
    harness::sendKey();
    harness::forgetNotes();
    const auto* const alloc = reinterpret_cast<const void*>(&mesh::host::mallocWrapper);
    const auto* const release = reinterpret_cast<const void*>(&mesh::host::freeWrapper);
    const mesh::host::serial_env& receive = mesh::l2vpn_cfg::receiveModule.env;
    const mesh::host::serial_env& send = mesh::l2vpn_cfg::sendModule.env;
    harness::note(owner(reinterpret_cast<const void*>(receive.unpackAlloc), alloc));
    harness::note(owner(reinterpret_cast<const void*>(receive.unpackFree), release));
    harness::note(owner(reinterpret_cast<const void*>(send.unpackAlloc), alloc));
    harness::note(owner(reinterpret_cast<const void*>(send.unpackFree), release));
    harness::note(owner(reinterpret_cast<const void*>(send.memAlloc), alloc));
    harness::note(owner(reinterpret_cast<const void*>(send.memFree), release));
  });
  const std::string receiving = servesReceiving() ? "host" : "malloc";
  const std::string sending = servesSending() ? "host" : "malloc";
  EXPECT_EQ(lines, Lines({receiving, receiving, receiving, receiving, sending, sending}));
}

std::string nameOf(const testing::TestParamInfo<Host>& test) {
  const auto [functions, useFlag] = test.param;
  std::string name;
  for (const auto& [function, part] :
       std::initializer_list<std::pair<unsigned, const char*>>{{harness::LogWrite, "Log"},
                                                               {harness::MemAlloc, "Alloc"},
                                                               {harness::MemFree, "Free"},
                                                               {harness::MemCacheAlloc, "Cache"},
                                                               {harness::MemUseFlagGet, "Flag"}}) {
    name += (functions & function) != 0 ? part : "";
  }
  return (name.empty() ? "Nothing" : name) +
         ((functions & harness::MemUseFlagGet) != 0 ? std::to_string(useFlag) : "");
}

INSTANTIATE_TEST_SUITE_P(With, Binding, testing::ValuesIn(everyHost()), nameOf);

}  // namespace
