// When packing succeeds, when it fails, and what it reports.
#include <gtest/gtest.h>

#include "oracle/messages/description.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "oracle/values/value.hpp"

namespace oracle {
namespace {

using Trace = std::vector<std::string>;

TEST(Oracle, PacksIntoExactlyEnoughRoom) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  Value value = zeroValue(key);
  value[0].scalar = 1;
  setBytes(value[3], {1, 2, 3});
  const PackResult enough = pack(key, &value, false, 33, false, false);
  EXPECT_EQ(enough.result, 0U);
  EXPECT_EQ(enough.length, std::optional<uint32_t>(33));
  EXPECT_EQ(filled(enough.bytes), packed(key, value));
  const PackResult tooLittle = pack(key, &value, false, 32, false, false);
  EXPECT_EQ(tooLittle.result, 0xFFFFFFFF);
  EXPECT_EQ(tooLittle.length, std::nullopt);
  EXPECT_TRUE(tooLittle.bytes.empty());
  EXPECT_EQ(pack(key, nullptr, false, 33, false, false).result, 0xFFFFFFFF);
  EXPECT_EQ(pack(key, &value, false, 33, true, false).result, 0xFFFFFFFF);
}

TEST(Oracle, ReportsTheSizeForANullBuffer) {
  const Description& type = descriptionOf("l2vpn_sync_vpls_ac");
  const Value value = zeroValue(type);
  const PackResult asked = pack(type, &value, true, 100, false, false);
  EXPECT_EQ(asked.result, 0U);
  EXPECT_EQ(asked.length, std::optional<uint32_t>(72));
  EXPECT_TRUE(asked.bytes.empty());
  EXPECT_EQ(asked.trace,
            Trace({"log level=2 code=22 file=\"\" function=\"l2vpn_sync_vpls_ac_pack\" "
                   "text=\"[VELTA]:Param invalid(null, 100, nonNull)\""}));
  const PackResult tooLittle = pack(type, &value, true, 0, false, false);
  EXPECT_EQ(tooLittle.result, 0xFFFFFFFF);
  EXPECT_TRUE(tooLittle.trace.empty());
}

TEST(Oracle, FailsToPackBeyondTheLimitOfAMessage) {
  const auto packs = [](Value value) {
    return pack(*value.message, &value, true, UINT32_MAX, false, false).result == 0;
  };
  Value key = zeroValue(descriptionOf("dbginfo_key_l2vpn"));
  setBytes(key[3], {});
  key[3].length = UINT32_MAX - 28;
  EXPECT_TRUE(packs(key));
  ++key[3].length;
  EXPECT_FALSE(packs(key));

  Value command = zeroValue(descriptionOf("dbginfo_cmd_key_l2vpn"));
  nested(command[4])[3] = key[3];
  nested(command[4])[3].length = 0xFFFFFFF7 - 78;
  EXPECT_TRUE(packs(command));
  ++nested(command[4])[3].length;
  EXPECT_FALSE(packs(command));

  Value query = zeroValue(descriptionOf("l2vpn_cfg_query_dfx_key"));
  nested(query[0])[2] = key[3];
  nested(query[0])[2].length = 0xFFFFFFFE - 196;
  EXPECT_TRUE(packs(query));
  ++nested(query[0])[2].length;
  EXPECT_FALSE(packs(query));
}

TEST(Oracle, FailsToPackItemsBehindANullPointer) {
  Value value = zeroValue(descriptionOf("l2vpn_cfg_query_dfx_rec"));
  value[1].length = 1;
  EXPECT_EQ(compactSize(*value.message, value), noSize);
  EXPECT_EQ(pack(*value.message, &value, false, 40000, false, false).result, 0xFFFFFFFF);
}

}  // namespace
}  // namespace oracle
