// Input reaches a terminal without control characters.

#include "inspect/texts/printable.hpp"

#include <gtest/gtest.h>

namespace inspect {
namespace {

TEST(Printable, KeepsText) {
  EXPECT_EQ(printable("f1.f0: 'a' ~"), "f1.f0: 'a' ~");
  EXPECT_EQ(printable("Ger\xC3\xA4t, \xE2\x82\xAC, \xF0\x9F\x98\x80"),
            "Ger\xC3\xA4t, \xE2\x82\xAC, \xF0\x9F\x98\x80");
}

TEST(Printable, EscapesControlCharacters) {
  EXPECT_EQ(printable("a\x1b[31m\n\x7f"), "a\\x1b[31m\\x0a\\x7f");
  EXPECT_EQ(printable("\xC2\x9B"), "\\xc2\\x9b");
}

TEST(Printable, EscapesInvalidUtf8) {
  EXPECT_EQ(printable("\x9B"), "\\x9b");
  EXPECT_EQ(printable("\xC3"), "\\xc3");
  EXPECT_EQ(printable("\xE2\x82z"), "\\xe2\\x82z");
}

}  // namespace
}  // namespace inspect
