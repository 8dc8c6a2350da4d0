// Blocks at odd addresses. The descriptors in a batch's block and the items of a vector are C
// structs, so hosts must align their blocks. Messages and byte strings need no alignment.

#include <gtest/gtest.h>

#include "oracle/values/generate.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"

namespace {

using harness::recorder;

class OddBlocks : public testing::TestWithParam<harness::Operations> {
 protected:
  ~OddBlocks() override { recorder().blockShift = 0; }

  const oracle::Description& message() const { return oracle::descriptionOf(GetParam().name); }

  // Without items.
  oracle::Value randomRecord() {
    oracle::Value value = oracle::randomValue(message(), random_, oracle::Density::Full);
    for (size_t slot = 0; slot < value.fields.size(); ++slot) {
      if (value[slot].kind == oracle::Kind::Vector) {
        value[slot] = oracle::zeroField(message().fields[slot]);
      }
    }
    return value;
  }

 private:
  std::mt19937_64 random_{13};
};

TEST_P(OddBlocks, ServeForSendingOneRecord) {
  for (size_t shift = 1; shift < 16; ++shift) {
    recorder().blockShift = shift;
    for (const bool reversed : {false, true}) {
      EXPECT_EQ(harness::compareSend(GetParam(), oracle::Operation::Single, {randomRecord()}, shift,
                                     reversed),
                "");
    }
  }
}

TEST_P(OddBlocks, ServeForByteStrings) {
  for (size_t shift = 1; shift < 16; ++shift) {
    recorder().blockShift = shift;
    for (const bool reversed : {false, true}) {
      EXPECT_EQ(harness::compareUnpack(
                    GetParam(), harness::packed(GetParam(), randomRecord(), reversed), reversed),
                "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, OddBlocks, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
