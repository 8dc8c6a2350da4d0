// Messages by name, identifier and similar name.

#include <gtest/gtest.h>

#include <algorithm>

#include "inspect/messages/messages.hpp"
#include "mesh_l2vpn/messages.h"
#include "tests/inspect/bytes/failure_of.hpp"

namespace inspect {
namespace {

#define ONE_MORE(X, identifier) +1

TEST(Messages, AreThoseOfThePublicLists) {
  EXPECT_EQ(messages().size(), size_t{0 L2VPN_MESSAGES(ONE_MORE)});
}

TEST(Messages, FoundByNameAndIdentifier) {
  for (const KnownMessage& message : messages()) {
    EXPECT_EQ(&messageNamed(message.name), &message);
    EXPECT_EQ(&messageNamed(std::to_string(message.id())), &message);
    EXPECT_EQ(findById(message.id()), &message);
  }
  EXPECT_EQ(messageNamed("0x5EED5F0D").name, "l2vpn_sync_vpls_ac_update");
  EXPECT_EQ(messageNamed("0x5eed5f0d").name, "l2vpn_sync_vpls_ac_update");
}

TEST(Messages, RejectsUnknown) {
  EXPECT_THROW(messageNamed("0x5EED5F0E"), Failure);
  EXPECT_THROW(messageNamed(""), Failure);
  EXPECT_EQ(findById(1), nullptr);
}

TEST(Messages, SuggestsSimilarNames) {
  const auto isFirst = [](std::string_view name, std::string_view wanted) {
    return (didYouMean(wanted) + ',').starts_with("; did you mean " + std::string(name) + ',');
  };
  EXPECT_TRUE(isFirst("l2vpn_sync_vpls_ac", "l2vpn_sync_vpls_acc"));
  EXPECT_TRUE(isFirst("dbginfo_key_l2vpn", "dbginfo_key_l2vnp"));
  EXPECT_TRUE(isFirst("l2vpn_sync_vpls_vsimac", "vpls_vsimac"));
  EXPECT_EQ(didYouMean("nothing like it at all"), "");
}

TEST(Messages, SuggestsTheBestThree) {
  EXPECT_EQ(didYouMean("sync_stp"),
            "; did you mean l2vpn_sync_stp, l2vpn_sync_stp_update, l2vpn_sync_stp_delete");
  EXPECT_EQ(std::ranges::count(didYouMean("vpls_vsi"), ','), 2);
  // Parts of less than three characters match too much.
  EXPECT_EQ(didYouMean("ac"), "");
}

std::string nameFailureOf(std::string_view name) {
  return failureOf([&] { messageNamed(name); }, Cause::Usage);
}

TEST(Messages, ErrorTellsNamesFromIdentifiers) {
  EXPECT_EQ(nameFailureOf("0x1"), "unknown identifier 0x1");
  EXPECT_EQ(nameFailureOf("12"), "unknown identifier 12");
  EXPECT_EQ(nameFailureOf("12x"), "unknown message '12x'");
  EXPECT_EQ(nameFailureOf("4294967296"), "unknown message '4294967296'");
  EXPECT_EQ(nameFailureOf("5EED5F0D"), "unknown message '5EED5F0D'; did you mean 0x5EED5F0D");
  EXPECT_EQ(nameFailureOf("l2vpn_sync_stp_updat"),
            "unknown message 'l2vpn_sync_stp_updat'; did you mean l2vpn_sync_stp_update, "
            "l2vpn_sync_subpw_update, l2vpn_sync_stp_delete");
  EXPECT_EQ(messageNamed("0X5eed5f0d").name, "l2vpn_sync_vpls_ac_update");
}

TEST(Messages, ErrorSuggestsName) {
  try {
    messageNamed("l2vpn_sync_stq");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.cause(), Cause::Usage);
    EXPECT_NE(std::string(failure.what()).find("did you mean l2vpn_sync_stp"), std::string::npos);
  }
}

}  // namespace
}  // namespace inspect
