// The query's result: the common result and the vector of its items.

#include <memory>

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using Result = l2vpn_cfg_query_dfx_rec;
using Item = l2vpn_cfg_query_dfx_item;

constexpr uint32_t itemSize = 16572;

// Item i: every array full of 0x10 + i, f1 as given.
struct Items {
  explicit Items(std::initializer_list<uint32_t> f1) : items(f1.size()) {
    uint8_t fill = 0x10;
    auto* item = items.data();
    for (const uint32_t number : f1) {
      std::memset(item, fill++, sizeof *item);
      item++->f1 = number;
    }
  }
  Result result() {
    Result record{};
    record.f1_count = static_cast<uint32_t>(items.size());
    record.f1 = items.data();
    return record;
  }
  std::vector<Item> items;
};

// A table of an item and its vtable, as in a vector.
Buffer itemTable(uint32_t f1, uint8_t fill) {
  Layout layout;
  if (f1 != 0) {
    layout.u16(14, 16608, 8, 4, 12, 16, 20).u32(14).u32(f1);
  } else {
    layout.u16(14, 16604, 4, 0, 8, 12, 16).u32(14);
  }
  return layout.u32(16, 48, 72, 200)
      .u32(32)
      .fill(32, fill)
      .u32(24)
      .fill(24, fill)
      .u32(128)
      .fill(128, fill)
      .u32(16384)
      .fill(16384, fill);
}

// Root, root table, the empty common result: up to the vector at 42.
Layout head() {
  return Layout()
      .u32(12)
      .u16(8, 12, 4, 8)
      .u32(8)
      .u32(22)  // at 16, to the common result's table at 38
      .u32(22)  // at 20, to the vector at 42
      .u16(14, 4)
      .zeros(10)
      .u32(14);
}

Buffer oneItem() {
  return head().u32(1).u32(18).append(itemTable(0, 0x10));
}

Buffer twoItems() {
  return head().u32(2).u32(22, 16636).append(itemTable(0, 0x10)).append(itemTable(7, 0x11));
}

std::string allocated(uint32_t size, const char* block) {
  return std::string("unpackAlloc size=")
      .append(std::to_string(size))
      .append(" owner=12 caller=\"l2vpn_cfg_query_dfx_rec_unpack_non_root\" -> ")
      .append(block);
}

std::string resultFreed(const char* block) {
  return std::string("unpackFree ")
      .append(block)
      .append(" owner=12 caller=\"l2vpn_cfg_query_dfx_rec_free_unpacked\"");
}

const std::string stringAllocated =
    "unpackAlloc size=3 owner=12 caller=\"l2vpn_cfg_query_comm_rec_unpack_non_root\" -> #1";

// The decoding failed: all blocks are released; the scalars and the count stay.
void expectFailed(const Unpacked<Result>& unpacked, uint32_t count, const Trace& trace) {
  EXPECT_EQ(unpacked.trace, trace);
  EXPECT_EQ(unpacked.record.f0.f3, nullptr);
  EXPECT_EQ(unpacked.record.f1, nullptr);
  EXPECT_EQ(unpacked.record.f1_count, count);
  EXPECT_TRUE(recorder().blocks.empty());
}

TEST(QueryResult, WithoutItemsHasNoSlot1) {
  const Buffer expected =
      Layout().u32(12).u16(8, 8, 4, 0).u32(8).u32(18).u16(14, 4).zeros(10).u32(14);
  EXPECT_EQ(hex(compact(Result{})), hex(expected));
  EXPECT_EQ(expected.size(), 38U);
  expectPackLimits(Result{});
  Items items{1};
  Result countOfZero = items.result();
  countOfZero.f1_count = 0;
  EXPECT_EQ(hex(compact(countOfZero)), hex(expected));
}

TEST(QueryResult, OfOneItem) {
  Items items{0};
  EXPECT_EQ(compact(items.result()), oneItem());
  EXPECT_EQ(oneItem().size(), 18U + 28 + 4 + 16618);
  expectPackLimits(items.result());
}

TEST(QueryResult, OfTwoItems) {
  Items items{0, 7};
  EXPECT_EQ(compact(items.result()), twoItems());
  EXPECT_EQ(twoItems().size(), 18U + 28 + 8 + 16618 + 16622);
}

TEST(QueryResult, TheCommonResultsStringStandsBeforeTheVector) {
  Items items{0};
  Result record = items.result();
  record.f0.f0 = 5;
  record.f0.f3_len = 3;
  record.f0.f3 = abc;
  const Buffer expected = Layout()
                              .u32(12)
                              .u16(8, 12, 4, 8)
                              .u32(8)
                              .u32(22)
                              .u32(37)
                              .u16(14, 19, 4, 0, 0, 8, 0)
                              .u32(14)
                              .u32(5)
                              .u32(4)
                              .u32(3)
                              .text("abc")
                              .u32(1)
                              .u32(18)
                              .append(itemTable(0, 0x10));
  EXPECT_EQ(compact(record), expected);
  Unpacked<Result> unpacked(expected);
  EXPECT_EQ(unpacked.trace, (Trace{stringAllocated, allocated(itemSize, "#2")}));
  EXPECT_EQ(unpacked.release(), (Trace{resultFreed("#1"), resultFreed("#2")}));
  EXPECT_EQ(unpacked.record.f0.f3, nullptr);
  EXPECT_EQ(unpacked.record.f1, nullptr);
  EXPECT_EQ(unpacked.release(), (Trace{resultFreed("null"), resultFreed("null")}));
}

TEST(QueryResult, ItemsAreReadIntoOneBlock) {
  Items items{0, 7};
  Unpacked<Result> unpacked(twoItems());
  EXPECT_EQ(unpacked.trace, Trace{allocated(2 * itemSize, "#1")});
  ASSERT_EQ(unpacked.record.f1_count, 2U);
  EXPECT_EQ(std::memcmp(unpacked.record.f1, items.items.data(), size_t{2} * itemSize), 0);
  EXPECT_EQ(unpacked.release(), (Trace{resultFreed("null"), resultFreed("#1")}));
  EXPECT_EQ(unpacked.record.f1_count, 2U);
}

TEST(QueryResult, TheBlockIsClearedBeforeItemsAreReadIntoIt) {
  Unpacked<Result> unpacked(withU16(oneItem(), 50, 4));  // the item's vtable has no slots
  ASSERT_NE(unpacked.record.f1, nullptr);
  EXPECT_EQ(bytesOf(*unpacked.record.f1), Buffer(itemSize, 0));
  unpacked.release();
}

TEST(QueryResult, CountOfZeroOnTheWireAllocatesNothing) {
  expectRead(withU32(oneItem(), 42, 0), Result{});
  expectRead(firstBytes(withU32(oneItem(), 42, 0), 46), Result{});
}

TEST(QueryResult, WordsPastTheEndFail) {
  const Trace nothingHeld{resultFreed("null"), resultFreed("null")};
  // One word fits behind the count, two do not.
  const Buffer oneWord = firstBytes(oneItem(), 50);
  expectFailed(Unpacked<Result>(withU32(oneWord, 42, 2)), 0, nothingHeld);
  expectFailed(Unpacked<Result>(firstBytes(oneItem(), 49)), 0, nothingHeld);
  expectFailed(Unpacked<Result>(withU32(oneItem(), 42, largestVectorCount)), 0, nothingHeld);
  // In 32 bits, the sizes of these counts' words wrap to none and to one word.
  expectFailed(Unpacked<Result>(withU32(oneItem(), 42, largestVectorCount + 1)), 0, nothingHeld);
  expectFailed(Unpacked<Result>(withU32(oneItem(), 42, largestVectorCount + 2)), 0, nothingHeld);
  expectFailed(Unpacked<Result>(withU32(oneItem(), 42, 0xFFFFFFFF)), 0, nothingHeld);
  // The count itself, and the word that leads to it.
  expectFailed(Unpacked<Result>(firstBytes(oneItem(), 45)), 0, nothingHeld);
  expectFailed(Unpacked<Result>(withU32(oneItem(), 20, 0xFFFFFFFF)), 0, nothingHeld);
  expectFailed(Unpacked<Result>(withU16(oneItem(), 10, 16668 - 12 - 3)), 0, nothingHeld);
}

TEST(QueryResult, BlockPast32BitsFailsWithoutALog) {
  // 259,171 items would take 4,294,981,812 bytes.
  const Buffer bytes = head().u32(259171).fill(size_t{4} * 259171, 0);
  expectFailed(Unpacked<Result>(bytes), 0, {resultFreed("null"), resultFreed("null")});
  // One item fewer fits in 32 bits, and is requested.
  expectFailed(Unpacked<Result>(withU32(bytes, 42, 259170), 1), 0,
               {allocated(4294965240, "null"),
                reportedRefusal("l2vpn_cfg_query_dfx_rec_unpack_non_root",
                                "Malloc unpack data unsuccess,                size(4294965240)"),
                resultFreed("null"), resultFreed("null")});
}

TEST(QueryResult, ItemThatFailsReleasesEverything) {
  Items items{0, 7};
  Result record = items.result();
  record.f0.f3_len = 3;
  record.f0.f3 = abc;
  const Buffer good = compact(record);
  const Trace taken{stringAllocated, allocated(2 * itemSize, "#2"), resultFreed("#1"),
                    resultFreed("#2")};
  const size_t lengthOfLastArray = good.size() - 16388;
  const Unpacked<Result> shortArray(withU32(good, lengthOfLastArray, 16383));
  expectFailed(shortArray, 2, taken);
  EXPECT_EQ(shortArray.record.f0.f3_len, 3U);
  expectFailed(Unpacked<Result>(firstBytes(good, good.size() - 1)), 2, taken);
  // The second item's offset word leads past 32 bits.
  ASSERT_EQ(good[53], 2);
  expectFailed(Unpacked<Result>(withU32(good, 61, 0xFFFFFFFF)), 2, taken);
}

TEST(QueryResult, BadItemHeadIsLoggedByTheItemsReader) {
  expectFailed(Unpacked<Result>(withU32(twoItems(), 50, 40000)), 2,
               {allocated(2 * itemSize, "#1"),
                reported("l2vpn_cfg_query_dfx_item_unpack_non_root",
                         "Table offset(40050) is out of range(4 - 33294)"),
                resultFreed("null"), resultFreed("#1")});
}

TEST(QueryResult, EachAllocationFailingInTurnReleasesEverything) {
  Items items{0};
  Result record = items.result();
  record.f0.f3_len = 3;
  record.f0.f3 = abc;
  const Buffer good = compact(record);
  expectFailed(
      Unpacked<Result>(good, 1), 0,
      {"unpackAlloc size=3 owner=12 caller=\"l2vpn_cfg_query_comm_rec_unpack_non_root\" -> null",
       reportedRefusal("l2vpn_cfg_query_comm_rec_unpack_non_root",
                       "Malloc unpack data unsuccess,                size(3)"),
       resultFreed("null"), resultFreed("null")});
  expectFailed(Unpacked<Result>(good, 2), 0,
               {stringAllocated, allocated(itemSize, "null"),
                reportedRefusal("l2vpn_cfg_query_dfx_rec_unpack_non_root",
                                "Malloc unpack data unsuccess,                size(16572)"),
                resultFreed("#1"), resultFreed("null")});
  Unpacked<Result> third(good, 3);
  EXPECT_EQ(third.trace.size(), 2U);
  third.release();
}

TEST(QueryResult, BadHeadClearsTheRecord) {
  Items items{0};
  const Unpacked<Result> unpacked(withU32(compact(items.result()), 0, 2));
  EXPECT_EQ(bytesOf(unpacked.record), Buffer(48, 0));
  EXPECT_EQ(unpacked.trace, (Trace{reported("l2vpn_cfg_query_dfx_rec_unpack_non_root",
                                            "Table offset(2) is out of range(4 - 16668)"),
                                   resultFreed("null"), resultFreed("null")}));
}

TEST(QueryResult, CountWithoutItemsFails) {
  Result record{};
  record.f1_count = 1;
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, failure);
  resetRecorder();
  EXPECT_EQ(of<Result>().sendSingle(7, &record, unused, 0), failure);
  EXPECT_EQ(takeTrace(), Trace{});
}

TEST(QueryResult, PackingWithoutALengthFails) {
  Buffer buffer = marks(100);
  const Result record{};
  EXPECT_EQ(of<Result>().pack(&record, buffer.data(), nullptr), failure);
  EXPECT_EQ(buffer, marks(100));
}

TEST(QueryResult, SizePast32BitsFails) {
  Result record{};
  record.f0.f3 = abc;
  record.f0.f3_len = 0xFFFFFFFF - 46;
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).length, 0xFFFFFFFF);
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, 0U);
  ++record.f0.f3_len;
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, failure);
  Items items{0};
  Result withItem = items.result();
  withItem.f0.f3 = abc;
  withItem.f0.f3_len = 0xFFFFFFFF - 16668 - 8;
  EXPECT_EQ(askForSize(withItem, 0xFFFFFFFF).result, 0U);
  ++withItem.f0.f3_len;
  EXPECT_EQ(askForSize(withItem, 0xFFFFFFFF).result, failure);
}

TEST(QueryResult, IsSentInABufferOfItsOwnSize) {
  Items items{0};
  EXPECT_EQ(sent(items.result()), oneItem());
  EXPECT_EQ(takeTrace(),
            (Trace{"memAlloc size=16668 owner=25088 caller=\"l2vpn_cfg_query_dfx_rec__sendsingle\" "
                   "-> #1",
                   "MESH_SendMsg destination=7 count=1",
                   "memFree #1 owner=25088 caller=\"l2vpn_cfg_query_dfx_rec__sendsingle\""}));
  EXPECT_EQ(recorder().sent.at(0).id, of<Result>().id());
}

}  // namespace
