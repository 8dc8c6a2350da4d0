// No call takes more memory than the limit, whatever the bytes ask for. Each call runs in a child
// process; the kernel counts its pages.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <map>

#include "mesh_l2vpn/inspect.h"
#include "tests/inspect/reader/hostile.hpp"

namespace {

using inspect::Bytes;

constexpr uint64_t limit = uint64_t{64} << 20;
// The allocator's own, and pages of the libraries that a call is the first to touch.
constexpr uint64_t slack = uint64_t{6} << 20;

// A line of /proc/self/status, in bytes.
uint64_t status(const std::string& name) {
  std::ifstream lines("/proc/self/status");
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(name)) {
      return std::stoull(line.substr(name.size())) * 1024;
    }
  }
  return UINT64_MAX;
}

// What the call takes at its peak.
uint64_t peakOf(const std::function<void()>& call) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    const uint64_t before = status("VmRSS:");
    call();
    const uint64_t peak = status("VmHWM:");
    const uint64_t taken = peak < before ? 0 : peak - before;
    _exit(write(ends[1], &taken, sizeof taken) == sizeof taken ? 0 : 1);
  }
  close(ends[1]);
  uint64_t taken = UINT64_MAX;
  EXPECT_EQ(read(ends[0], &taken, sizeof taken), ssize_t{sizeof taken});
  close(ends[0]);
  int result = -1;
  waitpid(child, &result, 0);
  EXPECT_EQ(result, 0);
  return taken;
}

std::map<std::string, Bytes> hostileMessages() {
  Bytes words(size_t{16} << 20);  // each word leads 4 bytes on
  for (size_t at = 0; at + 4 <= words.size(); at += 4) {
    words[at] = 4;
  }
  return {{"items of one table", inspect::itemsOfOneVtable(4049, 4)},
          {"more of them than the limit holds", inspect::itemsOfOneVtable(60'000, 4)},
          {"items with every slot", inspect::itemsOfOneVtable(500'000, 14)},
          {"faulty items", inspect::itemsOfOneText(12'000, 100'000, 'a')},
          {"words", words}};
}

TEST(MemoryOfACall, StaysWithinTheLimit) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer takes memory of its own";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
  GTEST_SKIP() << "a sanitizer takes memory of its own";
#endif
#endif
  const mesh_l2vpn_message* const list = mesh_l2vpn_message_by_name("l2vpn_cfg_query_dfx_rec");
  for (const auto& [name, bytes] : hostileMessages()) {
    const void* const data = bytes.data();
    const size_t length = bytes.size();
    char* text = nullptr;
    const std::map<std::string, std::function<void()>> calls = {
        {"verify",
         [&] {
           mesh_l2vpn_fault fault;
           mesh_l2vpn_verify(list, data, length, &fault);
         }},
        {"unpack",
         [&] {
           uint64_t record[6];
           mesh_l2vpn_unpack(list, data, length, record);
         }},
        {"to JSON", [&] { mesh_l2vpn_to_json(list, data, length, &text); }},
        {"explain", [&] { mesh_l2vpn_explain(list, data, length, MESH_L2VPN_TEXT, &text); }},
        {"explain as page",
         [&] { mesh_l2vpn_explain(list, data, length, MESH_L2VPN_HTML, &text); }},
        {"difference", [&] { mesh_l2vpn_difference(list, data, length, data, length, &text); }},
        {"identify", [&] { mesh_l2vpn_identify(data, length, &text); }},
    };
    for (const auto& [function, call] : calls) {
      EXPECT_LE(peakOf(call), limit + slack) << function << " of " << name;
    }
  }
}

TEST(MemoryOfACall, StaysWithinTheLimitForJson) {
  const mesh_l2vpn_message* const list = mesh_l2vpn_message_by_name("l2vpn_cfg_query_dfx_rec");
  std::string items = R"({"f1":[{})";
  while (items.size() < 3'000'000) {
    items += ",{}";
  }
  items += "]}";
  std::string lists = "[[]";
  while (lists.size() < 2'900'000) {
    lists += ",[]";
  }
  lists += "]";
  for (const std::string& json : {items, lists}) {
    EXPECT_LE(peakOf([&] {
                uint8_t* bytes = nullptr;
                size_t size = 0;
                mesh_l2vpn_from_json(list, json.data(), json.size(), MESH_L2VPN_AS_SENT, &bytes,
                                     &size);
              }),
              limit + slack);
  }
}

}  // namespace
