// The identifiers of all messages together, the one thing that no service sees alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/operations.hpp"

namespace {

#define ID(message, ...) mesh::msg::messageOf<message>.id,

constexpr std::array identifiers{L2VPN_CFG_MESSAGES(ID) L2VPN_STAT_MESSAGES(ID)
                                     L2VPN_SYNC_MESSAGES(ID)};

constexpr bool allDiffer() {
  auto sorted = identifiers;
  std::sort(sorted.begin(), sorted.end());
  return std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
}

static_assert(identifiers.size() == 85);
static_assert(allDiffer());

TEST(Identifiers, OfAllMessagesDiffer) {
  EXPECT_TRUE(allDiffer());
  EXPECT_EQ(harness::allOperations().size(), 85U);
}

}  // namespace
