// The host's accounting allocator.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ddm/osal.h"
#include "ddm/osal_workstation.h"
#include "support/child_process.hpp"
#include "support/log_lines.hpp"

namespace platform_test {
namespace {

ddm_osal_memory_usage usageOf(uint32_t owner) {
  ddm_osal_memory_usage usage{};
  EXPECT_EQ(ddm_osal_memory_usage_get(owner, &usage), 0u);
  return usage;
}

ddm_osal_memory_faults faultsNow() {
  ddm_osal_memory_faults faults{};
  EXPECT_EQ(ddm_osal_memory_faults_get(&faults), 0u);
  return faults;
}

std::string report(uint64_t* blocks = nullptr) {
  char* text = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&text, &size);
  const uint64_t out = ddm_osal_memory_report(stream);
  if (blocks != nullptr) {
    *blocks = out;
  }
  std::fclose(stream);
  const std::string copy(text, size);
  std::free(text);
  return copy;
}

TEST(Memory, AccountsForEachOwner) {
  void* one = DDM_OsalMemAlloc(100, 0x101, "one");
  void* two = DDM_OsalMemCacheAlloc(50, 0x101, "two");
  void* other = DDM_OsalMemAlloc(7, 0x102, "one");
  ASSERT_TRUE(one != nullptr && two != nullptr && other != nullptr);
  std::memset(one, 1, 100);
  std::memset(two, 2, 50);
  EXPECT_EQ(usageOf(0x101).blocks_out, 2u);
  EXPECT_EQ(usageOf(0x101).bytes_out, 150u);
  EXPECT_EQ(usageOf(0x102).bytes_out, 7u);
  DDM_OsalMemFree(one, 0x101, "release");
  EXPECT_EQ(usageOf(0x101).blocks_out, 1u);
  EXPECT_EQ(usageOf(0x101).bytes_out, 50u);
  DDM_OsalMemFree(two, 0x101, "release");
  DDM_OsalMemFree(other, 0x102, "release");
  const ddm_osal_memory_usage after = usageOf(0x101);
  EXPECT_EQ(after.blocks_out, 0u);
  EXPECT_EQ(after.bytes_out, 0u);
  EXPECT_EQ(after.peak_bytes_out, 150u);
  EXPECT_EQ(after.total_blocks, 2u);
  EXPECT_EQ(after.total_bytes, 150u);
}

TEST(Memory, ReportsZerosForAnUnknownOwner) {
  const ddm_osal_memory_usage usage = usageOf(0x999);
  EXPECT_EQ(usage.total_blocks, 0u);
  EXPECT_EQ(ddm_osal_memory_usage_get(0x999, nullptr), 1u);
  EXPECT_EQ(ddm_osal_memory_faults_get(nullptr), 1u);
}

TEST(Memory, IsAlignedForAnyType) {
  for (uint32_t size = 0; size < 100; ++size) {
    void* block = DDM_OsalMemAlloc(size, 1, "alignment");
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0u);
    DDM_OsalMemFree(block, 1, "alignment");
  }
}

TEST(Memory, IgnoresNull) {
  const uint64_t before = faultsNow().foreign_free;
  DDM_OsalMemFree(nullptr, 1, "nothing");
  EXPECT_EQ(faultsNow().foreign_free, before);
}

TEST(Memory, ReportsAFreeUnderAnotherOwner) {
  const uint64_t before = faultsNow().wrong_owner;
  void* block = DDM_OsalMemAlloc(10, 0x201, "taker");
  const auto lines = logged([&] { DDM_OsalMemFree(block, 0x202, "releaser"); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("another owner"), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find("caller releaser"), std::string::npos) << lines[0];
  EXPECT_EQ(faultsNow().wrong_owner, before + 1);
  EXPECT_EQ(usageOf(0x201).blocks_out, 0u);
  EXPECT_EQ(usageOf(0x202).total_blocks, 0u);
}

TEST(Memory, ReportsADoubleFree) {
  const uint64_t before = faultsNow().double_free;
  void* block = DDM_OsalMemAlloc(64, 0x201, "taker");
  DDM_OsalMemFree(block, 0x201, "first");
  const auto lines = logged([&] { DDM_OsalMemFree(block, 0x201, "second"); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("freed twice"), std::string::npos) << lines[0];
  EXPECT_EQ(faultsNow().double_free, before + 1);
  EXPECT_EQ(usageOf(0x201).blocks_out, 0u);
}

TEST(Memory, ReportsAForeignPointer) {
  const uint64_t before = faultsNow().foreign_free;
  alignas(16) unsigned char bytes[128] = {};
  const auto lines = logged([&] {
    DDM_OsalMemFree(bytes + 64, 0x201, "stranger");
    DDM_OsalMemFree(bytes + 33, 0x201, "stranger");
  });
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find("not a block"), std::string::npos) << lines[0];
  EXPECT_EQ(faultsNow().foreign_free, before + 2);
}

TEST(Memory, ReportsLeaksByOwnerAndCaller) {
  EXPECT_EQ(report().find("not freed"), std::string::npos);
  std::vector<void*> blocks;
  // The same text at two addresses is one caller.
  const std::string copy = "leaky_unpack";
  for (const char* caller : {"leaky_unpack", copy.c_str(), "leaky_unpack", "other_unpack"}) {
    blocks.push_back(DDM_OsalMemAlloc(10, 0x401, caller));
  }
  blocks.push_back(DDM_OsalMemAlloc(5, 0x402, "leaky_unpack"));
  blocks.push_back(DDM_OsalMemAlloc(1, 0x402, nullptr));
  DDM_OsalMemFree(blocks[2], 0x401, "leaky_free");
  blocks.erase(blocks.begin() + 2);
  uint64_t out = 0;
  const std::string text = report(&out);
  EXPECT_EQ(out, 5u);
  for (const char* line :
       {"owner 0x401: 3 blocks (30 bytes) in use, peak 40 bytes, total 4 blocks (40 bytes)\n",
        "owner 0x402: 2 blocks (6 bytes) in use, peak 6 bytes, total 2 blocks (6 bytes)\n",
        "not freed: 2 blocks (20 bytes), owner 0x401, caller leaky_unpack\n",
        "not freed: 1 blocks (10 bytes), owner 0x401, caller other_unpack\n",
        "not freed: 1 blocks (5 bytes), owner 0x402, caller leaky_unpack\n",
        "not freed: 1 blocks (1 bytes), owner 0x402, caller (no caller)\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "is not in\n" << text;
  }
  for (void* block : blocks) {
    static_cast<void>(logged([&] { DDM_OsalMemFree(block, 0x401, "end"); }));
  }
  EXPECT_EQ(report(&out).find("not freed"), std::string::npos);
  EXPECT_EQ(out, 0u);
}

TEST(Memory, CountsBlocksOfACallerTogether) {
  std::vector<void*> blocks;
  std::string caller(200, 'x');
  const auto takeHundred = [&] {
    for (int i = 0; i < 100; ++i) {
      blocks.push_back(DDM_OsalMemAlloc(1, 0x403, caller.c_str()));
    }
  };
  takeHundred();
  // As where another library is loaded at the place of an unloaded one.
  caller.assign(200, 'y');
  takeHundred();
  const std::string text = report();
  for (const char letter : {'x', 'y'}) {
    const std::string line =
        "not freed: 100 blocks (100 bytes), owner 0x403, caller " + std::string(71, letter) + '\n';
    EXPECT_NE(text.find(line), std::string::npos) << line << "is not in\n" << text;
  }
  EXPECT_EQ(text.find("other callers"), std::string::npos) << text;
  for (void* block : blocks) {
    DDM_OsalMemFree(block, 0x403, "end");
  }
}

TEST(Memory, CountsAcrossThreads) {
  const uint64_t decodedBefore = usageOf(12).total_bytes;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (uint32_t i = 0; i < 5000; ++i) {
        void* mine = DDM_OsalMemAlloc(i % 64, 0x301, "shared");
        DDM_OsalMemFree(DDM_OsalMemAlloc(8, 12, i % 2 == 0 ? "even" : "odd"), 12, "end");
        DDM_OsalMemFree(mine, 0x301, "end");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(usageOf(0x301).blocks_out, 0u);
  EXPECT_EQ(usageOf(0x301).bytes_out, 0u);
  EXPECT_EQ(usageOf(0x301).total_blocks, 20000u);
  EXPECT_EQ(usageOf(12).total_bytes - decodedBefore, 160000u);
  EXPECT_EQ(report().find("not freed"), std::string::npos);
}

TEST(Memory, OffersTheCacheToTheDecodingOwner) {
  unsetenv("DDM_OSAL_CACHE");
  EXPECT_EQ(DDM_OsalMemUseFlagGet(12), 1u);
  EXPECT_EQ(DDM_OsalMemUseFlagGet(11), 0u);
  EXPECT_EQ(DDM_OsalMemUseFlagGet(0x6200), 0u);
  setenv("DDM_OSAL_CACHE", "0", 1);
  EXPECT_EQ(DDM_OsalMemUseFlagGet(12), 0u);
  setenv("DDM_OSAL_CACHE", "1", 1);
  EXPECT_EQ(DDM_OsalMemUseFlagGet(12), 1u);
}

// Sets the owner limit for one test.
class OwnerLimit {
 public:
  explicit OwnerLimit(uint64_t bytes) { ddm_osal_owner_limit(bytes); }
  ~OwnerLimit() { ddm_osal_owner_limit(usual); }
  OwnerLimit(const OwnerLimit&) = delete;
  OwnerLimit& operator=(const OwnerLimit&) = delete;

  static constexpr uint64_t usual = 256 << 20;
};

TEST(MemoryLimit, LimitsEachOwnersBytesInUse) {
  const OwnerLimit limit(100);
  void* first = DDM_OsalMemAlloc(60, 0x501, "limit");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(DDM_OsalMemAlloc(41, 0x501, "limit"), nullptr);
  EXPECT_EQ(DDM_OsalMemCacheAlloc(UINT32_MAX, 0x501, "limit"), nullptr);
  void* second = DDM_OsalMemCacheAlloc(40, 0x501, "limit");
  EXPECT_NE(second, nullptr) << "refused requests use nothing of the limit";
  void* other = DDM_OsalMemAlloc(100, 0x502, "limit");
  EXPECT_NE(other, nullptr) << "each owner has its own limit";
  DDM_OsalMemFree(first, 0x501, "limit");
  first = DDM_OsalMemAlloc(60, 0x501, "limit");
  EXPECT_NE(first, nullptr);
  const ddm_osal_memory_usage usage = usageOf(0x501);
  EXPECT_EQ(usage.bytes_out, 100u);
  EXPECT_EQ(usage.blocks_out, 2u);
  EXPECT_EQ(usage.peak_bytes_out, 100u);
  EXPECT_EQ(usage.total_blocks, 3u);
  EXPECT_EQ(usage.refusals, 2u);
  EXPECT_EQ(usageOf(0x502).refusals, 0u);
  const std::string text = report();
  EXPECT_NE(text.find("owner 0x501: 2 requests refused at the limit\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("owner 0x502: 0 requests"), std::string::npos) << text;
  DDM_OsalMemFree(first, 0x501, "limit");
  DDM_OsalMemFree(second, 0x501, "limit");
  DDM_OsalMemFree(other, 0x502, "limit");
}

TEST(MemoryLimit, ReportsAnOwnerThatGotNothing) {
  const OwnerLimit limit(100);
  EXPECT_EQ(DDM_OsalMemAlloc(101, 0x504, "limit"), nullptr);
  const std::string text = report();
  EXPECT_NE(text.find("owner 0x504: 1 requests refused at the limit\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("other owners"), std::string::npos) << text;
}

TEST(MemoryLimit, HoldsAcrossThreads) {
  const OwnerLimit limit(1000);
  std::vector<std::thread> threads;
  std::atomic<uint64_t> given = 0;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        void* block = DDM_OsalMemAlloc(400, 0x503, "limit");
        given += block != nullptr ? 1 : 0;
        DDM_OsalMemFree(block, 0x503, "limit");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const ddm_osal_memory_usage usage = usageOf(0x503);
  EXPECT_EQ(usage.bytes_out, 0u);
  EXPECT_EQ(usage.total_blocks, given);
  EXPECT_EQ(usage.total_blocks + usage.refusals, 8000u);
  EXPECT_GT(given, 0u);
}

// Just under 1 MiB requests the largest possible block.
TEST(MemoryLimit, LimitsWhatAMessageCanAllocate) {
  ChildProcess small(peer({"amplify", "1000"}));
  EXPECT_EQ(small.readLine(), "4032 bytes: decoded, refused 0 times, peak 16572000");
  EXPECT_EQ(small.wait(), 0);
  ChildProcess large(peer({"amplify", std::to_string(UINT32_MAX / 16572)}));
  EXPECT_EQ(large.readLine(), "1036712 bytes: nothing, refused 1 times, peak 0");
  EXPECT_EQ(large.wait(), 0);
}

TEST(MemoryLimit, ComesFromTheEnvironment) {
  const auto largest = [](const char* mebibytes) {
    setenv("DDM_OSAL_OWNER_LIMIT_MIB", mebibytes, 1);
    ChildProcess child(peer({"largest"}));
    unsetenv("DDM_OSAL_OWNER_LIMIT_MIB");
    const std::string line = child.readLine();
    EXPECT_EQ(child.wait(), 0);
    return line;
  };
  EXPECT_EQ(largest("1"), "1 MiB");
  EXPECT_EQ(largest("512"), "512 MiB");
  EXPECT_EQ(largest("0"), "1024 MiB");
  for (const char* nonsense : {"", "x", "-1", "1x", "4294967296"}) {
    EXPECT_EQ(largest(nonsense), "256 MiB") << nonsense;
  }
}

// What a separate process reports, with a block for each caller: no account is free afterwards.
std::string crowd(const char* owners, const char* callers) {
  ChildProcess child(peer({"crowd", owners, callers}));
  std::string text = child.readAll();
  EXPECT_EQ(child.wait(), 0);
  EXPECT_NE(text.find("\n0 faults\n"), std::string::npos) << text;
  return text;
}

TEST(Memory, CountsEachOf63OwnersAnd500Callers) {
  EXPECT_EQ(crowd("63", "63").find("other owners"), std::string::npos);
  EXPECT_NE(crowd("64", "64").find("other owners: 1 blocks"), std::string::npos);
  const std::string text = crowd("1", "500");
  for (int caller = 0; caller < 500; ++caller) {
    const std::string line =
        "not freed: 1 blocks (1 bytes), owner 0x0, caller caller " + std::to_string(caller) + '\n';
    EXPECT_NE(text.find(line), std::string::npos) << line << "is not in\n" << text;
  }
}

TEST(Memory, CountsMoreOwnersAndCallersThanAccounts) {
  const std::string text = crowd("100", "3000");
  const size_t end = text.find("all freed\n");
  ASSERT_NE(end, std::string::npos) << text;
  const std::string taken = text.substr(0, end);
  EXPECT_NE(taken.find("other owners: "), std::string::npos) << taken;
  EXPECT_NE(taken.find(", other callers\n"), std::string::npos) << taken;
  EXPECT_NE(taken.find("3000 blocks in use\n"), std::string::npos) << taken;
  const std::string after = text.substr(end);
  EXPECT_EQ(after.find("not freed"), std::string::npos) << after;
  EXPECT_NE(after.find("\n0 blocks in use\n"), std::string::npos) << after;
}

}  // namespace
}  // namespace platform_test
