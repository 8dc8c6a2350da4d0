// Where reports come from, and the table readers that check what they are called with.

#include <gtest/gtest.h>

#include <set>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"
#include "support/comparison.hpp"
#include "wire/slot_reader.hpp"

namespace {

using harness::Buffer;
using harness::Layout;
using harness::recorder;
using harness::reported;
using harness::Trace;
using harness::Unpacked;
using mesh::wire::Decoded;

constexpr auto plain = mesh::host::ByteOrder::Host;

// The source line of the one report that the call makes.
template <typename Call>
uint32_t lineOf(const Call& call) {
  harness::resetRecorder();
  call();
  EXPECT_EQ(recorder().logOrigins.size(), 1U);
  return recorder().logOrigins.at(0).second;
}

template <typename Record>
void unpack(const Buffer& bytes, int failingAllocation = 0) {
  const Unpacked<Record> unpacked(bytes, failingAllocation);
}

std::vector<uint32_t> linesOfEveryReport() {
  const Buffer empty = Layout().u32(8).u16(4, 4).u32(4);
  const Buffer key = Layout().u32(16).u16(12, 0, 0, 0, 0, 4).u32(12).u32(4, 1).u8('a');
  const Buffer para = Layout().u32(24).u16(20, 0, 0, 0, 0, 0, 0, 0, 0, 4).u32(20).u32(4, 1).u8('a');
  return {lineOf([] { unpack<dbginfo_key_l2vpn>({}); }),
          lineOf([] {
            const dbginfo_key_l2vpn record{};
            uint32_t length = 100;
            dbginfo_key_l2vpn__pack(&record, nullptr, &length);
          }),
          lineOf([&] { unpack<dbginfo_key_l2vpn>(harness::withU32(empty, 0, 0)); }),
          lineOf([&] { unpack<dbginfo_key_l2vpn>(harness::withU32(empty, 8, 8)); }),
          lineOf([&] { unpack<dbginfo_key_l2vpn>(harness::withU16(empty, 4, 9)); }),
          lineOf([&] { unpack<dbginfo_key_l2vpn>(key, 1); }),
          lineOf([&] { unpack<dbginfo_para_l2vpn>(para, 1); })};
}

TEST(Report, KeepsItsLine) {
  const std::vector<uint32_t> lines = linesOfEveryReport();
  for (const uint32_t line : lines) {
    EXPECT_NE(line, 0U);
  }
  EXPECT_EQ(linesOfEveryReport(), lines);
}

// A line in a host's log leads to one statement.
TEST(Report, NamesOneStatementByItsLine) {
  const std::vector<uint32_t> lines = linesOfEveryReport();
  EXPECT_EQ(std::set(lines.begin(), lines.end()).size(), lines.size());
}

// A table reader as somebody else in the process would call it. Null stands for no record.
template <typename Record>
Decoded readTable(const uint8_t* data, uint32_t length, Record* record, uint32_t table) {
  harness::resetRecorder();
  return mesh::wire::SlotReader(mesh::l2vpn_sync::receiveModule.env,
                                mesh::wire::Buffer<plain>{data, length})
      .decodeTable(mesh::wire::schemaOf<Record>, table, reinterpret_cast<uint8_t*>(record));
}

template <typename Record>
void expectParameterChecks() {
  std::string function = mesh::wire::schemaOf<Record>.name;
  function += "_unpack_non_root";
  const Buffer bytes = Layout().u32(8).u16(4, 4).u32(4);
  Record record;
  std::memset(&record, harness::mark, sizeof record);

  const auto expectRefused = [&](const uint8_t* data, uint32_t length, Record* into,
                                 const char* text) {
    EXPECT_EQ(readTable(data, length, into, 8), Decoded::No) << text;
    EXPECT_EQ(harness::takeTrace(), Trace({reported(function, text)}));
    EXPECT_EQ(harness::bytesOf(record), harness::marks(sizeof record));
  };
  expectRefused(nullptr, 12, &record, "Param invalid(null, 12, nonNull)");
  expectRefused(bytes.data(), 3, &record, "Param invalid(nonNull, 3, nonNull)");
  expectRefused(bytes.data(), 0, &record, "Param invalid(nonNull, 0, nonNull)");
  expectRefused(bytes.data(), 0x80000000, &record, "Param invalid(nonNull, -2147483648, nonNull)");
  expectRefused(bytes.data(), 12, nullptr, "Param invalid(nonNull, 12, null)");
  expectRefused(nullptr, 0xFFFFFFFF, nullptr, "Param invalid(null, -1, null)");

  EXPECT_EQ(readTable(bytes.data(), 12, &record, 8), Decoded::Yes);
  EXPECT_EQ(harness::takeTrace(), Trace());
  EXPECT_EQ(harness::bytesOf(record), harness::marks(sizeof record))
      << "a table without fields: clearing is the caller's";
}

TEST(TableReader, OfGlobalEnablesChecksItsParameters) {
  expectParameterChecks<l2vpn_sync_glb_en>();
}

TEST(TableReader, OfSpanningTreeChecksItsParameters) {
  expectParameterChecks<l2vpn_sync_stp>();
}

TEST(TableReader, StartsAtTheTableItIsGiven) {
  // Two tables share the vtable at 4; the root word leads to neither.
  const Buffer bytes = Layout().u32(0xFFFFFFFF).u16(6, 8, 4).u32(6, 0x11111111).u32(14, 0x22222222);
  l2vpn_sync_stp record{};
  EXPECT_EQ(readTable(bytes.data(), 26, &record, 10), Decoded::Yes);
  EXPECT_EQ(record.f0, 0x11111111U);
  EXPECT_EQ(readTable(bytes.data(), 26, &record, 18), Decoded::Yes);
  EXPECT_EQ(record.f0, 0x22222222U);
  EXPECT_EQ(harness::takeTrace(), Trace());
}

TEST(TableReader, ReportsATableOutsideTheBuffer) {
  const Buffer bytes = Layout().u32(8).u16(4, 4).u32(4);
  l2vpn_sync_vpls_ac record{};
  for (const uint32_t table :
       {0U, 3U, 9U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(readTable(bytes.data(), 12, &record, table), Decoded::No);
    EXPECT_EQ(
        harness::takeTrace(),
        Trace({reported("l2vpn_sync_vpls_ac_unpack_non_root",
                        "Table offset(" + std::to_string(table) + ") is out of range(4 - 12)")}));
  }
}

TEST(TableReader, LeavesReleasingToItsCaller) {
  // Its byte string is read, the one after it fails.
  const Buffer bytes =
      Layout().u32(0).u16(34, 0).zeros(24).u16(4, 0, 0xFFFF).u32(34).u32(4, 1).u8('a');
  dbginfo_endata_l2vpn record{};
  // A table reader leaves the binding to its caller.
  harness::useByteOrder(harness::operationsOf("dbginfo_endata_l2vpn"), false);
  harness::resetRecorder();
  const mesh::wire::Buffer<plain> buffer{bytes.data(), static_cast<uint32_t>(bytes.size())};
  const Decoded decoded = mesh::wire::SlotReader(mesh::l2vpn_cfg::receiveModule.env, buffer)
                              .decodeTable(mesh::wire::schemaOf<dbginfo_endata_l2vpn>, 38,
                                           reinterpret_cast<uint8_t*>(&record));
  EXPECT_EQ(decoded, Decoded::No);
  EXPECT_EQ(harness::takeTrace(),
            Trace({"unpackAlloc size=1 owner=12 caller=\"dbginfo_endata_l2vpn_unpack_non_root\""
                   " -> #1"}));
  ASSERT_NE(record.f12, nullptr);
  EXPECT_EQ(*record.f12, 'a');
  dbginfo_endata_l2vpn_free__unpacked(&record);
}

}  // namespace
