// Every record through mesh_l2vpn/messages.hpp, beside the exported operations.
#include <gtest/gtest.h>

#include <memory>

#include "mesh_l2vpn/messages.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"
#include "wire/compact_size.hpp"

namespace {

using harness::Buffer;
using harness::hex;
using harness::Operations;
using harness::recorder;
using mesh_l2vpn::pack;
using mesh_l2vpn::send;
using mesh_l2vpn::span;
using mesh_l2vpn::unpack;

constexpr uint32_t destination = 9;

// The header's functions of one message, for records of any type.
struct Calls {
  std::string_view name;
  bool mayOwnMemory;
  size_t recordSize;
  Buffer (*pack)(const void* record);
  std::error_code (*packInto)(const void* record, span<uint8_t>& buffer);
  Buffer (*unpackAndPack)(const Buffer& bytes);
  std::error_code (*send)(const void* record, uint64_t extra);
  std::error_code (*sendAll)(const void* records, size_t count, uint64_t extra);

  [[nodiscard]] const Operations& operations() const { return harness::operationsOf(name); }
};

template <typename T>
const T& as(const void* record) {
  return *static_cast<const T*>(record);
}

std::vector<Calls> allCalls() {
  std::vector<Calls> all;
  mesh_l2vpn::for_each_message([&all](auto of) {
    using T = typename decltype(of)::record;
    all.push_back(
        {of.name, of.may_own_memory, sizeof(T),
         [](const void* record) { return pack(as<T>(record)); },
         [](const void* record, span<uint8_t>& buffer) { return pack(as<T>(record), buffer); },
         [](const Buffer& bytes) { return pack(*unpack<T>(bytes)); },
         [](const void* record, uint64_t extra) { return send(destination, as<T>(record), extra); },
         [](const void* records, size_t count, uint64_t extra) {
           return send(destination, span(static_cast<const T*>(records), count), extra);
         }});
  });
  return all;
}

class EveryRecord : public testing::TestWithParam<Calls> {
 protected:
  EveryRecord() {
    std::mt19937_64 random(11);
    std::vector<oracle::Value> values;
    for (const auto density :
         {oracle::Density::Full, oracle::Density::Sparse, oracle::Density::Edge}) {
      values.push_back(oracle::randomValue(message_, random, density));
      // Small enough for a batch.
      if (message_.name == "l2vpn_cfg_query_dfx_rec") {
        values.back()[1] = oracle::zeroField(message_.fields[1]);
      }
    }
    records_ = std::make_unique<oracle::RecordImage>(message_, values);
    harness::resetRecorder();
  }
  ~EveryRecord() override { EXPECT_TRUE(recorder().blocks.empty()); }

  static constexpr size_t count = 3;
  const Operations& operations_ = GetParam().operations();
  const oracle::Description& message_ = oracle::descriptionOf(std::string(GetParam().name));

  const void* records() const { return records_->data(); }
  const void* record(size_t index) const {
    return static_cast<const uint8_t*>(records()) + index * GetParam().recordSize;
  }

  Buffer packedByC(const void* record) const {
    Buffer buffer(size_t{1} << 17);
    auto length = static_cast<uint32_t>(buffer.size());
    EXPECT_EQ(operations_.pack(record, buffer.data(), &length), 0U);
    buffer.resize(length);
    return buffer;
  }

  Buffer unpackedAndPackedByC(const Buffer& bytes) const {
    std::vector<uint64_t> record(GetParam().recordSize / sizeof(uint64_t) + 1);
    operations_.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data());
    Buffer again = packedByC(record.data());
    operations_.freeUnpacked(record.data());
    return again;
  }

 private:
  std::unique_ptr<oracle::RecordImage> records_;
};

TEST_P(EveryRecord, ComesBackFromBothArrangements) {
  for (size_t index = 0; index < count; ++index) {
    const Buffer compact = packedByC(record(index));
    EXPECT_EQ(hex(GetParam().pack(record(index))), hex(compact));

    Buffer room(compact.size() + 5, 0xEE);
    span<uint8_t> packed(room);
    EXPECT_EQ(GetParam().packInto(record(index), packed), mesh_l2vpn::result(0));
    EXPECT_EQ(packed.data(), room.data());
    EXPECT_EQ(packed.size(), compact.size());

    recorder().sent.clear();
    EXPECT_FALSE(GetParam().send(record(index), 0));
    for (const Buffer& table : {compact, recorder().sent.at(0).bytes}) {
      const Buffer again = GetParam().unpackAndPack(table);
      EXPECT_EQ(hex(again), hex(unpackedAndPackedByC(table)));
      // A byte string that is present and empty comes back as none.
      if (!GetParam().mayOwnMemory) {
        EXPECT_EQ(hex(again), hex(compact));
      }
    }
  }
}

TEST_P(EveryRecord, IsSentAsByC) {
  const auto expectSame = [](auto fromCpp, auto fromC) {
    harness::resetRecorder();
    EXPECT_EQ(fromCpp().value(), 0);
    const harness::Trace trace = harness::takeTrace();
    const auto sent = recorder().sent;
    harness::resetRecorder();
    EXPECT_EQ(fromC(), 0U);
    EXPECT_EQ(trace, harness::takeTrace());
    ASSERT_EQ(sent.size(), recorder().sent.size());
    for (size_t index = 0; index < sent.size(); ++index) {
      EXPECT_EQ(sent[index].id, recorder().sent[index].id);
      EXPECT_EQ(hex(sent[index].bytes), hex(recorder().sent[index].bytes));
    }
  };
  for (const uint64_t extra : {uint64_t{0}, uint64_t{5}}) {
    expectSame([&] { return GetParam().send(records(), extra); },
               [&] { return operations_.sendSingle(destination, records(), 0, extra); });
    expectSame([&] { return GetParam().sendAll(records(), count, extra); },
               [&] { return operations_.sendToMsg(destination, records(), count, extra); });
  }
}

INSTANTIATE_TEST_SUITE_P(All, EveryRecord, testing::ValuesIn(allCalls()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Message, KnowsWhichRecordsOwnNoMemory) {
  for (const Calls& calls : allCalls()) {
    const mesh::wire::Schema& schema = calls.operations().schema();
    if (!calls.mayOwnMemory) {
      EXPECT_FALSE(mesh::wire::ownsMemory(schema)) << calls.name;
    }
    // So pack() to a vector never asks for the size of such a record.
    if (!mesh::wire::ownsMemory(schema)) {
      EXPECT_LE(mesh::wire::largestCompactSize(schema), calls.recordSize + 1024) << calls.name;
    }
  }
}

}  // namespace
