// The oracle's sender, and the parts that serve the tests: record images and generators.
#include <gtest/gtest.h>

#include "oracle/operations/reader.hpp"
#include "oracle/operations/sender.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"

namespace oracle {
namespace {

using Trace = std::vector<std::string>;

// A debug key whose compact buffer has exactly `size` bytes.
Value keyOfSize(size_t size) {
  Value value = zeroValue(descriptionOf("dbginfo_key_l2vpn"));
  setBytes(value[3], std::vector<uint8_t>(size - 28, 'k'));
  return value;
}

Sent sendKeys(Operation operation, const std::vector<Value>& keys, uint64_t extra = 0,
              bool allocationFails = false) {
  return send(descriptionOf("dbginfo_key_l2vpn"), operation, 7, keys,
              static_cast<uint32_t>(keys.size()), extra, false, allocationFails, 41);
}

TEST(Oracle, SendsOneCompactRecordFromOneAllocation) {
  const Sent sent = sendKeys(Operation::Single, {keyOfSize(39)}, 9);
  EXPECT_EQ(sent.trace,
            Trace({"memAlloc size=39 owner=25088 caller=\"dbginfo_key_l2vpn__sendsingle\" -> #1",
                   "MESH_SendToMsg destination=7 count=1 extra=9",
                   "memFree #1 owner=25088 caller=\"dbginfo_key_l2vpn__sendsingle\""}));
  EXPECT_EQ(sent.result, 41U);
  ASSERT_EQ(sent.descriptors.size(), 1U);
  EXPECT_EQ(sent.descriptors[0].id, descriptionOf("dbginfo_key_l2vpn").id);
  EXPECT_EQ(sent.descriptors[0].bytes,
            compactBytes(descriptionOf("dbginfo_key_l2vpn"), keyOfSize(39), false));
  EXPECT_TRUE(sendKeys(Operation::Msg, {keyOfSize(39)}, 9).trace[1] ==
              "MESH_SendMsg destination=7 count=1");
}

TEST(Oracle, FailsLocallyWithoutReachingTheMiddleware) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  const Sent null = send(key, Operation::Single, 7, std::nullopt, 1, 0, false, false, 0);
  EXPECT_EQ(null.result, 0xFFFFFFFF);
  EXPECT_TRUE(null.trace.empty());
  const Sent nullBatch = send(key, Operation::Batch, 7, std::nullopt, 2, 0, false, false, 0);
  EXPECT_EQ(nullBatch.result, 0xFFFFFFFF);
  EXPECT_EQ(nullBatch.trace,
            Trace({"memAlloc size=65568 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\" -> #1",
                   "memFree #1 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\""}));
  const Sent full = sendKeys(Operation::Single, {keyOfSize(39)}, 0, true);
  EXPECT_EQ(full.trace, Trace({"memAlloc size=39 owner=25088 "
                               "caller=\"dbginfo_key_l2vpn__sendsingle\" -> null"}));
  EXPECT_EQ(full.result, 0xFFFFFFFF);
  EXPECT_FALSE(full.reachedMiddleware);
}

TEST(Oracle, PlacesBatchedTablesBackToBack) {
  const Sent sent = sendKeys(Operation::ToMsg, {keyOfSize(39), keyOfSize(31), keyOfSize(29)});
  ASSERT_EQ(sent.descriptors.size(), 3U);
  EXPECT_EQ(sent.descriptors[1].offset, 39U);
  EXPECT_EQ(sent.descriptors[2].offset, 70U);
  EXPECT_EQ(sent.trace,
            Trace({"memAlloc size=65584 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\" -> #1",
                   "MESH_SendMsg destination=7 count=3",
                   "memFree #1 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\""}));
}

TEST(Oracle, SendsBatchesUpToTheEndOfTheRegion) {
  EXPECT_TRUE(sendKeys(Operation::Batch, {keyOfSize(32768), keyOfSize(32768)}).reachedMiddleware);
  const Sent tooMuch = sendKeys(Operation::Batch, {keyOfSize(32768), keyOfSize(32769)});
  EXPECT_FALSE(tooMuch.reachedMiddleware);
  EXPECT_EQ(tooMuch.result, 0xFFFFFFFF);
  EXPECT_TRUE(tooMuch.descriptors.empty());
  EXPECT_EQ(tooMuch.trace.size(), 2U);
}

TEST(Oracle, TellsACountOfZeroApartByOperation) {
  const Sent batch = sendKeys(Operation::Batch, {});
  EXPECT_EQ(batch.result, 41U);
  EXPECT_EQ(batch.trace[0],
            "memAlloc size=65536 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\" -> #1");
  EXPECT_EQ(batch.trace[1], "MESH_SendMsg destination=7 count=0");
  for (const Operation operation : {Operation::Msg, Operation::ToMsg}) {
    const Sent none = sendKeys(operation, {}, 3);
    EXPECT_EQ(none.result, 0xFFFFFFFF);
    EXPECT_TRUE(none.trace.empty());
  }
}

TEST(Oracle, SendsSmallFixedRecordsWithoutAllocating) {
  const Description& type = descriptionOf("l2vpn_sync_vpls_ac_update");
  const Sent sent =
      send(type, Operation::ToMsg, 1, std::vector<Value>{zeroValue(type)}, 1, 2, false, true, 0);
  EXPECT_EQ(sent.trace, Trace({"MESH_SendToMsg destination=1 count=1 extra=2"}));
  EXPECT_EQ(sent.descriptors.at(0).bytes.size(), 120U);
  EXPECT_EQ(sent.descriptors.at(0).id, descriptionOf("l2vpn_sync_vpls_ac_update").id);
}

TEST(Oracle, AllocatesForTheOneLargeFixedRecord) {
  const Description& type = descriptionOf("l2vpn_cfg_query_dfx_item");
  for (const Operation operation : {Operation::Single, Operation::Msg, Operation::ToMsg}) {
    const Sent sent =
        send(type, operation, 1, std::vector<Value>{zeroValue(type)}, 1, 0, false, false, 0);
    EXPECT_EQ(sent.trace, Trace({"memAlloc size=16632 owner=25088 "
                                 "caller=\"l2vpn_cfg_query_dfx_item__sendsingle\" -> #1",
                                 "MESH_SendMsg destination=1 count=1",
                                 "memFree #1 owner=25088 "
                                 "caller=\"l2vpn_cfg_query_dfx_item__sendsingle\""}));
  }
}

TEST(Oracle, StepsFixedBatchesByTheFixedLength) {
  const Description& type = descriptionOf("l2vpn_stat_pw_stat");
  const std::vector<Value> records(3, withScalars(type, 3));
  const Sent sent = send(type, Operation::Batch, 1, records, 3, 0, false, false, 0);
  EXPECT_EQ(sent.trace.at(0),
            "memAlloc size=432 owner=25088 caller=\"l2vpn_stat_pw_stat__sendbatch\" -> #1");
  EXPECT_EQ(sent.descriptors.at(2).offset, 256U);
}

TEST(Oracle, GivesBackTheBlockOfABatchThatPasses32Bits) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  const Sent compact = send(key, Operation::Batch, 1, std::nullopt, 0x10000000, 0, false, false, 0);
  EXPECT_EQ(compact.trace.at(0),
            "memAlloc size=65536 owner=25088 caller=\"dbginfo_key_l2vpn__sendbatch\" -> #1");
  EXPECT_EQ(compact.trace.size(), 2U);
  EXPECT_EQ(compact.result, 0xFFFFFFFF);
  const Description& stat = descriptionOf("l2vpn_stat_pw_stat");
  const Sent fixed = send(stat, Operation::Batch, 1, std::nullopt, 29826162, 0, false, false, 0);
  EXPECT_EQ(fixed.trace.at(0),
            "memAlloc size=32 owner=25088 caller=\"l2vpn_stat_pw_stat__sendbatch\" -> #1");
  EXPECT_EQ(fixed.trace.size(), 2U);
  EXPECT_EQ(fixed.result, 0xFFFFFFFF);
}

TEST(Oracle, LoadsFromARecordWhatWasStoredInIt) {
  std::mt19937_64 random(11);
  for (const Description& type : descriptions()) {
    const std::vector<Value> values = {randomValue(type, random, Density::Full),
                                       randomValue(type, random, Density::Edge)};
    const RecordImage image(type, values);
    ASSERT_EQ(image.size(), 2 * type.recordSize);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(image.data()) % 16, 0U);
    const auto* first = static_cast<const uint8_t*>(image.data());
    EXPECT_EQ(difference(load(type, first), values[0]), "") << type.name;
    EXPECT_EQ(difference(load(type, first + type.recordSize), values[1]), "") << type.name;
  }
  EXPECT_EQ(RecordImage(descriptionOf("l2vpn_sync_stp"), 0xAB).bytes(),
            std::vector<uint8_t>(16, 0xAB));
}

TEST(Oracle, ReadsBackWhatItWrites) {
  std::mt19937_64 random(12);
  for (const Description& type : descriptions()) {
    for (const bool reversed : {false, true}) {
      const Value value = randomValue(type, random, Density::Sparse);
      const std::vector<uint8_t> buffer = packed(type, value, reversed);
      const UnpackResult result =
          unpack(type, buffer.data(), static_cast<uint32_t>(buffer.size()), false, reversed, 0);
      EXPECT_EQ(difference(result.record, asReceived(value)), "") << type.name;
      if (type.sentFixed) {
        const std::vector<uint8_t> image = fixedImage(type, value, reversed);
        const UnpackResult fixed =
            unpack(type, image.data(), static_cast<uint32_t>(image.size()), false, reversed, 0);
        EXPECT_EQ(difference(fixed.record, value), "") << type.name;
      }
    }
  }
}

TEST(Oracle, StaysInsideDamagedBuffers) {
  std::mt19937_64 random(13);
  int touched = 0;
  int logged = 0;
  for (int round = 0; round < 20; ++round) {
    for (const Description& type : descriptions()) {
      const Value value = randomValue(type, random, Density::Sparse);
      const std::vector<uint8_t> buffer = mutate(packed(type, value), random);
      const UnpackResult result =
          unpack(type, buffer.data(), static_cast<uint32_t>(buffer.size()), false, false, 0);
      EXPECT_EQ(result.returned, type.recordSize);
      touched += result.recordTouched ? 1 : 0;
      logged += result.trace.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(touched, 100);  // the injuries reach past the frame checks
  EXPECT_GT(logged, 100);   // and trip them
}

TEST(Oracle, GeneratesTheSameFromTheSameSeed) {
  std::mt19937_64 first(5);
  std::mt19937_64 second(5);
  const Description& type = descriptionOf("l2vpn_cfg_query_comm_rec");
  const Value value = randomValue(type, first, Density::Full);
  EXPECT_EQ(value, randomValue(type, second, Density::Full));
  EXPECT_EQ(mutate(packed(type, value), first), mutate(packed(type, value), second));
  for (const size_t slot : {0U, 1U, 2U, 4U}) {
    EXPECT_NE(value[slot].scalar, 0U);
  }
}

}  // namespace
}  // namespace oracle
