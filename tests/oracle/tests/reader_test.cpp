// The oracle's reader against buffers written out byte by byte.
#include <gtest/gtest.h>

#include "oracle/messages/description.hpp"
#include "oracle/operations/reader.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "oracle/values/text.hpp"
#include "oracle/values/value.hpp"

namespace oracle {
namespace {

using Trace = std::vector<std::string>;
using Bytes = std::vector<uint8_t>;

UnpackResult unpackFrom(const std::string& name, const Bytes& buffer, int failingAllocation = 0) {
  return unpack(descriptionOf(name), buffer.data(), static_cast<uint32_t>(buffer.size()), false,
                false, failingAllocation);
}

std::string logLine(const std::string& function, const std::string& text, int code = 22) {
  return joined({"log level=2 code=", std::to_string(code), " file=\"\" function=\"", function,
                 "\" text=\"[VELTA]:", text, "\""});
}

Bytes keyBuffer() {
  TestBuffer buffer;
  buffer.u32(16).u16({12, 23, 4, 6, 8, 12}).u32(12);
  buffer.u16({1, 2}).u32(3).u32({4, 3}).bytes({'a', 'b', 'c'});
  return buffer.content;
}

TEST(Oracle, UnpacksADebugKeyWithOneBlock) {
  const UnpackResult result = unpackFrom("dbginfo_key_l2vpn", keyBuffer());
  Value expected = zeroValue(descriptionOf("dbginfo_key_l2vpn"));
  expected[0].scalar = 1;
  expected[1].scalar = 2;
  expected[2].scalar = 3;
  setBytes(expected[3], {'a', 'b', 'c'});
  EXPECT_EQ(difference(result.record, expected), "");
  EXPECT_EQ(result.returned, 24U);
  EXPECT_TRUE(result.recordTouched);
  EXPECT_EQ(result.trace,
            Trace({"unpackAlloc size=3 owner=12 caller=\"dbginfo_key_l2vpn_unpack\" -> #1"}));
  EXPECT_EQ(freeUnpacked(*expected.message, result.record),
            Trace({"unpackFree #1 owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""}));
}

TEST(Oracle, RefusesBadParametersBeforeTouchingTheRecord) {
  const Description& key = descriptionOf("dbginfo_key_l2vpn");
  const UnpackResult null = unpack(key, nullptr, 3, false, false, 0);
  EXPECT_EQ(null.returned, 24U);
  EXPECT_FALSE(null.recordTouched);
  EXPECT_EQ(null.trace, Trace({"log level=2 code=22 file=\"\" function=\"dbginfo_key_l2vpn_unpack\""
                               " text=\"[VELTA]:Param invalid(null, 3, nonNull)\""}));
  const Bytes buffer = keyBuffer();
  EXPECT_EQ(
      unpack(key, buffer.data(), 0x80000000, true, false, 0).trace,
      Trace({logLine("dbginfo_key_l2vpn_unpack", "Param invalid(nonNull, -2147483648, null)")}));
}

TEST(Oracle, LogsTheThreeFrameChecksInOrder) {
  const std::string function = "dbginfo_key_l2vpn_unpack";
  const UnpackResult four = unpackFrom("dbginfo_key_l2vpn", TestBuffer().u32(4).content);
  EXPECT_EQ(four.trace, Trace({logLine(function, "Table offset(4) is out of range(4 - 4)")}));
  EXPECT_FALSE(four.recordTouched);
  const Bytes far = TestBuffer().u32({4, 1}).content;
  EXPECT_EQ(unpackFrom("dbginfo_key_l2vpn", far).trace,
            Trace({logLine(function, "Vtable offset(4) is out of range(4 - 4)")}));
  const Bytes overlong = TestBuffer().u32({4, static_cast<uint32_t>(-4)}).u16({5, 0}).content;
  EXPECT_EQ(unpackFrom("dbginfo_key_l2vpn", overlong).trace,
            Trace({logLine(function, "Vtable Len(5) is out of range(0 - 4)")}));
}

TEST(Oracle, ClearsRecordsWhoseRootIsReadByTheTableReader) {
  const UnpackResult base = unpackFrom("l2vpn_sync_vpls_ac", TestBuffer().u32({2, 0}).content);
  EXPECT_TRUE(base.recordTouched);
  EXPECT_EQ(base.trace, Trace({logLine("l2vpn_sync_vpls_ac_unpack_non_root",
                                       "Table offset(2) is out of range(4 - 8)")}));
  const UnpackResult wrapper =
      unpackFrom("l2vpn_sync_vpls_ac_update", TestBuffer().u32({2, 0}).content);
  EXPECT_FALSE(wrapper.recordTouched);
  EXPECT_EQ(wrapper.returned, 52U);
  EXPECT_EQ(wrapper.trace, Trace({logLine("l2vpn_sync_vpls_ac_update_unpack",
                                          "Table offset(2) is out of range(4 - 8)")}));
  const UnpackResult parameters =
      unpackFrom("dbginfo_para_l2vpn", TestBuffer().u32({2, 0}).content);
  EXPECT_EQ(parameters.trace,
            Trace({logLine("dbginfo_para_l2vpn_unpack_non_root",
                           "Table offset(2) is out of range(4 - 8)"),
                   "unpackFree null owner=12 caller=\"dbginfo_para_l2vpn_free_unpacked\""}));
}

TEST(Oracle, ReadsShortVtablesAsAbsentFields) {
  const Bytes none = TestBuffer().u32(8).u16({4, 4}).u32(4).content;
  for (const Description& type : descriptions()) {
    const UnpackResult result = unpackFrom(type.name, none);
    EXPECT_EQ(difference(result.record, zeroValue(type)), "") << type.name;
    EXPECT_TRUE(result.recordTouched && result.trace.empty()) << type.name;
  }
  Bytes full = packed(descriptionOf("l2vpn_sync_vpls_ac"),
                      withScalars(descriptionOf("l2vpn_sync_vpls_ac"), 6));
  full[4] = 14;  // slots 0 to 4
  Value expected = zeroValue(descriptionOf("l2vpn_sync_vpls_ac"));
  for (size_t slot = 0; slot < 5; ++slot) {
    expected[slot].scalar = 6;
  }
  EXPECT_EQ(difference(unpackFrom("l2vpn_sync_vpls_ac", full).record, expected), "");
}

TEST(Oracle, IgnoresSlotsItDoesNotKnow) {
  TestBuffer buffer;
  buffer.u32(4 + 14).u16({14, 0, 0, 0, 0, 4, 0xFFFF}).u32({14, 7});
  const UnpackResult result = unpackFrom("l2vpn_sync_stp", buffer.content);
  EXPECT_EQ(result.record[3].scalar, 7U);
  EXPECT_TRUE(result.trace.empty());
}

TEST(Oracle, StopsSilentlyAtAFieldBeyondTheEnd) {
  TestBuffer buffer;
  buffer.u32(16).u16({12, 0, 4, 9, 8, 8}).u32({12, 1, 2});  // slot 1 ends one byte too late
  const UnpackResult result = unpackFrom("l2vpn_sync_stp", buffer.content);
  EXPECT_EQ(result.record[0].scalar, 1U);
  EXPECT_EQ(result.record[2].scalar, 0U);
  EXPECT_TRUE(result.trace.empty());
}

TEST(Oracle, StopsAtArraysOfAnotherLength) {
  const Description& type = descriptionOf("l2vpn_sync_vpls_ac");
  for (const int length : {11, 13}) {
    Value value = withScalars(type, 2);
    value[8].bytes.assign(12, 8);
    value[9].bytes.assign(12, 9);
    Bytes buffer = packed(type, value);
    buffer[61] = static_cast<uint8_t>(
        length);  // the length word of f8 behind 21 bytes of scalars and two words
    EXPECT_EQ(difference(unpackFrom(type.name, buffer).record, withScalars(type, 2)), "");
  }
}

TEST(Oracle, GivesBlocksBackWhenALaterFieldFails) {
  const Description& type = descriptionOf("dbginfo_endata_l2vpn");
  Value value = zeroValue(type);
  setBytes(value[12], {1, 2});
  setBytes(value[14], {3, 4, 5});
  Bytes buffer = packed(type, value);
  buffer.pop_back();
  const UnpackResult result = unpackFrom(type.name, buffer);
  Value expected = zeroValue(type);
  expected[12].length = 2;
  EXPECT_EQ(difference(result.record, expected), "");
  EXPECT_EQ(result.trace,
            Trace({"unpackAlloc size=2 owner=12 caller=\"dbginfo_endata_l2vpn_unpack\" -> #1",
                   "unpackFree #1 owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\"",
                   "unpackFree null owner=12 caller=\"dbginfo_endata_l2vpn_free_unpacked\""}));
}

TEST(Oracle, KeepsTheLengthOfAStringThatFoundNoMemory) {
  const UnpackResult result = unpackFrom("dbginfo_key_l2vpn", keyBuffer(), 1);
  EXPECT_TRUE(result.record[3].isNull);
  EXPECT_EQ(result.record[3].length, 3U);
  EXPECT_EQ(result.record[2].scalar, 3U);
  EXPECT_EQ(result.trace,
            Trace({"unpackAlloc size=3 owner=12 caller=\"dbginfo_key_l2vpn_unpack\" -> null",
                   logLine("dbginfo_key_l2vpn_unpack", "Malloc unpack data unsuccess, size(3)", 12),
                   "unpackFree null owner=12 caller=\"dbginfo_key_l2vpn_free_unpacked\""}));
}

TEST(Oracle, TakesNestedStringsUnderTheNestedName) {
  const Description& type = descriptionOf("dbginfo_cmd_key_l2vpn");
  Value value = zeroValue(type);
  setBytes(nested(value[3])[7], {1});
  setBytes(nested(value[4])[3], {2, 2});
  const UnpackResult result = unpackFrom(type.name, packed(type, value), 2);
  EXPECT_EQ(
      result.trace,
      Trace({"unpackAlloc size=1 owner=12 caller=\"dbginfo_para_l2vpn_unpack_non_root\" -> #1",
             "unpackAlloc size=2 owner=12 caller=\"dbginfo_key_l2vpn_unpack_non_root\" -> null",
             logLine("dbginfo_key_l2vpn_unpack_non_root",
                     "Malloc unpack data unsuccess,                size(2)", 12),
             "unpackFree #1 owner=12 caller=\"dbginfo_cmd_key_l2vpn_free_unpacked\"",
             "unpackFree null owner=12 caller=\"dbginfo_cmd_key_l2vpn_free_unpacked\""}));
}

TEST(Oracle, FailsAConfigurationMessageWithADamagedNestedTable) {
  const Description& type = descriptionOf("l2vpn_cfg_query_dfx_key");
  Value value = withScalars(type, 5);
  setBytes(nested(value[0])[2], {1});
  Bytes buffer = packed(type, value);
  buffer[20] = 0xFF;  // the offset word of the condition, low byte
  buffer[21] = 0xFF;
  const UnpackResult result = unpackFrom(type.name, buffer);
  EXPECT_EQ(nested(result.record[0])[0].scalar, 5U);
  EXPECT_TRUE(nested(result.record[0])[2].isNull);
  EXPECT_EQ(result.trace.size(), 3U);
  EXPECT_EQ(result.trace[1], logLine("l2vpn_cfg_query_dfx_cond_unpack_non_root",
                                     "Table offset(65555) is out of range(4 - 213)"));
}

TEST(Oracle, LeavesAWrapperWithWhatItsDamagedTableGave) {
  const Description& type = descriptionOf("l2vpn_sync_stp_delete");
  Bytes buffer = packed(type, withScalars(type, 5));
  buffer.erase(buffer.end() - 4, buffer.end());
  const UnpackResult result = unpackFrom(type.name, buffer);
  Value expected = withScalars(type, 5);
  nested(expected[1])[3].scalar = 0;
  EXPECT_EQ(difference(result.record, expected), "");
  EXPECT_TRUE(result.trace.empty());
}

TEST(Oracle, TakesOneBlockForAllItems) {
  const Description& type = descriptionOf("l2vpn_cfg_query_dfx_rec");
  const Description& item = descriptionOf("l2vpn_cfg_query_dfx_item");
  Value value = zeroValue(type);
  setItems(value[1], {withScalars(item, 4), withScalars(item, 5)});
  Bytes buffer = packed(type, value);
  const UnpackResult good = unpackFrom(type.name, buffer);
  EXPECT_EQ(difference(good.record, value), "");
  const std::string caller = "owner=12 caller=\"l2vpn_cfg_query_dfx_rec_unpack_non_root\"";
  EXPECT_EQ(good.trace, Trace({"unpackAlloc size=33144 " + caller + " -> #1"}));

  const std::string freeing = " owner=12 caller=\"l2vpn_cfg_query_dfx_rec_free_unpacked\"";
  const UnpackResult full = unpackFrom(type.name, buffer, 1);
  EXPECT_EQ(full.record[1].length, 0U);
  EXPECT_EQ(full.trace,
            Trace({"unpackAlloc size=33144 " + caller + " -> null",
                   logLine("l2vpn_cfg_query_dfx_rec_unpack_non_root",
                           "Malloc unpack data unsuccess,                size(33144)", 12),
                   "unpackFree null" + freeing, "unpackFree null" + freeing}));

  buffer.pop_back();
  const UnpackResult cut = unpackFrom(type.name, buffer);
  EXPECT_TRUE(cut.record[1].isNull);
  EXPECT_EQ(cut.record[1].length, 2U);
  EXPECT_EQ(cut.trace, Trace({"unpackAlloc size=33144 " + caller + " -> #1",
                              "unpackFree null" + freeing, "unpackFree #1" + freeing}));
}

TEST(Oracle, ChecksParametersInTwoTableReaders) {
  for (const Description& type : descriptions()) {
    EXPECT_EQ(type.tableReaderChecksParameters,
              type.name == "l2vpn_sync_glb_en" || type.name == "l2vpn_sync_stp");
  }
  EXPECT_EQ(decodeTable(descriptionOf("l2vpn_sync_stp"), nullptr, 9, false, 4, false, 0).trace,
            Trace({logLine("l2vpn_sync_stp_unpack_non_root", "Param invalid(null, 9, nonNull)")}));
}

}  // namespace
}  // namespace oracle
