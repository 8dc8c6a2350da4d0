// The names that identifiers are the hashes of. The agreement tests compare the rest of the
// catalogue, all identifiers included, with the schemas.
#include <gtest/gtest.h>

#include "oracle/messages/description.hpp"

namespace oracle {
namespace {

TEST(Oracle, HashesAsPublished) {
  EXPECT_EQ(hashOf(""), 0x811C9DC5);
  EXPECT_EQ(hashOf("a"), 0xE40C292C);
  EXPECT_EQ(hashOf("foobar"), 0xBF9CF968);
}

TEST(Oracle, QualifiesNamesButInConfiguration) {
  EXPECT_EQ(descriptionOf("l2vpn_cfg_query_dfx_key").hashedName, "l2vpn_cfg_query_dfx_key");
  EXPECT_EQ(descriptionOf("l2vpn_stat_pw_stat").hashedName, "l2vpn_stat.pw_stat");
  EXPECT_EQ(descriptionOf("l2vpn_sync_vpls_ac").hashedName, "l2vpn_sync.vpls_ac");
  EXPECT_EQ(descriptionOf("l2vpn_sync_vpls_ac_delete").hashedName, "l2vpn_sync.vpls_ac_delete");
}

}  // namespace
}  // namespace oracle
