// The item of a configuration query's result.

#include <memory>

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Item = l2vpn_cfg_query_dfx_item;

// On the heap: an item is 16 KiB.
std::unique_ptr<Item> item(uint32_t f1) {
  auto record = std::make_unique<Item>();
  std::memset(record->f0, 0xA0, 32);
  record->f1 = f1;
  std::memset(record->f2, 0xA2, 24);
  std::memset(record->f3, 0xA3, 128);
  std::memset(record->f4, 0xA4, 16384);
  return record;
}

Layout arraysOfTheItem() {
  return Layout()
      .u32(32)
      .fill(32, 0xA0)
      .u32(24)
      .fill(24, 0xA2)
      .u32(128)
      .fill(128, 0xA3)
      .u32(16384)
      .fill(16384, 0xA4);
}

TEST(QueryItem, HasF1BeforeItsWords) {
  const Buffer expected = Layout()
                              .u32(18)
                              .u16(14, 16608, 8, 4, 12, 16, 20)
                              .u32(14)
                              .u32(0x10111213)
                              .u32(16, 48, 72, 200)
                              .append(arraysOfTheItem());
  EXPECT_EQ(compact(*item(0x10111213)), expected);
  EXPECT_EQ(expected.size(), 16626U);
  const Buffer withoutF1 = Layout()
                               .u32(18)
                               .u16(14, 16604, 4, 0, 8, 12, 16)
                               .u32(14)
                               .u32(16, 48, 72, 200)
                               .append(arraysOfTheItem());
  EXPECT_EQ(compact(*item(0)), withoutF1);
  EXPECT_EQ(withoutF1.size(), 16622U);
}

TEST(QueryItem, ImageIs16632Bytes) {
  const Buffer expected = Layout()
                              .u32(4, 0xFFFFBF20)
                              .u32(4)
                              .u32(32)
                              .fill(32, 0xA0)
                              .u32(0x10111213)
                              .u32(4)
                              .u32(24)
                              .fill(24, 0xA2)
                              .u32(4)
                              .u32(128)
                              .fill(128, 0xA3)
                              .u32(4)
                              .u32(16384)
                              .fill(16384, 0xA4)
                              .u16(14, 16608, 4, 44, 48, 80, 216)
                              .zeros(6);
  EXPECT_EQ(sent(*item(0x10111213)), expected);
  EXPECT_EQ(expected.size(), 16632U);
  EXPECT_EQ(sent(*std::make_unique<Item>()).size(), 16632U);
}

TEST(QueryItem, SingleOneIsSentFromTheHostsMemory) {
  const Trace expected{
      "memAlloc size=16632 owner=25088 caller=\"l2vpn_cfg_query_dfx_item__sendsingle\" -> #1",
      "MESH_SendMsg destination=7 count=1",
      "memFree #1 owner=25088 caller=\"l2vpn_cfg_query_dfx_item__sendsingle\""};
  const auto record = item(1);
  resetRecorder();
  EXPECT_EQ(of<Item>().sendSingle(7, record.get(), unused, 0), 0U);
  EXPECT_EQ(takeTrace(), expected);
  EXPECT_EQ(recorder().sent.at(0).id, of<Item>().id());
  resetRecorder();
  EXPECT_EQ(of<Item>().sendMsg(7, record.get(), 1), 0U);
  EXPECT_EQ(takeTrace(), expected);
  resetRecorder();
  recorder().everyAllocationFails = true;
  EXPECT_EQ(of<Item>().sendSingle(7, record.get(), unused, 0), failure);
  EXPECT_EQ(recorder().sent.size(), 0U);
}

TEST(QueryItem, IsReadBackFromBothArrangements) {
  const auto record = item(0x10111213);
  for (const Buffer& bytes : {compact(*record), sent(*record)}) {
    const auto unpacked = std::make_unique<Unpacked<Item>>(bytes);
    EXPECT_EQ(bytesOf(unpacked->record), bytesOf(*record));
    EXPECT_EQ(unpacked->trace, Trace{});
  }
  expectPackLimits(*record);
  expectUnpackParameters<Item>();
}

TEST(QueryItem, StopsAtAnArrayOfAnotherLength) {
  const auto record = item(0x10111213);
  const Buffer good = compact(*record);
  const auto lengthWord = [&](size_t position, size_t offset) {
    for (const uint32_t length : {good[position] - 1U, good[position] + 1U}) {
      const auto unpacked = std::make_unique<Unpacked<Item>>(withU32(good, position, length));
      EXPECT_EQ(bytesOf(unpacked->record), bytesOf(upTo(offset, *record)));
    }
  };
  lengthWord(42, 0);
  lengthWord(78, offsetof(Item, f2));
  lengthWord(106, offsetof(Item, f3));
  lengthWord(238, offsetof(Item, f4));
}

TEST(QueryItem, ReleaseDoesNothing) {
  const auto record = item(1);
  resetRecorder();
  of<Item>().freeUnpacked(record.get());
  of<Item>().freeUnpacked(nullptr);
  EXPECT_EQ(takeTrace(), Trace{});
}

TEST(QueryItem, BadHeadKeepsTheRecord) {
  const auto unpacked = std::make_unique<Unpacked<Item>>(withU32(compact(*item(1)), 0, 2));
  EXPECT_EQ(bytesOf(unpacked->record), marks(16572));
  EXPECT_EQ(unpacked->trace, Trace{reported("l2vpn_cfg_query_dfx_item_unpack",
                                            "Table offset(2) is out of range(4 - 16626)")});
}

}  // namespace
