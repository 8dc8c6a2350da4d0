// A process whose bounded memory functions refuse calls. Results, records, messages, allocations
// and logs are the oracle's, the same as if the functions accept.

#include <gtest/gtest.h>

#include <array>

#include "bounded/memory.h"
#include "mesh_l2vpn/l2vpn_cfg.h"
#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"
#include "support/repeated_memory.hpp"

namespace {

using harness::Buffer;
using harness::Operations;
using oracle::Value;

// The content of the destination after a refusal.
enum class Leaves { AllAsItWas, DestinationCleared };

struct Refusal {
  size_t largest = SIZE_MAX;  // calls for more bytes are refused
  uint64_t number = 0;        // the call with this number (from 1) is refused
  Leaves leaves = Leaves::AllAsItWas;
};

Refusal refusal;
uint64_t calls;
uint64_t refusals;

void refuse(const Refusal& what) {
  refusal = what;
  calls = 0;
  refusals = 0;
}
void acceptAll() {
  refusal = {};
}

// Whether to refuse this call. As in Annex K, a refused copy clears its destination, and a refused
// fill still fills it.
bool refuses(void* to, size_t room, int value, size_t count) {
  ++calls;
  if (count <= refusal.largest && calls != refusal.number) {
    return false;
  }
  ++refusals;
  if (refusal.leaves == Leaves::DestinationCleared) {
    std::memset(to, value, room);
  }
  return true;
}

// Every result but 0 refuses.
int refused() {
  return calls % 2 == 0 ? 34 : 1;
}

class RefusingMemory : public testing::TestWithParam<Operations> {
 protected:
  const oracle::Description& message() const { return oracle::descriptionOf(GetParam().name); }

  // Out-of-line parts, and arrays above 256 bytes.
  bool callsFunctions() const {
    return message().hasOutOfLineParts || message().name == "l2vpn_cfg_query_dfx_item";
  }

  // Every operation on one value. Calls `compare` with each comparison in turn.
  template <typename Compare>
  void forEachOperation(const Value& value, bool reversed, Compare compare) {
    const auto size = static_cast<uint32_t>(oracle::compactSize(message(), value));
    const Buffer compact = harness::packed(GetParam(), value, reversed);
    compare([&] { return harness::comparePack(GetParam(), value, size, reversed); });
    compare([&] { return harness::compareUnpack(GetParam(), compact, reversed); });
    compare([&] { return harness::compareUnpack(GetParam(), compact, reversed, 1); });
    compare([&] {
      return harness::compareUnpack(GetParam(), {compact.data(), compact.size() - 1}, reversed);
    });
    if (!message().hasOutOfLineParts) {
      const Buffer fixed = oracle::fixedImage(message(), value, reversed);
      compare([&] { return harness::compareUnpack(GetParam(), fixed, reversed); });
    }
    for (const auto operation : {oracle::Operation::Single, oracle::Operation::Batch}) {
      compare([&] { return harness::compareSend(GetParam(), operation, {value}, 0, reversed); });
    }
    compare([&] {
      return harness::compareSend(GetParam(), oracle::Operation::ToMsg, {value, value}, 7,
                                  reversed);
    });
  }

  template <typename Compare>
  void forEachOperation(Compare compare) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 3; ++round) {
      for (const auto density : {oracle::Density::Full, oracle::Density::Sparse}) {
        for (const bool reversed : {false, true}) {
          const Value value = oracle::randomValue(message(), random, density);
          forEachOperation(value, reversed, compare);
        }
      }
    }
  }
};

TEST_P(RefusingMemory, ChangesNothingWhereFunctionsRefuseAboveALimit) {
  for (const auto leaves : {Leaves::AllAsItWas, Leaves::DestinationCleared}) {
    // First nothing is accepted. An item has 16,572 bytes, its array 16,384.
    for (const size_t largest : {0UL, 1UL, 16UL, 16383UL, 16384UL, 16572UL}) {
      uint64_t seen = 0;
      forEachOperation([&](const auto& comparison) {
        refuse({.largest = largest, .leaves = leaves});
        ASSERT_EQ(comparison(), "") << "refused above " << largest;
        seen += refusals;
        acceptAll();
      });
      if (largest == 0) {
        EXPECT_EQ(seen > 0, callsFunctions());
      }
    }
  }
}

TEST_P(RefusingMemory, ChangesNothingWhereOneCallIsRefused) {
  for (const auto leaves : {Leaves::AllAsItWas, Leaves::DestinationCleared}) {
    forEachOperation([&](const auto& comparison) {
      refusals = 1;
      for (uint64_t number = 1; refusals != 0; ++number) {
        refuse({.number = number, .leaves = leaves});
        ASSERT_EQ(comparison(), "") << "call " << number << " was refused";
        acceptAll();
      }
    });
  }
}

INSTANTIATE_TEST_SUITE_P(All, RefusingMemory, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

// A message of `count` items. All are the same table without fields: four bytes per item.
Buffer emptyItems(uint32_t count) {
  harness::Layout layout;
  layout.u32(12).u16(8, 0, 0, 4).u32(8).u32(4).u32(count);
  for (uint32_t item = 0; item < count; ++item) {
    layout.u32(4 * (count - item) + 4);
  }
  return layout.u16(4, 4).u32(4);
}

TEST(RefusingMemoryOfItems, HandsOutNoOldBytes) {
  const Operations& operations = harness::operationsOf("l2vpn_cfg_query_dfx_rec");
  constexpr uint32_t count = 40;
  for (const auto leaves : {Leaves::AllAsItWas, Leaves::DestinationCleared}) {
    for (const size_t largest : {size_t{16572}, size_t{count} * 16572 - 1}) {
      const Buffer bytes = emptyItems(count);
      refuse({.largest = largest, .leaves = leaves});
      EXPECT_EQ(harness::compareUnpack(operations, bytes, false), "");
      EXPECT_EQ(refusals, 1U);
      acceptAll();
    }
  }
}

// Allocates the items, 2.1 GB: consecutive address ranges share 2 MiB of real memory.
std::unique_ptr<harness::RepeatedMemory> manyItems;

void* allocateManyItems(uint32_t size, uint32_t, const char*) {
  manyItems = std::make_unique<harness::RepeatedMemory>(size, 0xC7);
  return manyItems->data();
}
void freeManyItems(void*, uint32_t, const char*) {
  manyItems.reset();
}

// The limit that Annex K recommends. A buffer of 518 KB has just enough items to exceed it.
TEST(RefusingMemoryOfItems, HandsOutNoOldBytesAboveTheUsualLimit) {
  if (!harness::canRepeatMemory) {
    GTEST_SKIP() << "the thread sanitizer";
  }
  constexpr size_t usualLimit = 0x7FFFFFFF;
  constexpr uint32_t count = usualLimit / sizeof(l2vpn_cfg_query_dfx_item) + 1;
  const Operations& operations = harness::operationsOf("l2vpn_cfg_query_dfx_rec");
  harness::useByteOrder(operations, false);
  mesh::host::serial_env& env = harness::modulesOf(operations).receive->env;
  const auto [alloc, release] = std::pair(env.unpackAlloc, env.unpackFree);
  env.unpackAlloc = &allocateManyItems;
  env.unpackFree = &freeManyItems;

  const Buffer bytes = emptyItems(count);
  l2vpn_cfg_query_dfx_rec record;
  refuse({.largest = usualLimit});
  l2vpn_cfg_query_dfx_rec__unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), &record);
  EXPECT_EQ(refusals, 1U);
  acceptAll();
  ASSERT_EQ(record.f1_count, count);
  const Buffer zeros(2 * harness::RepeatedMemory::stretch, 0);
  EXPECT_EQ(std::memcmp(record.f1, zeros.data(), zeros.size()), 0);
  l2vpn_cfg_query_dfx_rec_free__unpacked(&record);
  EXPECT_EQ(record.f1, nullptr);
  EXPECT_EQ(manyItems, nullptr);

  env.unpackAlloc = alloc;
  env.unpackFree = release;
}

}  // namespace

extern "C" {

int memcpy_s(void* to, size_t room, const void* from, size_t count) {
  if (refuses(to, room, 0, count)) {
    return refused();
  }
  std::memcpy(to, from, count);
  return 0;
}
int memset_s(void* to, size_t room, int value, size_t count) {
  if (refuses(to, room, value, count)) {
    return refused();
  }
  std::memset(to, value, count);
  return 0;
}
int memcpy_sOptAsm(void* to, size_t room, const void* from, size_t count) {
  return memcpy_s(to, room, from, count);
}

}  // extern "C"
