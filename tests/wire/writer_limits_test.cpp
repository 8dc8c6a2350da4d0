// Sizes at the end of 32 bits. Asked for with a null buffer, they take no memory.

#include <gtest/gtest.h>

#include <optional>

#include "l2vpn_cfg/schema.hpp"
#include "support/bytes.hpp"
#include "support/operations.hpp"
#include "support/repeated_memory.hpp"

namespace {

using harness::failure;
using harness::Trace;

uint8_t somewhere = 0;

// The size that __pack states for the record, or nothing when it refuses. What it reports and
// leaves alone is checked on the way.
template <typename Record>
std::optional<uint32_t> statedSize(const Record& record) {
  const auto& operations = harness::operationsOf(mesh::wire::schemaOf<Record>.name);
  harness::resetRecorder();
  uint32_t length = 0xFFFFFFFF;
  const uint32_t result = operations.pack(&record, nullptr, &length);
  if (result == 0) {
    EXPECT_EQ(harness::takeTrace(),
              Trace({harness::reported(std::string(operations.name) + "_pack",
                                       "Param invalid(null, 4294967295, nonNull)")}));
    return length;
  }
  EXPECT_EQ(result, failure);
  EXPECT_EQ(length, 0xFFFFFFFFU);
  EXPECT_EQ(harness::takeTrace(), Trace());
  return std::nullopt;
}

using Size = std::optional<uint32_t>;

TEST(LargestSize, OfAKeyIsThirtyTwoBits) {
  dbginfo_key_l2vpn key{};
  key.f3 = &somewhere;
  const auto ofSize = [&](uint64_t size) {
    key.f3_len = static_cast<uint32_t>(size - 28);
    return statedSize(key);
  };
  EXPECT_EQ(ofSize(0x7FFFFFFF), Size(0x7FFFFFFF));
  EXPECT_EQ(ofSize(0x80000000), Size(0x80000000));
  EXPECT_EQ(ofSize(0xFFFFFFFE), Size(0xFFFFFFFE));
  EXPECT_EQ(ofSize(0xFFFFFFFF), Size(0xFFFFFFFF));
  EXPECT_EQ(ofSize(0x100000000), std::nullopt);
  EXPECT_EQ(ofSize(0x100000001), std::nullopt);
  EXPECT_EQ(ofSize(0xFFFFFFFFULL + 28), std::nullopt) << "the longest byte string";
}

TEST(LargestSize, OfParametersIsThirtyTwoBits) {
  dbginfo_para_l2vpn para{};
  para.f7 = &somewhere;
  para.f7_len = 0xFFFFFFFF - 36;
  EXPECT_EQ(statedSize(para), Size(0xFFFFFFFF));
  ++para.f7_len;
  EXPECT_EQ(statedSize(para), std::nullopt);
  --para.f7_len;
  para.f0 = 1;
  EXPECT_EQ(statedSize(para), std::nullopt) << "two bytes more";
}

TEST(LargestSize, OfCommonParametersIsThirtyTwoBits) {
  l2vpn_cfg_query_comm_param param{};
  param.f2 = &somewhere;
  param.f2_len = 0xFFFFFFFF - 26;
  EXPECT_EQ(statedSize(param), Size(0xFFFFFFFF));
  ++param.f2_len;
  EXPECT_EQ(statedSize(param), std::nullopt);
}

TEST(LargestSize, OfACommonResultIsThirtyTwoBits) {
  l2vpn_cfg_query_comm_rec result{};
  result.f3 = &somewhere;
  result.f3_len = 0xFFFFFFFF - 30;
  EXPECT_EQ(statedSize(result), Size(0xFFFFFFFF));
  ++result.f3_len;
  EXPECT_EQ(statedSize(result), std::nullopt);
}

TEST(LargestSize, OfTwoByteStringsIsThirtyTwoBitsTogether) {
  dbginfo_endata_l2vpn data{};
  data.f12 = &somewhere;
  data.f14 = &somewhere;
  data.f12_len = 0x80000000;
  data.f14_len = 0x7FFFFFFF - 58;
  EXPECT_EQ(statedSize(data), Size(0xFFFFFFFF));
  ++data.f14_len;
  EXPECT_EQ(statedSize(data), std::nullopt);
  // Together they wrap to a small size.
  data.f12_len = 0xFFFFFFFF;
  data.f14_len = 0xFFFFFFFF;
  EXPECT_EQ(statedSize(data), std::nullopt);
}

TEST(LargestSize, OfACommandKeyIs0xFFFFFFF7) {
  dbginfo_cmd_key_l2vpn command{};
  command.f4.f3 = &somewhere;
  command.f4.f3_len = 0xFFFFFFF7 - 78;
  EXPECT_EQ(statedSize(command), Size(0xFFFFFFF7));
  for (int more = 0; more < 9; ++more) {
    ++command.f4.f3_len;
    EXPECT_EQ(statedSize(command), std::nullopt) << "f4.f3_len " << command.f4.f3_len;
  }
  command.f4.f3 = nullptr;
  command.f3.f7 = &somewhere;
  command.f3.f7_len = 0xFFFFFFF7 - 78;
  EXPECT_EQ(statedSize(command), Size(0xFFFFFFF7));
  ++command.f3.f7_len;
  EXPECT_EQ(statedSize(command), std::nullopt);
  // Each table within 32 bits, but not together.
  command.f4.f3 = &somewhere;
  command.f4.f3_len = 0x80000000;
  command.f3.f7_len = 0x80000000;
  EXPECT_EQ(statedSize(command), std::nullopt);
}

TEST(LargestSize, OfAQueryKeyIs0xFFFFFFFE) {
  l2vpn_cfg_query_dfx_key query{};
  query.f0.f2 = &somewhere;
  query.f0.f2_len = 0xFFFFFFFE - 196;
  EXPECT_EQ(statedSize(query), Size(0xFFFFFFFE));
  for (int more = 0; more < 3; ++more) {
    ++query.f0.f2_len;
    EXPECT_EQ(statedSize(query), std::nullopt) << "f0.f2_len " << query.f0.f2_len;
  }
  query.f0.f2_len = 0xFFFFFFFF;
  EXPECT_EQ(statedSize(query), std::nullopt);
}

TEST(LargestSize, OfAResultIsThirtyTwoBits) {
  l2vpn_cfg_query_dfx_rec result{};
  result.f0.f3 = &somewhere;
  result.f0.f3_len = 0xFFFFFFFF - 46;
  EXPECT_EQ(statedSize(result), Size(0xFFFFFFFF));
  ++result.f0.f3_len;
  EXPECT_EQ(statedSize(result), std::nullopt);
  // One item of zeros: its word, the count and the vector's word, and 16618.
  static l2vpn_cfg_query_dfx_item item;
  result.f1 = &item;
  result.f1_count = 1;
  result.f0.f3_len = 0xFFFFFFFF - (46 + 8 + 4 + 16618);
  EXPECT_EQ(statedSize(result), Size(0xFFFFFFFF));
  ++result.f0.f3_len;
  EXPECT_EQ(statedSize(result), std::nullopt);
}

TEST(LargestSize, IsExceededByACountAlone) {
  static l2vpn_cfg_query_dfx_item only{};
  l2vpn_cfg_query_dfx_rec result{};
  result.f1 = &only;
  result.f1_count = 1;
  EXPECT_EQ(statedSize(result), Size(18 + 28 + 4 + 16618));
  for (const uint32_t count : {258'400U, 0x10000000U, 0x80000000U, 0xFFFFFFFFU}) {
    result.f1_count = count;
    EXPECT_EQ(statedSize(result), std::nullopt) << count << " items, of which one is there";
  }
}

TEST(LargestSize, HoldsAsManyItemsAsFitInIt) {
  if (!harness::canRepeatMemory) {
    GTEST_SKIP() << "the thread sanitizer";
  }
  constexpr uint32_t each = 4 + 16618;
  constexpr uint32_t count = (0xFFFFFFFF - 18 - 28) / each;
  const harness::RepeatedMemory items(uint64_t{count + 1} * sizeof(l2vpn_cfg_query_dfx_item), 0);
  l2vpn_cfg_query_dfx_rec result{};
  result.f1 = reinterpret_cast<l2vpn_cfg_query_dfx_item*>(items.data());
  result.f1_count = count;
  EXPECT_EQ(statedSize(result), Size(18 + 28 + count * each));
  result.f1_count = count + 1;
  EXPECT_EQ(statedSize(result), std::nullopt);
}

TEST(LargestSize, IsUndefinedForItemsBehindANullPointer) {
  l2vpn_cfg_query_dfx_rec result{};
  for (const uint32_t count :
       {1U, 2U, harness::largestVectorCount, harness::largestVectorCount + 1, 0xFFFFFFFFU}) {
    result.f1_count = count;
    EXPECT_EQ(statedSize(result), std::nullopt) << count << " items";
  }
}

}  // namespace
