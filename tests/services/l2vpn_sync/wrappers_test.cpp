// The update and delete messages: one own value and a whole record.

#include "oracle/operations/writer.hpp"
#include "services/behaviour.hpp"

namespace {

using namespace harness;

using AcUpdate = l2vpn_sync_vll_ac_update;
using AcDelete = l2vpn_sync_vll_ac_delete;

// The wrapped records, by name.
std::vector<std::string> wrappedRecords() {
  std::vector<std::string> names;
  for (const oracle::Description& message : oracle::descriptions()) {
    if (message.name.ends_with("_update")) {
      names.push_back(message.fields[1].nested->name);
    }
  }
  return names;
}

Buffer packedBy(const Operations& operations, const oracle::Value& value) {
  const oracle::RecordImage record(*value.message, value);
  Buffer buffer(1000);
  uint32_t length = 1000;
  EXPECT_EQ(operations.pack(record.data(), buffer.data(), &length), 0U);
  return firstBytes(buffer, length);
}

Buffer sentBy(const Operations& operations, const oracle::Value& value) {
  const oracle::RecordImage record(*value.message, value);
  resetRecorder();
  EXPECT_EQ(operations.sendSingle(7, record.data(), unused, 0), 0U);
  EXPECT_EQ(takeTrace(), Trace{"MESH_SendMsg destination=7 count=1"});
  EXPECT_EQ(recorder().sent.at(0).id, operations.id());
  return recorder().sent.at(0).bytes;
}

Buffer part(const Buffer& bytes, size_t begin, size_t end) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
          bytes.begin() + static_cast<std::ptrdiff_t>(end)};
}

class Wrappers : public testing::TestWithParam<std::string> {
 protected:
  std::string base() const { return GetParam(); }
  std::string update() const { return base().append("_update"); }
  std::string deletion() const { return base().append("_delete"); }
  const Operations& operations(const std::string& name) const { return operationsOf(name); }
  uint32_t wrapperSize() const { return oracle::descriptionOf(update()).recordSize; }
  uint32_t smallest() const {
    return static_cast<uint32_t>(
        oracle::compactSize(oracle::descriptionOf(update()), zero(update())));
  }
  oracle::Value zero(const std::string& name) const {
    return oracle::zeroValue(oracle::descriptionOf(name));
  }
  oracle::Value filled(const std::string& name) const {
    return golden::fullValue(oracle::descriptionOf(name));
  }
};

TEST_P(Wrappers, HaveTheirSizes) {
  for (const std::string& name : {update(), deletion()}) {
    const oracle::Description& message = oracle::descriptionOf(name);
    EXPECT_EQ(packedBy(operations(name), zero(name)).size(), smallest());
    EXPECT_EQ(packedBy(operations(name), filled(name)).size(),
              oracle::compactSize(message, filled(name)));
    EXPECT_EQ(sentBy(operations(name), zero(name)).size(), oracle::fixedLength(message));
    EXPECT_EQ(sentBy(operations(name), filled(name)).size(), oracle::fixedLength(message));
    resetRecorder();
    EXPECT_EQ(operations(name).unpack(nullptr, 0, nullptr), wrapperSize());
  }
}

TEST_P(Wrappers, UpdateAndDeleteDifferInTheirIdentifiersAlone) {
  const oracle::Value record = filled(update());
  EXPECT_EQ(packedBy(operations(update()), record), packedBy(operations(deletion()), record));
  EXPECT_EQ(sentBy(operations(update()), record), sentBy(operations(deletion()), record));
  EXPECT_NE(operations(update()).id(), operations(deletion()).id());
}

TEST_P(Wrappers, CompactCarriesTheRecordsMessageLessItsRoot) {
  const oracle::Value wrapper = filled(update());
  const Buffer whole = packedBy(operations(update()), wrapper);
  const Buffer carried = packedBy(operations(base()), oracle::nested(wrapper[1]));
  // The offset word has the value of the carried message's root.
  EXPECT_EQ(
      hex(firstBytes(whole, 22)),
      hex(Layout().u32(12).u16(8, 10, 4, 6).u32(8).u16(0x4001).append(firstBytes(carried, 4))));
  EXPECT_EQ(hex(part(whole, 22, whole.size())), hex(part(carried, 4, carried.size())));
}

TEST_P(Wrappers, ImageCarriesTheRecordsImage) {
  const oracle::Value wrapper = filled(update());
  const uint32_t length = oracle::fixedLength(oracle::descriptionOf(base()));
  const Buffer whole = sentBy(operations(update()), wrapper);
  EXPECT_EQ(hex(whole), hex(Layout()
                                .u32(4, 0U - (length + 8))
                                .u16(0x4001)
                                .append(sentBy(operations(base()), oracle::nested(wrapper[1])))
                                .zeros(2)
                                .u16(8, 6 + length, 4, 6)
                                .zeros(4)));
}

TEST_P(Wrappers, NameThemselvesInTheirReports) {
  for (const std::string& name : {update(), deletion()}) {
    const Operations& wrapper = operations(name);
    Buffer record = marks(wrapperSize());
    const Buffer bytes(64, 0);
    const std::string unpack = std::string(name).append("_unpack");
    const auto report = [&](const uint8_t* data, uint32_t length, void* into) {
      resetRecorder();
      EXPECT_EQ(wrapper.unpack(data, length, into), wrapperSize());
      EXPECT_EQ(record, marks(wrapperSize()));
      return takeTrace();
    };
    EXPECT_EQ(report(nullptr, 64, record.data()),
              Trace{reported(unpack, "Param invalid(null, 64, nonNull)")});
    EXPECT_EQ(report(bytes.data(), 0xFFFFFFFF, record.data()),
              Trace{reported(unpack, "Param invalid(nonNull, -1, nonNull)")});
    EXPECT_EQ(report(bytes.data(), 64, nullptr),
              Trace{reported(unpack, "Param invalid(nonNull, 64, null)")});

    const std::vector<uint8_t> zeros(wrapperSize(), 0);
    uint32_t length = 500;
    resetRecorder();
    EXPECT_EQ(wrapper.pack(zeros.data(), nullptr, &length), 0U);
    EXPECT_EQ(length, smallest());
    EXPECT_EQ(takeTrace(), Trace{reported(std::string(name).append("_pack"),
                                          "Param invalid(null, 500, nonNull)")});
    length = smallest() - 1;
    EXPECT_EQ(wrapper.pack(zeros.data(), record.data(), &length), failure);
    EXPECT_EQ(wrapper.pack(nullptr, record.data(), &length), failure);
    EXPECT_EQ(length, smallest() - 1);
    EXPECT_EQ(takeTrace(), Trace{});
  }
}

TEST_P(Wrappers, DamagedRecordKeepsF0) {
  const Buffer good = packedBy(operations(deletion()), filled(deletion()));
  const auto size = static_cast<uint32_t>(good.size());
  const uint32_t table = 18 + good[18];
  oracle::RecordImage record(oracle::descriptionOf(deletion()), 0xA5);
  resetRecorder();
  const Buffer bad = withU32(good, table, table - 3);  // its vtable is at 3
  operations(deletion()).unpack(bad.data(), size, record.data());
  oracle::Value expected = zero(deletion());
  expected[0].scalar = 0x4001;
  EXPECT_EQ(
      oracle::difference(oracle::load(oracle::descriptionOf(deletion()), record.data()), expected),
      "");
  EXPECT_EQ(takeTrace(),
            Trace{reported(base().append("_unpack_non_root"), std::string("Vtable offset(")
                                                                  .append(std::to_string(table))
                                                                  .append(") is out of range(4 - ")
                                                                  .append(std::to_string(size - 4))
                                                                  .append(")"))});
}

INSTANTIATE_TEST_SUITE_P(All, Wrappers, testing::ValuesIn(wrappedRecords()),
                         [](const auto& test) { return test.param; });

TEST(Wrapper, OfAnExpOfZerosPacksTo42Bytes) {
  const Buffer expected =
      Layout().u32(12).u16(8, 8, 0, 4).u32(8).u32(22).u16(18, 4).zeros(14).u32(18);
  EXPECT_EQ(hex(compact(l2vpn_sync_vllexp_update{})), hex(expected));
  EXPECT_EQ(expected.size(), 42U);
}

TEST(Wrapper, OfAnAcTakes96BytesAnd98WithF0) {
  AcUpdate record{};
  EXPECT_EQ(compact(record).size(), 96U);
  EXPECT_EQ(hex(firstBytes(compact(record), 20)),
            hex(Layout().u32(12).u16(8, 8, 0, 4).u32(8).u32(36)));
  record.f0 = 0x0102;
  EXPECT_EQ(compact(record).size(), 98U);
  EXPECT_EQ(hex(firstBytes(compact(record), 22)),
            hex(Layout().u32(12).u16(8, 10, 4, 6).u32(8).u16(0x0102).u32(36)));
  expectRoundTrip(record);
}

TEST(Wrapper, OfAnAcIsSentAs136Bytes) {
  expectSentFixed<AcUpdate>();
  expectSentFixed<AcDelete>();
  const Buffer image = sent(full<AcUpdate>());
  EXPECT_EQ(hex(firstBytes(image, 8)), hex(Layout().u32(4, 0xFFFFFF88)));
  EXPECT_EQ(hex(part(image, 122, 136)), hex(Layout().zeros(2).u16(8, 118, 4, 6).zeros(4)));
}

TEST(Wrapper, OfAVplsAcIsSentAs120Bytes) {
  expectSentFixed<l2vpn_sync_vpls_ac_update>();
  expectSentFixed<l2vpn_sync_vpls_ac_delete>();
  const Buffer image = sent(full<l2vpn_sync_vpls_ac_update>());
  EXPECT_EQ(hex(firstBytes(image, 18)),
            hex(Layout().u32(4, 0xFFFFFF98).u16(0x4001).u32(4, 0xFFFFFFBC)));
  EXPECT_EQ(hex(part(image, 106, 120)), hex(Layout().zeros(2).u16(8, 102, 4, 6).zeros(4)));
}

TEST(Wrapper, OfAVlanIsSentAs64BytesWhateverItsValues) {
  expectSentFixed<l2vpn_sync_ifvlan_update>();
}

TEST(Wrapper, VtableWithOnlySlot0ReadsF0) {
  AcUpdate expected{};
  expected.f0 = 0x4001;
  const Buffer good = compact(full<AcUpdate>());
  expectRead(withU16(good, 4, 6), expected);
  expectRead(withU16(good, 4, 7), expected);
  expectRead(withU16(good, 4, 5), AcUpdate{});
  expectRead(withU16(good, 4, 4), AcUpdate{});
}

TEST(Wrapper, BadHeadIsLoggedAndKeepsTheRecord) {
  expectHeadChecksByMessage(full<AcUpdate>());
  expectHeadChecksByMessage(full<AcDelete>());
  expectHeadChecksByMessage(full<l2vpn_sync_stp_update>());
}

TEST(Wrapper, KeepsTheRecordOnABadRoot) {
  const Unpacked<AcUpdate> wrapper(withU32(compact(full<AcUpdate>()), 0, 2));
  EXPECT_EQ(bytesOf(wrapper.record), marks(56));
  EXPECT_EQ(wrapper.trace, Trace{reported("l2vpn_sync_vll_ac_update_unpack",
                                          "Table offset(2) is out of range(4 - 125)")});
  const Unpacked<l2vpn_sync_vll_ac> record(withU32(compact(full<l2vpn_sync_vll_ac>()), 0, 2));
  EXPECT_EQ(bytesOf(record.record), Buffer(52, 0));
  EXPECT_EQ(record.trace, Trace{reported("l2vpn_sync_vll_ac_unpack_non_root",
                                         "Table offset(2) is out of range(4 - 107)")});
}

TEST(Wrapper, RecordThatIsAbsentOrPastTheEndIsZeroWithoutALog) {
  AcUpdate expected{};
  expected.f0 = 0x4001;
  const Buffer good = compact(full<AcUpdate>());
  ASSERT_EQ(good.size(), 125U);
  expectRead(withU16(good, 10, 0), expected);
  expectRead(withU16(good, 10, 125 - 12 - 3), expected);
  expectRead(withU16(good, 10, 0xFFFF), expected);
  expectRead(withU32(good, 18, 0xFFFFFFFF), expected);  // the target wraps
}

TEST(Wrapper, RecordOutsideTheBufferIsLoggedByTheRecordsReader) {
  AcUpdate expected{};
  expected.f0 = 0x4001;
  const Unpacked<AcUpdate> unpacked(withU32(compact(full<AcUpdate>()), 18, 200));
  EXPECT_EQ(bytesOf(unpacked.record), bytesOf(expected));
  EXPECT_EQ(unpacked.trace, Trace{reported("l2vpn_sync_vll_ac_unpack_non_root",
                                           "Table offset(218) is out of range(4 - 125)")});
}

TEST(Wrapper, StopsAtF0PastTheEnd) {
  expectRead(withU16(compact(full<AcUpdate>()), 8, 125 - 12 - 1), AcUpdate{});
}

TEST(Wrapper, RecordDamagedPartWayKeepsWhatWasReadBefore) {
  const Buffer good = compact(full<AcUpdate>());
  // The record's first array: its offset word is at 85, its length word 8 bytes on.
  ASSERT_EQ(good[93], 12);
  const auto record = full<AcUpdate>();
  expectRead(withU32(good, 93, 11), upTo(4 + offsetof(l2vpn_sync_vll_ac, f12), record));
  expectRead(firstBytes(good, 124), upTo(4 + offsetof(l2vpn_sync_vll_ac, f13), record));
}

TEST(Wrapper, PackChecksRecordAndRoom) {
  expectPackLimits(AcUpdate{});
  expectPackLimits(full<AcUpdate>());
  expectPackLimits(AcDelete{});
  expectPackLimits(full<AcDelete>());
}

TEST(Wrapper, ReadsBackBothArrangements) {
  expectRoundTrip(full<AcUpdate>());
  expectRoundTrip(full<AcDelete>());
  expectRoundTrip(full<l2vpn_sync_vpls_macping_delete>());
  expectRoundTrip(full<l2vpn_sync_oam_staticmac_update>());
}

TEST(Wrapper, ReleaseDoesNothing) {
  expectNothingToRelease<AcUpdate>();
  expectNothingToRelease<AcDelete>();
}

}  // namespace
