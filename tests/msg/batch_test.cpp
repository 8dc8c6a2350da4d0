// Compact batches: up to 64 KiB of tables without gaps, or nothing.

#include <gtest/gtest.h>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "oracle/operations/writer.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"
#include "support/operations.hpp"

namespace {

using harness::Buffer;
using harness::failure;
using harness::hex;
using harness::Layout;
using harness::recorder;
using harness::Trace;

constexpr uint32_t region = 0x10000;

Buffer exes(region, 'x');

// A key whose message takes `size` bytes.
dbginfo_key_l2vpn keyOf(uint32_t size) {
  return {0, 0, 0, size - 28, exes.data()};
}

std::string taken(size_t count) {
  return "memAlloc size=" + std::to_string(region + 16 * count) +
         " owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\" -> #1";
}
const std::string released = "memFree #1 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\"";

void expectSent(const std::vector<uint32_t>& sizes) {
  std::vector<dbginfo_key_l2vpn> keys;
  for (const uint32_t size : sizes) {
    keys.push_back(keyOf(size));
  }
  const auto count = static_cast<uint32_t>(keys.size());
  harness::resetRecorder();
  EXPECT_EQ(dbginfo_key_l2vpn__sendbatch(1, keys.data(), count, 0), 0U);
  EXPECT_EQ(
      harness::takeTrace(),
      Trace({taken(count), "MESH_SendMsg destination=1 count=" + std::to_string(count), released}));
  ASSERT_EQ(recorder().sent.size(), sizes.size());
  uint64_t offset = 0;
  for (size_t index = 0; index < sizes.size(); ++index) {
    const harness::SentTable& table = recorder().sent[index];
    EXPECT_EQ(table.address - recorder().sent[0].address, offset) << "table " << index;
    EXPECT_EQ(hex(table.bytes), hex(Layout()
                                        .u32(16)
                                        .u16(12, sizes[index] - 16, 0, 0, 0, 4)
                                        .u32(12)
                                        .u32(4, sizes[index] - 28)
                                        .fill(sizes[index] - 28, 'x')));
    offset += sizes[index];
  }
}

void expectNothingSent(const std::vector<dbginfo_key_l2vpn>& keys) {
  const auto count = static_cast<uint32_t>(keys.size());
  for (const uint64_t extra : {0U, 7U}) {
    harness::resetRecorder();
    EXPECT_EQ(dbginfo_key_l2vpn__sendbatch(1, keys.data(), count, extra), failure);
    EXPECT_EQ(harness::takeTrace(), Trace({taken(count), released}));
    EXPECT_TRUE(recorder().sent.empty());
  }
}

TEST(Batch, FillsItsRegionToTheLastByte) {
  expectSent({30000, region - 30000});
  expectSent({region});
  expectSent({region - 29 - 31, 29, 31});
}

TEST(Batch, RefusesOneByteMoreThanItsRegion) {
  expectNothingSent({keyOf(30000), keyOf(region - 30000 + 1)});
  expectNothingSent({keyOf(region + 1)});
  expectNothingSent({keyOf(region - 29 - 31), keyOf(29), keyOf(32)});
}

TEST(Batch, RefusesARecordBehindAFullRegion) {
  expectNothingSent({keyOf(region), dbginfo_key_l2vpn{}});
  expectNothingSent({keyOf(40000), keyOf(region - 40000), dbginfo_key_l2vpn{}, keyOf(29)});
}

TEST(Batch, PlacesTablesBackToBack) {
  expectSent({29, 31, 33, 35, 29});
}

TEST(Batch, RefusesANullArray) {
  for (const uint32_t count : {1U, 2U, 100U}) {
    harness::resetRecorder();
    EXPECT_EQ(dbginfo_key_l2vpn__sendbatch(1, nullptr, count, 0), failure);
    EXPECT_EQ(harness::takeTrace(), Trace({taken(count), released}));
  }
  harness::resetRecorder();
  EXPECT_EQ(dbginfo_key_l2vpn__sendmsg(1, nullptr, 2), failure);
  EXPECT_EQ(dbginfo_key_l2vpn__sendtomsg(1, nullptr, 2, 7), failure);
  EXPECT_TRUE(recorder().sent.empty());
}

TEST(Batch, RefusesARecordWithoutEncoding) {
  // The sizes are 2^32 bytes, 2^32 + 20 and 2^32 + 27: a 32-bit sum would wrap to small sizes.
  for (const uint32_t length : {0xFFFFFFFF - 27, 0xFFFFFFFF - 7, 0xFFFFFFFF}) {
    dbginfo_key_l2vpn bad = keyOf(29);
    bad.f3_len = length;
    expectNothingSent({keyOf(29), bad});
    expectNothingSent({bad, keyOf(29)});
  }
}

TEST(Batch, LimitsResultsToItsRegion) {
  static l2vpn_cfg_query_dfx_item items[4];
  std::vector<l2vpn_cfg_query_dfx_rec> results(2);
  results[0].f1 = items;
  results[0].f1_count = 3;  // 46 + 3 * 16622 bytes
  harness::resetRecorder();
  EXPECT_EQ(l2vpn_cfg_query_dfx_rec__sendbatch(1, results.data(), 2, 0), 0U);
  ASSERT_EQ(recorder().sent.size(), 2U);
  EXPECT_EQ(recorder().sent[0].bytes.size(), 49912U);
  EXPECT_EQ(recorder().sent[1].bytes.size(), 38U);

  results[1].f1 = items;
  results[1].f1_count = 1;
  harness::resetRecorder();
  EXPECT_EQ(l2vpn_cfg_query_dfx_rec__sendbatch(1, results.data(), 2, 0), failure);
  EXPECT_TRUE(recorder().sent.empty());
  results[0].f1_count = 4;
  EXPECT_EQ(l2vpn_cfg_query_dfx_rec__sendbatch(1, results.data(), 1, 0), failure);
  EXPECT_EQ(l2vpn_cfg_query_dfx_rec__sendsingle(1, results.data(), 0, 0), 0U);
  EXPECT_EQ(recorder().sent.at(0).bytes.size(), 66534U);
}

// Sets the length of the first byte string of a record, or of a record nested in it.
bool setText(oracle::Value& value, uint32_t length) {
  for (oracle::FieldValue& field : value.fields) {
    if (field.kind == oracle::Kind::Bytes) {
      oracle::setBytes(field, Buffer(length, 'x'));
      return true;
    }
    if (field.kind == oracle::Kind::Table && setText(oracle::nested(field), length)) {
      return true;
    }
  }
  return false;
}

class EveryBatch : public testing::TestWithParam<harness::Operations> {
 protected:
  // A record whose message takes `size` bytes.
  oracle::Value valueOf(uint32_t size) const {
    oracle::Value value = oracle::zeroValue(message());
    EXPECT_TRUE(setText(value, 1));
    const auto smallest = static_cast<uint32_t>(oracle::compactSize(message(), value));
    EXPECT_TRUE(setText(value, size - smallest + 1));
    EXPECT_EQ(oracle::compactSize(message(), value), size);
    return value;
  }

  // The number of tables that arrive from a batch of messages with these sizes.
  size_t arriving(const std::vector<uint32_t>& sizes) const {
    std::vector<oracle::Value> values;
    for (const uint32_t size : sizes) {
      values.push_back(valueOf(size));
    }
    const std::string difference =
        harness::compareSend(GetParam(), oracle::Operation::Batch, values, 0, false);
    EXPECT_EQ(difference, "");
    return recorder().sent.size();
  }

 private:
  const oracle::Description& message() const { return oracle::descriptionOf(GetParam().name); }
};

TEST_P(EveryBatch, EndsWithItsRegion) {
  EXPECT_EQ(arriving({region - 1}), 1U);
  EXPECT_EQ(arriving({region}), 1U);
  EXPECT_EQ(arriving({region + 1}), 0U);
  EXPECT_EQ(arriving({30000, 20001, region - 50001 - 1}), 3U);
  EXPECT_EQ(arriving({30000, 20001, region - 50001}), 3U);
  EXPECT_EQ(arriving({30000, 20001, region - 50001 + 1}), 0U);
  EXPECT_EQ(arriving({region, 200}), 0U);
}

TEST(CompactMessages, AreEight) {
  EXPECT_EQ(harness::compactMessages().size(), 8U);
}

INSTANTIATE_TEST_SUITE_P(All, EveryBatch, testing::ValuesIn(harness::compactMessages()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
