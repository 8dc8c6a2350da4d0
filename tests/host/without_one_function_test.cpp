// A process that has two of the three bounded memory functions. The library uses them, and the C
// library replaces only the third.

#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "host/memory.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"

namespace {

#if defined(WITHOUT_MemcpyS)
const std::string missing = "memcpy_s";
#elif defined(WITHOUT_MemsetS)
const std::string missing = "memset_s";
#elif defined(WITHOUT_MemcpySOptAsm)
const std::string missing = "memcpy_sOptAsm";
#endif

std::multiset<std::string> called;

using Called = std::multiset<std::string>;

Called butTheMissing(Called functions) {
  functions.erase(missing);
  return functions;
}

TEST(SUITE, TheOthersAreThere) {
  EXPECT_EQ(&::memcpy_s == nullptr, missing == "memcpy_s");
  EXPECT_EQ(&::memset_s == nullptr, missing == "memset_s");
  EXPECT_EQ(&::memcpy_sOptAsm == nullptr, missing == "memcpy_sOptAsm");
}

// Only this message's operations call all three.
TEST(SUITE, NoOtherIsCalledForIt) {
  const auto& operations = harness::operationsOf("l2vpn_cfg_query_dfx_item");
  std::vector<uint8_t> record(operations.schema().size, 0x44);
  harness::Buffer buffer(17000);
  auto length = static_cast<uint32_t>(buffer.size());
  called.clear();
  ASSERT_EQ(operations.pack(record.data(), buffer.data(), &length), 0U);
  EXPECT_EQ(called, butTheMissing({"memcpy_sOptAsm"}));
  called.clear();
  ASSERT_EQ(operations.unpack(buffer.data(), length, record.data()), record.size());
  EXPECT_EQ(called, butTheMissing({"memset_s", "memcpy_s"}));
}

TEST(SUITE, EveryMessageIsWrittenAndReadAsEver) {
  std::mt19937_64 random(12);
  for (const harness::Operations& operations : harness::allOperations()) {
    const oracle::Description& message = oracle::descriptionOf(operations.name);
    for (const bool reversed : {false, true}) {
      const oracle::Value value = oracle::randomValue(message, random, oracle::Density::Full);
      const auto size = static_cast<uint32_t>(oracle::compactSize(message, value));
      EXPECT_EQ(harness::comparePack(operations, value, size, reversed), "");
      EXPECT_EQ(harness::compareSend(operations, oracle::Operation::Single, {value}, 0, reversed),
                "");
      EXPECT_EQ(harness::compareUnpack(operations, harness::packed(operations, value, reversed),
                                       reversed),
                "");
      if (!message.hasOutOfLineParts) {
        EXPECT_EQ(harness::compareUnpack(operations, oracle::fixedImage(message, value, reversed),
                                         reversed),
                  "");
      }
    }
  }
}

}  // namespace

extern "C" {

#ifndef WITHOUT_MemcpyS
int memcpy_s(void* to, size_t, const void* from, size_t count) {
  called.insert("memcpy_s");
  std::memcpy(to, from, count);
  return 0;
}
#endif
#ifndef WITHOUT_MemsetS
int memset_s(void* to, size_t, int value, size_t count) {
  called.insert("memset_s");
  std::memset(to, value, count);
  return 0;
}
#endif
#ifndef WITHOUT_MemcpySOptAsm
int memcpy_sOptAsm(void* to, size_t, const void* from, size_t count) {
  called.insert("memcpy_sOptAsm");
  std::memcpy(to, from, count);
  return 0;
}
#endif

}  // extern "C"
