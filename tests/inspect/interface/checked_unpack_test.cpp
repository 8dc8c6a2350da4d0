// checked_unpack gives the verdict with the record: mesh_l2vpn/inspect.hpp.
#include <gtest/gtest.h>

#include <cstring>

#include "mesh_l2vpn/inspect.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"

namespace {

using mesh_l2vpn::checked;
using mesh_l2vpn::checked_unpack;

template <typename T>
bool isZero(const T& record) {
  const T zeros{};
  return std::memcmp(&record, &zeros, sizeof zeros) == 0;
}

TEST(CheckedUnpack, AcceptsEveryRecordAndRejectsItsBeginnings) {
  std::mt19937_64 random(12);
  mesh_l2vpn::for_each_message([&random](auto of) {
    using T = typename decltype(of)::record;
    const oracle::Description& description = oracle::descriptionOf(std::string(of.name));
    const oracle::RecordImage image(
        description, oracle::randomValue(description, random, oracle::Density::Full));
    const std::vector<uint8_t> bytes = mesh_l2vpn::pack(*static_cast<const T*>(image.data()));
    const checked<T> whole = checked_unpack<T>(bytes);
    EXPECT_TRUE(whole) << of.name;
    EXPECT_EQ(whole.verdict, MESH_L2VPN_ACCEPTED) << of.name;
    EXPECT_STREQ(whole.fault.text, "");
    EXPECT_EQ(mesh_l2vpn::pack(*whole.record), mesh_l2vpn::pack(*mesh_l2vpn::unpack<T>(bytes)))
        << of.name;

    for (const size_t length : {size_t{0}, size_t{3}, size_t{12}}) {
      const checked<T> cut = checked_unpack<T>({bytes.data(), length});
      EXPECT_FALSE(cut) << of.name;
      EXPECT_EQ(cut.verdict, MESH_L2VPN_REJECTED) << of.name;
      EXPECT_STRNE(cut.fault.text, "") << of.name;
      EXPECT_TRUE(isZero(*cut.record)) << of.name;
    }
  });
}

TEST(CheckedUnpack, NamesTheFieldAtFault) {
  const l2vpn_sync_stp stp{1, 2, 3, 4};
  std::vector<uint8_t> bytes = mesh_l2vpn::pack(stp);
  bytes.pop_back();  // the end of the last value that was written
  const checked<l2vpn_sync_stp> cut = checked_unpack<l2vpn_sync_stp>(bytes);
  EXPECT_FALSE(cut);
  EXPECT_EQ(std::string(cut.fault.path).substr(0, 1), "f");
  EXPECT_TRUE(isZero(*cut.record));
}

TEST(CheckedUnpack, ToleratesAFaultWithinAnUpdate) {
  l2vpn_sync_stp_update update{};
  update.f0 = 7;
  update.f1.f3 = 4;
  std::vector<uint8_t> bytes = mesh_l2vpn::pack(update);
  // Some byte within the record damages it, and not the update.
  bool tolerated = false;
  for (size_t at = 0; at < bytes.size(); ++at) {
    std::vector<uint8_t> damaged = bytes;
    damaged[at] = 0xFF;
    const checked<l2vpn_sync_stp_update> unpacking = checked_unpack<l2vpn_sync_stp_update>(damaged);
    if (unpacking.verdict == MESH_L2VPN_TOLERATED) {
      tolerated = true;
      EXPECT_TRUE(unpacking);
      EXPECT_EQ(unpacking.record->f0, 7);
      EXPECT_STRNE(unpacking.fault.text, "");
    }
  }
  EXPECT_TRUE(tolerated);
}

TEST(CheckedUnpack, RejectsBytesThat32BitsDoNotCount) {
  const std::vector<uint8_t> bytes = mesh_l2vpn::pack(l2vpn_sync_stp{1, 2, 3, 4});
  EXPECT_FALSE(checked_unpack<l2vpn_sync_stp>({bytes.data(), (size_t{1} << 32) + bytes.size()}));
}

}  // namespace
