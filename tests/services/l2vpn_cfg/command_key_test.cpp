// The debug command's key: its own fields and two nested tables with a byte string each.

#include "services/behaviour.hpp"

namespace {

using namespace harness;

using CommandKey = dbginfo_cmd_key_l2vpn;

CommandKey sample() {
  CommandKey record{};
  record.f0 = 0x10;
  record.f1 = 0x11;
  record.f2 = 0x12;
  record.f3.f0 = 0x30;
  record.f3.f6 = 0x36;
  record.f3.f7_len = 3;
  record.f3.f7 = abc;
  record.f4.f1 = 0x41;
  record.f4.f3_len = 5;
  record.f4.f3 = defgh;
  return record;
}

Buffer sampleBytes() {
  return Layout()
      .u32(18)
      .u16(14, 22, 4, 8, 12, 14, 18)
      .u32(14)
      .u32(0x10, 0x11)
      .u16(0x12)
      .u32(28)  // at 32, to the table at 60
      .u32(57)  // at 36, to the table at 93
      .u16(20, 21, 4, 0, 0, 0, 0, 0, 6, 10)
      .u32(20)
      .u16(0x30)
      .u32(0x36)
      .u32(4)
      .u32(3)
      .text("abc")
      .u16(12, 19, 0, 4, 0, 6)
      .u32(12)
      .u16(0x41)
      .u32(4)
      .u32(5)
      .text("defgh");
}

// The record after its byte strings were released: the lengths stay.
CommandKey left() {
  CommandKey record = sample();
  record.f3.f7 = nullptr;
  record.f4.f3 = nullptr;
  return record;
}

const Trace bothBlocks{
    "unpackAlloc size=3 owner=12 caller=\"dbginfo_para_l2vpn_unpack_non_root\" -> #1",
    "unpackAlloc size=5 owner=12 caller=\"dbginfo_key_l2vpn_unpack_non_root\" -> #2"};

std::string keyFreed(const char* block) {
  return std::string("unpackFree ")
      .append(block)
      .append(" owner=12 caller=\"dbginfo_cmd_key_l2vpn_free_unpacked\"");
}

void expectLeft(const Unpacked<CommandKey>& unpacked, const CommandKey& expected,
                const Trace& trace) {
  expectSame(unpacked.record, expected);
  EXPECT_EQ(unpacked.trace, trace);
  EXPECT_TRUE(recorder().blocks.empty());
}

TEST(CommandKey, OfZerosPacksTo70Bytes) {
  const Buffer expected = Layout()
                              .u32(18)
                              .u16(14, 12, 0, 0, 0, 4, 8)
                              .u32(14)
                              .u32(28)
                              .u32(40)
                              .u16(20, 4)
                              .zeros(16)
                              .u32(20)
                              .u16(12, 4)
                              .zeros(8)
                              .u32(12);
  EXPECT_EQ(hex(compact(CommandKey{})), hex(expected));
  EXPECT_EQ(expected.size(), 70U);
  expectPackLimits(CommandKey{});
}

TEST(CommandKey, WritesItsNestedTablesInSlotOrder) {
  EXPECT_EQ(hex(compact(sample())), hex(sampleBytes()));
  expectPackLimits(sample());
}

TEST(CommandKey, StringsAreAllocatedUnderTheirTablesAndReleasedUnderTheMessage) {
  Unpacked<CommandKey> unpacked(sampleBytes());
  EXPECT_EQ(unpacked.trace, bothBlocks);
  EXPECT_EQ(std::memcmp(unpacked.record.f3.f7, "abc", 3), 0);
  EXPECT_EQ(std::memcmp(unpacked.record.f4.f3, "defgh", 5), 0);
  EXPECT_EQ(unpacked.release(), (Trace{keyFreed("#1"), keyFreed("#2")}));
  expectSame(unpacked.record, left());
  EXPECT_EQ(unpacked.release(), (Trace{keyFreed("null"), keyFreed("null")}));
}

TEST(CommandKey, AbsentNestedTableIsZeroAndFailsNothing) {
  Unpacked<CommandKey> unpacked(withU16(sampleBytes(), 14, 0));  // slot 3
  EXPECT_EQ(
      unpacked.trace,
      Trace{"unpackAlloc size=5 owner=12 caller=\"dbginfo_key_l2vpn_unpack_non_root\" -> #1"});
  EXPECT_EQ(bytesOf(unpacked.record.f3), Buffer(40, 0));
  EXPECT_EQ(unpacked.record.f4.f1, 0x41);
  EXPECT_EQ(unpacked.release(), (Trace{keyFreed("null"), keyFreed("#1")}));

  Unpacked<CommandKey> shorter(withU16(sampleBytes(), 4, 12));  // no slot 4
  EXPECT_EQ(bytesOf(shorter.record.f4), Buffer(24, 0));
  EXPECT_EQ(shorter.release(), (Trace{keyFreed("#1"), keyFreed("null")}));
}

TEST(CommandKey, NestedTableThatFailsFailsTheMessage) {
  // The length of f4's string is past the end.
  expectLeft(Unpacked<CommandKey>(withU32(sampleBytes(), 103, 6)),
             [] {
               CommandKey record = left();
               record.f4.f3_len = 0;
               return record;
             }(),
             {bothBlocks[0], keyFreed("#1"), keyFreed("null")});
}

TEST(CommandKey, BadNestedHeadIsLoggedAndFailsTheMessage) {
  CommandKey expected = left();
  expected.f4 = {};
  expectLeft(
      Unpacked<CommandKey>(withU32(sampleBytes(), 93, 90)), expected,
      {bothBlocks[0],
       reported("dbginfo_key_l2vpn_unpack_non_root", "Vtable offset(93) is out of range(4 - 108)"),
       keyFreed("#1"), keyFreed("null")});
}

TEST(CommandKey, OffsetWordPastTheEndFailsTheMessage) {
  CommandKey expected = left();
  expected.f4 = {};
  const Trace trace{bothBlocks[0], keyFreed("#1"), keyFreed("null")};
  expectLeft(Unpacked<CommandKey>(withU16(sampleBytes(), 16, 112 - 18 - 3)), expected, trace);
  expectLeft(Unpacked<CommandKey>(withU32(sampleBytes(), 36, 0xFFFFFFFF)), expected, trace);
}

TEST(CommandKey, FailureOfTheFirstNestedTableLeavesTheSecondUnread) {
  CommandKey expected = left();
  expected.f3 = {};
  expected.f4 = {};
  expectLeft(
      Unpacked<CommandKey>(withU32(sampleBytes(), 32, 200)), expected,
      {reported("dbginfo_para_l2vpn_unpack_non_root", "Table offset(232) is out of range(4 - 112)"),
       keyFreed("null"), keyFreed("null")});
}

TEST(CommandKey, RefusedAllocationReleasesEverythingAndKeepsLengths) {
  CommandKey expected = left();
  expected.f4 = {};
  expectLeft(Unpacked<CommandKey>(sampleBytes(), 1), expected,
             {"unpackAlloc size=3 owner=12 caller=\"dbginfo_para_l2vpn_unpack_non_root\" -> null",
              reportedRefusal("dbginfo_para_l2vpn_unpack_non_root",
                              "Malloc unpack data unsuccess,                size(3)"),
              keyFreed("null"), keyFreed("null")});
  expectLeft(Unpacked<CommandKey>(sampleBytes(), 2), left(),
             {bothBlocks[0],
              "unpackAlloc size=5 owner=12 caller=\"dbginfo_key_l2vpn_unpack_non_root\" -> null",
              reportedRefusal("dbginfo_key_l2vpn_unpack_non_root",
                              "Malloc unpack data unsuccess,                size(5)"),
              keyFreed("#1"), keyFreed("null")});
}

TEST(CommandKey, SizesFrom0xFFFFFFF8OnFail) {
  CommandKey record{};
  record.f3.f7 = abc;
  record.f3.f7_len = 0xFFFFFFF7 - 78;
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, 0U);
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).length, 0xFFFFFFF7);
  ++record.f3.f7_len;
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, failure);
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).length, 0xFFFFFFFF);
  record.f3.f7_len = 0xFFFFFFFF - 31;  // one part past 32 bits
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, failure);
  record.f3.f7_len = record.f4.f3_len = 0x80000000;
  record.f4.f3 = defgh;
  EXPECT_EQ(askForSize(record, 0xFFFFFFFF).result, failure);
  EXPECT_EQ(of<CommandKey>().sendSingle(7, &record, unused, 0), failure);
}

TEST(CommandKey, IsSentInABufferOfItsOwnSize) {
  EXPECT_EQ(hex(sent(sample())), hex(sampleBytes()));
  EXPECT_EQ(takeTrace(),
            (Trace{"memAlloc size=112 owner=25088 caller=\"dbginfo_cmd_key_l2vpn__sendsingle\" "
                   "-> #1",
                   "MESH_SendMsg destination=7 count=1",
                   "memFree #1 owner=25088 caller=\"dbginfo_cmd_key_l2vpn__sendsingle\""}));
  EXPECT_EQ(recorder().sent.at(0).id, of<CommandKey>().id());
}

TEST(CommandKey, UnpackChecksParametersAndHead) {
  expectUnpackParameters<CommandKey>();
  expectHeadChecksByMessage(sample());
}

}  // namespace
