// Text that is bounded by the memory limit, or passed on to a stream.

#include "inspect/bytes/text.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "inspect/bytes/hex.hpp"

namespace inspect {
namespace {

TEST(Text, AppendsOfAllKinds) {
  Text text;
  text.append('a');
  text.append("bc");
  text.append(3, 'd');
  text.appendNumber(0);
  text.append(' ');
  text.appendNumber(UINT64_MAX);
  EXPECT_EQ(text.view(), "abcddd0 18446744073709551615");
}

TEST(Text, AppendsLongBytesAsHex) {
  std::vector<uint8_t> bytes(40'001);
  for (size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<uint8_t>(at * 7);
  }
  Text text;
  text.appendHex(bytes);
  EXPECT_EQ(text.view(), toHex(bytes));
}

TEST(Text, GrowsUpToTheLimit) {
  const uint64_t before = std::exchange(memoryLimit, 1000);
  for (const size_t first : {size_t{1}, size_t{600}, size_t{900}}) {
    Text text(100);
    text.append(first, 'a');
    text.append(900 - first, 'b');
    EXPECT_EQ(text.view(), std::string(first, 'a') + std::string(900 - first, 'b'));
    try {
      text.append('c');
      ADD_FAILURE() << "a text above the limit";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.cause(), Cause::Memory);
      EXPECT_STREQ(failure.what(), "this text needs 1001 bytes of memory; the limit is 1000");
    }
  }
  memoryLimit = before;
}

// A stream takes text of any length; only a piece of it is kept.
TEST(Text, PassesPiecesToAStream) {
  const uint64_t before = std::exchange(memoryLimit, 1000);
  std::ostringstream out;
  std::string expected;
  {
    Text text(out);
    for (int line = 0; line < 10'000; ++line) {
      text.append("line ");
      text.appendNumber(static_cast<uint64_t>(line));
      expected += "line " + std::to_string(line);
      ASSERT_LT(text.view().size(), 40'000u);
      ASSERT_EQ(out.str().size() + text.view().size(), expected.size());
    }
    text.flush();
    EXPECT_TRUE(text.view().empty());
  }
  EXPECT_EQ(out.str(), expected);
  memoryLimit = before;
}

TEST(Text, HandsItsBlockOver) {
  Text text;
  text.append("block");
  char* const block = text.release();
  EXPECT_STREQ(block, "block");
  EXPECT_TRUE(text.view().empty());
  text.append("next");
  EXPECT_EQ(text.view(), "next");
  EXPECT_STREQ(block, "block");
  std::free(block);
}

}  // namespace
}  // namespace inspect
