// The positions of a batch's descriptors and tables, as the middleware sees them during the call.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"
#include "zarnimesh/mesh.h"

namespace {

// One call of the middleware.
struct Call {
  uint32_t destination;
  uint64_t descriptors;
  std::vector<mesh_msg_desc> content;
  std::vector<uint8_t> raw;
};

Call last;

uint32_t take(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count) {
  last = {destination,
          reinterpret_cast<uintptr_t>(descriptors),
          {descriptors, descriptors + count},
          {}};
  last.raw.resize(count * sizeof(mesh_msg_desc));
  if (count != 0) {
    std::memcpy(last.raw.data(), descriptors, last.raw.size());
  }
  return 0;
}

// From the first table to the first descriptor.
uint64_t distance() {
  return last.descriptors - last.content.at(0).data;
}

TEST(Descriptors, StandBehindTheRegionOfACompactBatch) {
  for (const uint32_t count : {1U, 2U, 100U}) {
    const std::vector<dbginfo_key_l2vpn> keys(count);
    EXPECT_EQ(dbginfo_key_l2vpn__sendbatch(0xFFFFFFFF, keys.data(), count, 0), 0U);
    ASSERT_EQ(last.content.size(), count);
    EXPECT_EQ(last.destination, 0xFFFFFFFF);
    EXPECT_EQ(distance(), 0x10000U);
    for (uint32_t index = 0; index < count; ++index) {
      EXPECT_EQ(last.content[index].data, last.content[0].data + 20 * index);
      EXPECT_EQ(last.content[index].msg_id, dbginfo_key_l2vpn__msg_id);
      EXPECT_EQ(last.content[index].length, 20U);
    }
  }
}

TEST(Descriptors, StandBehindTheImagesOfAFixedBatch) {
  for (const uint32_t count : {1U, 2U, 100U}) {
    const std::vector<l2vpn_stat_pw_stat> records(count);
    EXPECT_EQ(l2vpn_stat_pw_stat__sendbatch(0, records.data(), count, 0), 0U);
    ASSERT_EQ(last.content.size(), count);
    EXPECT_EQ(distance(), 128 * count);
    for (uint32_t index = 0; index < count; ++index) {
      EXPECT_EQ(last.content[index].data, last.content[0].data + 128 * index);
      EXPECT_EQ(last.content[index].msg_id, l2vpn_stat_pw_stat__msg_id);
      EXPECT_EQ(last.content[index].length, 128U);
    }
  }
}

TEST(Descriptors, AreSixteenBytesInTheHostsOrder) {
  const l2vpn_sync_vpls_ac_update update{};
  EXPECT_EQ(l2vpn_sync_vpls_ac_update__sendmsg(1, &update, 1), 0U);
  ASSERT_EQ(last.raw.size(), 16U);
  std::vector<uint8_t> expected(8);
  std::memcpy(expected.data(), &last.content[0].data, 8);
  for (const int byte : {0x0D, 0x5F, 0xED, 0x5E, 120, 0, 0, 0}) {
    expected.push_back(static_cast<uint8_t>(byte));
  }
  EXPECT_EQ(last.raw, expected);
}

// Whatever the distance between records, each record goes to its own table.
TEST(Descriptors, AreInTheOrderOfTheRecords) {
  std::vector<dbginfo_key_l2vpn> keys(3);
  keys[1].f0 = 1;
  keys[2].f2 = 1;
  EXPECT_EQ(dbginfo_key_l2vpn__sendbatch(1, keys.data(), 3, 0), 0U);
  ASSERT_EQ(last.content.size(), 3U);
  EXPECT_EQ(last.content[0].length, 20U);
  EXPECT_EQ(last.content[1].length, 22U);
  EXPECT_EQ(last.content[2].length, 24U);
  EXPECT_EQ(last.content[1].data - last.content[0].data, 20U);
  EXPECT_EQ(last.content[2].data - last.content[0].data, 42U);
}

}  // namespace

extern "C" {

uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count) {
  return take(destination, descriptors, count);
}
uint32_t MESH_SendToMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                        uint64_t /*extra*/) {
  return take(destination, descriptors, count);
}
uint32_t MESH_RegIDLFuncHook(uint32_t, mesh_unpack_hook, mesh_free_hook) {
  return 0;
}
uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook) {
  return 0;
}

}  // extern "C"
