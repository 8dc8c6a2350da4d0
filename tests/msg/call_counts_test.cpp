// How often each operation allocates, releases and calls the middleware.

#include <gtest/gtest.h>

#include <cstring>

#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"

namespace {

using harness::Buffer;
using harness::Operations;
using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

struct Calls {
  int allocations = 0;
  int releases = 0;  // also of null
  int middleware = 0;
  int others = 0;
  bool operator==(const Calls&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Calls& calls) {
  return out << calls.allocations << " allocations, " << calls.releases << " releases, "
             << calls.middleware << " calls of the middleware, " << calls.others << " others";
}

Calls taken() {
  Calls calls;
  for (const std::string& line : harness::takeTrace()) {
    const auto is = [&](const char* what) { return line.find(what) == 0; };
    ++(is("memAlloc") || is("unpackAlloc") ? calls.allocations
       : is("memFree") || is("unpackFree") ? calls.releases
       : is("MESH_Send")                   ? calls.middleware
                                           : calls.others);
  }
  return calls;
}

// The number of a record's byte strings and runs: all of them, or those that are not empty.
struct Parts {
  int all = 0;
  int present = 0;
};

void count(const Schema& schema, const uint8_t* record, Parts& parts) {
  for (const Slot& slot : schema.slots) {
    if (slot.kind == Kind::Table) {
      count(*slot.nested, record + slot.recordOffset, parts);
    } else if (mesh::wire::isOutOfLine(slot.kind)) {
      uint32_t length = 0;
      std::memcpy(&length, record + slot.countOffset, sizeof length);
      ++parts.all;
      parts.present += length != 0 ? 1 : 0;
    }
  }
}

class CallCounts : public testing::TestWithParam<Operations> {
 protected:
  void SetUp() override { harness::useByteOrder(GetParam(), false); }
};

TEST_P(CallCounts, MatchEachOperation) {
  const Operations& operations = GetParam();
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  const uint32_t fixed = oracle::fixedLength(message);
  const Calls stack{.middleware = 1};
  const Calls block{.allocations = 1, .releases = 1, .middleware = 1};
  std::mt19937_64 random(17);
  for (int round = 0; round < harness::rounds(10); ++round) {
    std::vector<oracle::Value> values;
    for (int index = 0; index < 3; ++index) {
      values.push_back(oracle::randomValue(message, random, oracle::Density::Sparse));
      if (message.name == "l2vpn_cfg_query_dfx_rec" && index > 0) {
        values.back()[1] = oracle::zeroField(message.fields[1]);  // all fit in one batch
      }
    }
    const oracle::RecordImage records(message, values);
    Parts parts;
    count(operations.schema(), static_cast<const uint8_t*>(records.data()), parts);

    Buffer bytes(oracle::compactSize(message, values[0]));
    auto length = static_cast<uint32_t>(bytes.size());
    harness::resetRecorder();
    ASSERT_EQ(operations.pack(records.data(), bytes.data(), &length), 0U);
    EXPECT_EQ(taken(), Calls()) << "pack";

    Buffer record(operations.schema().size);
    operations.unpack(bytes.data(), length, record.data());
    EXPECT_EQ(taken(), Calls{.allocations = parts.present}) << "unpack";
    operations.freeUnpacked(record.data());
    EXPECT_EQ(taken(), Calls{.releases = parts.all}) << "free";

    for (const uint64_t extra : {0U, 1U}) {
      const Calls single = fixed != 0 && fixed <= 1024 ? stack : block;
      ASSERT_EQ(operations.sendSingle(1, records.data(), harness::unused, extra), 0U);
      EXPECT_EQ(taken(), single) << "sendsingle";
      ASSERT_EQ(operations.sendToMsg(1, records.data(), 1, extra), 0U);
      EXPECT_EQ(taken(), single) << "sendtomsg of one";
      ASSERT_EQ(operations.sendBatch(1, records.data(), 3, extra), 0U);
      EXPECT_EQ(taken(), block) << "sendbatch";
      ASSERT_EQ(operations.sendToMsg(1, records.data(), 2, extra), 0U);
      EXPECT_EQ(taken(), block) << "sendtomsg of two";
    }
    EXPECT_TRUE(harness::recorder().blocks.empty());
  }
}

INSTANTIATE_TEST_SUITE_P(All, CallCounts, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
