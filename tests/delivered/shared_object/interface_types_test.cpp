#include "delivered/shared_object/interface_types.hpp"

#include <gtest/gtest.h>

TEST(PlatformHeaders, DeclareWhatTheLibraryCalls) {
  EXPECT_EQ(interfaces::asThePlatformHasThem(), interfaces::asTheLibraryHasThem());
}
