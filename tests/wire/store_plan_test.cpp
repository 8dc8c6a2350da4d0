// Plans of stores, carried out byte by byte on destinations made up at random.

#include "wire/store_plan.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using mesh::wire::Origin;
using mesh::wire::PlanLimits;
using mesh::wire::planStores;
using mesh::wire::Store;
using mesh::wire::StorePlan;
using mesh::wire::Stretch;

using Bytes = std::vector<uint8_t>;

class Memory {
 public:
  Memory(uint32_t destination, const PlanLimits& limits)
      : destination_(destination, 0xEE), source_(limits.source), constants_(limits.constants) {
    for (size_t at = 0; at < source_.size(); ++at) {
      source_[at] = static_cast<uint8_t>(1 + at % 99);
    }
    for (size_t at = 0; at < constants_.size(); ++at) {
      constants_[at] = static_cast<uint8_t>(101 + at % 99);
    }
  }

  void carryOut(const StorePlan& plan) {
    for (size_t index = 0; index < plan.count; ++index) {
      const Store& store = plan.stores[index];
      const uint32_t half = store.isPair ? store.size / 2 : store.size;
      copy(store.to, store.low, half);
      if (store.isPair) {
        copy(store.to + half, store.high, half);
      }
    }
  }

  [[nodiscard]] const Bytes& destination() const { return destination_; }

  [[nodiscard]] Bytes expected(const std::vector<Stretch>& stretches) const {
    Bytes bytes;
    for (const Stretch& stretch : stretches) {
      const Bytes& from = stretch.origin.isConstant ? constants_ : source_;
      const auto first = from.begin() + stretch.origin.from;
      bytes.insert(bytes.end(), first, first + stretch.size);
    }
    return bytes;
  }

 private:
  // at() so that what reaches past an end fails.
  void copy(uint32_t to, const Origin& origin, uint32_t size) {
    for (uint32_t at = 0; at < size; ++at) {
      const Bytes& from = origin.isConstant ? constants_ : source_;
      destination_.at(to + at) = from.at(origin.from + at);
    }
  }

  Bytes destination_;
  Bytes source_;
  Bytes constants_;
};

// No more than a plan has room for, a byte a store.
constexpr uint32_t planSize = 60;

// Stretches of 1 to `longest` bytes, in turn of the source and of the constants.
std::vector<Stretch> randomStretches(std::mt19937& random, uint32_t longest) {
  std::vector<Stretch> stretches;
  uint32_t end = 0;
  bool isConstant = random() % 2 == 0;
  while (end < planSize) {
    const uint32_t length = std::min(1 + static_cast<uint32_t>(random()) % longest, planSize - end);
    const uint32_t from = static_cast<uint32_t>(random()) % (planSize + 1 - length);
    stretches.push_back({end, length, {from, isConstant}});
    end += length;
    isConstant = !isConstant;
  }
  return stretches;
}

TEST(StorePlan, WritesEveryByteWithinBounds) {
  std::mt19937 random(7);
  const PlanLimits limits{.source = planSize, .constants = planSize};
  for (int round = 0; round < 2000; ++round) {
    const uint32_t longest = 1 + static_cast<uint32_t>(random()) % 40;
    const std::vector<Stretch> stretches = randomStretches(random, longest);
    Memory memory(planSize, limits);
    ASSERT_NO_THROW(memory.carryOut(planStores(stretches, limits)));
    ASSERT_EQ(memory.destination(), memory.expected(stretches)) << "round " << round;
  }
}

TEST(StorePlan, TakesTwoStoresForTwentyFiveBytes) {
  const std::vector<Stretch> stretches{{0, 25, {0, false}}};
  const StorePlan plan = planStores(stretches, {.source = 25, .constants = 0});
  EXPECT_EQ(plan.count, 2U);
}

TEST(StorePlan, PutsEightBytesAndEightConstantsIntoOneStore) {
  const std::vector<Stretch> stretches{{0, 8, {0, false}}, {8, 8, {0, true}}};
  const StorePlan plan = planStores(stretches, {.source = 8, .constants = 8});
  EXPECT_EQ(plan.count, 1U);
}

TEST(StorePlan, BeginsWhereTheDestinationBegins) {
  const std::vector<Stretch> stretches{{8, 16, {0, false}}};
  const StorePlan plan = planStores(stretches, {.source = 16, .constants = 0});
  ASSERT_EQ(plan.count, 1U);
  EXPECT_EQ(plan.stores[0].to, 8U);
}

TEST(StorePlan, CopiesWhatIsLargeAsAWhole) {
  const std::vector<Stretch> stretches{
      {0, 4, {0, true}}, {4, 300, {0, false}}, {304, 4, {8, true}}};
  const StorePlan plan = planStores(stretches, {.source = 300, .constants = 16});
  ASSERT_EQ(plan.count, 3U);
  EXPECT_EQ(plan.stores[1].to, 4U);
  EXPECT_EQ(plan.stores[1].size, 300U);
  EXPECT_EQ(plan.stores[2].to, 304U);
}

TEST(Stretches, ContinueTheLastUpTo256Bytes) {
  mesh::wire::Stretches<8> stretches;
  stretches.append({0, 200, {10, false}});
  stretches.append({200, 0, {99, true}});
  stretches.append({200, 56, {210, false}});
  ASSERT_EQ(stretches.count, 1U);
  EXPECT_EQ(stretches.list[0].to, 0U);
  EXPECT_EQ(stretches.list[0].size, 256U);
  EXPECT_EQ(stretches.list[0].origin.from, 10U);
  stretches.append({256, 1, {266, false}});
  EXPECT_EQ(stretches.count, 2U);
}

TEST(Stretches, ContinueTheLastWithItsNextBytesAlone) {
  mesh::wire::Stretches<8> stretches;
  stretches.append({0, 8, {10, false}});
  stretches.append({8, 8, {18, true}});   // other bytes
  stretches.append({16, 8, {34, true}});  // later bytes
  stretches.append({32, 8, {42, true}});  // at a later place
  stretches.append({40, 8, {50, true}});  // the next
  EXPECT_EQ(stretches.count, 4U);
  EXPECT_EQ(stretches.all().back().size, 16U);
}

}  // namespace
