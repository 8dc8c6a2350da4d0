// Global, interface and STP records: glb_en, ifvlan, stp.

#include "l2vpn_sync/schema.hpp"
#include "services/behaviour.hpp"
#include "wire/slot_reader.hpp"

namespace {

using namespace harness;

using Global = l2vpn_sync_glb_en;
using Vlan = l2vpn_sync_ifvlan;
using Stp = l2vpn_sync_stp;

TEST(GlobalAndStp, StpOfZerosPacksTo20Bytes) {
  const Buffer expected = Layout().u32(16).u16(12, 4, 0, 0, 0, 0).u32(12);
  EXPECT_EQ(hex(compact(Stp{})), hex(expected));
  EXPECT_EQ(expected.size(), 20U);
}

TEST(GlobalAndStp, StpWithOnlyF3PacksTo24Bytes) {
  Stp record{};
  record.f3 = 7;
  const Buffer expected = Layout().u32(16).u16(12, 8, 0, 0, 0, 4).u32(12, 7);
  EXPECT_EQ(hex(compact(record)), hex(expected));
  EXPECT_EQ(expected.size(), 24U);
  expectRead(expected, record);
}

TEST(GlobalAndStp, GlobalOfZerosPacksTo94BytesAndBack) {
  const Buffer expected = Layout()
                              .u32(18)
                              .u16(14, 76, 0, 0, 0, 4, 8)
                              .u32(14)
                              .u32(8, 36)
                              .u32(28)
                              .zeros(28)
                              .u32(28)
                              .zeros(28);
  EXPECT_EQ(hex(compact(Global{})), hex(expected));
  EXPECT_EQ(expected.size(), 94U);
  expectRead(expected, Global{});
}

TEST(GlobalAndStp, VlanOfZerosPacksTo24Bytes) {
  EXPECT_EQ(hex(compact(Vlan{})), hex(Layout().u32(20).u16(16, 4).zeros(12).u32(16)));
}

TEST(GlobalAndStp, AllScalarsPackToTheLargestSize) {
  EXPECT_EQ(compact(full<Global>()).size(), 106U);
  EXPECT_EQ(compact(full<Vlan>()).size(), 40U);  // 24 and three of 4, one of 2, two of 1
  EXPECT_EQ(compact(full<Stp>()).size(), 36U);
}

TEST(GlobalAndStp, SendsEachRecordInItsFixedLength) {
  expectSentFixed<Global>();
  expectSentFixed<Vlan>();
  expectSentFixed<Stp>();
}

TEST(GlobalAndStp, Images) {
  const Stp stp{.f0 = 0x10111213, .f1 = 0x20212223, .f2 = 0x30313233, .f3 = 0x40414243};
  EXPECT_EQ(hex(sent(stp)), hex(Layout()
                                    .u32(4, 0xFFFFFFEC)
                                    .u32(0x10111213, 0x20212223, 0x30313233, 0x40414243)
                                    .u16(12, 20, 4, 8, 12, 16)
                                    .zeros(4)));
  const Vlan vlan{.f0 = 1, .f1 = 2, .f2 = 3, .f3 = 4, .f4 = 5, .f5 = 0x0607};
  EXPECT_EQ(hex(sent(vlan)), hex(Layout()
                                     .u32(4, 0xFFFFFFEC)
                                     .u32(1, 2, 3)
                                     .u8(4, 5)
                                     .u16(0x0607)
                                     .u16(16, 20, 4, 8, 12, 16, 17, 18)));
  const Buffer global = sent(full<Global>());
  EXPECT_EQ(hex(Buffer(global.begin() + 92, global.end())),
            hex(Layout().u16(14, 88, 4, 8, 12, 16, 52).zeros(6)));
}

TEST(GlobalAndStp, ReadsBackBothArrangements) {
  expectRoundTrip(Global{});
  expectRoundTrip(full<Global>());
  expectRoundTrip(Vlan{});
  expectRoundTrip(full<Vlan>());
  expectRoundTrip(Stp{});
  expectRoundTrip(full<Stp>());
}

TEST(GlobalAndStp, VtableOf14BytesLeavesF5OfAVlanZero) {
  expectVtableOf<Vlan>(14, offsetof(Vlan, f5));
  expectVtableOf<Stp>(10, offsetof(Stp, f3));
  expectVtableOf<Global>(12, offsetof(Global, f4));
  expectVtableOf<Global>(4, 0);
}

TEST(GlobalAndStp, StopsAtAnArrayOfAnotherLength) {
  expectArrayLengthChecked<Global>(42, 28, offsetof(Global, f3));
  expectArrayLengthChecked<Global>(74, 28, offsetof(Global, f4));
}

TEST(GlobalAndStp, StopsSilentlyAtAFieldPastTheEnd) {
  expectRead(firstBytes(compact(full<Stp>()), 35), upTo(offsetof(Stp, f3), full<Stp>()));
  expectRead(firstBytes(compact(full<Vlan>()), 39), upTo(offsetof(Vlan, f5), full<Vlan>()));
}

// Calls a record's table reader like code outside this library.
template <typename Record>
void expectReaderChecksItsParameters() {
  constexpr auto order = mesh::host::ByteOrder::Host;
  const std::string function = nameOf<Record>() + "_unpack_non_root";
  const Buffer good = compact(full<Record>());
  const auto expectRefused = [&](const uint8_t* data, uint32_t length, bool hasRecord,
                                 const std::string& text) {
    Record record;
    std::memset(&record, mark, sizeof record);
    resetRecorder();
    const mesh::wire::Buffer<order> buffer{data, length};
    const auto decoded =
        mesh::wire::SlotReader(mesh::l2vpn_sync::receiveModule.env, buffer)
            .decodeTable(mesh::wire::schemaOf<Record>, 4,
                         hasRecord ? reinterpret_cast<uint8_t*>(&record) : nullptr);
    EXPECT_EQ(decoded, mesh::wire::Decoded::No);
    EXPECT_EQ(bytesOf(record), marks(sizeof record));
    EXPECT_EQ(takeTrace(), Trace{reported(function, text)});
  };
  expectRefused(nullptr, 30, true, "Param invalid(null, 30, nonNull)");
  expectRefused(good.data(), 3, true, "Param invalid(nonNull, 3, nonNull)");
  expectRefused(good.data(), 0xFFFFFFFE, true, "Param invalid(nonNull, -2, nonNull)");
  expectRefused(good.data(), 30, false, "Param invalid(nonNull, 30, null)");
}

TEST(GlobalAndStp, TheTableReadersOfGlobalAndStpCheckTheirOwnParameters) {
  expectReaderChecksItsParameters<Global>();
  expectReaderChecksItsParameters<Stp>();
  EXPECT_TRUE(mesh::wire::schemaOf<Global>.style.checksParameters);
  EXPECT_FALSE(mesh::wire::schemaOf<Vlan>.style.checksParameters);
}

TEST(GlobalAndStp, PackChecksRecordAndRoom) {
  expectPackLimits(Global{});
  expectPackLimits(full<Global>());
  expectPackLimits(Vlan{});
  expectPackLimits(full<Vlan>());
  expectPackLimits(Stp{});
  expectPackLimits(full<Stp>());
}

TEST(GlobalAndStp, UnpackChecksItsParameters) {
  expectUnpackParameters<Global>();
  expectUnpackParameters<Vlan>();
  expectUnpackParameters<Stp>();
}

TEST(GlobalAndStp, BadHeadIsLoggedAndClearsTheRecord) {
  expectHeadChecksByTableReader(full<Global>());
  expectHeadChecksByTableReader(full<Vlan>());
  expectHeadChecksByTableReader(full<Stp>());
}

TEST(GlobalAndStp, ReleaseDoesNothing) {
  expectNothingToRelease<Global>();
  expectNothingToRelease<Vlan>();
  expectNothingToRelease<Stp>();
}

}  // namespace
