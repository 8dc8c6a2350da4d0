// Single sends: failures before any allocation, and the one image that is too long for the stack.

#include <gtest/gtest.h>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "support/bytes.hpp"
#include "support/comparison.hpp"
#include "support/operations.hpp"

namespace {

using harness::Buffer;
using harness::failure;
using harness::hex;
using harness::Layout;
using harness::recorder;
using harness::Trace;

uint8_t abc[] = {'a', 'b', 'c'};

TEST(SendSingle, FailsOnANullRecordBeforeAllocating) {
  for (const harness::Operations& operations : harness::compactMessages()) {
    harness::resetRecorder();
    EXPECT_EQ(operations.sendSingle(1, nullptr, harness::unused, 0), failure) << operations.name;
    EXPECT_EQ(operations.sendSingle(1, nullptr, harness::unused, 7), failure) << operations.name;
    EXPECT_EQ(operations.sendMsg(1, nullptr, 1), failure) << operations.name;
    EXPECT_EQ(operations.sendToMsg(1, nullptr, 1, 7), failure) << operations.name;
    EXPECT_EQ(harness::takeTrace(), Trace()) << operations.name;
  }
}

TEST(SendSingle, FailsOnAnUnencodableRecordBeforeAllocating) {
  harness::resetRecorder();
  dbginfo_key_l2vpn key{0, 0, 0, 0xFFFFFFFF - 27, abc};
  EXPECT_EQ(dbginfo_key_l2vpn__sendsingle(1, &key, 0, 0), failure) << "2^32 bytes";
  key.f3_len = 0xFFFFFFFF;
  EXPECT_EQ(dbginfo_key_l2vpn__sendsingle(1, &key, 0, 0), failure) << "2^32 and 27";
  EXPECT_EQ(dbginfo_key_l2vpn__sendmsg(1, &key, 1), failure);
  EXPECT_EQ(dbginfo_key_l2vpn__sendtomsg(1, &key, 1, 7), failure);
  dbginfo_cmd_key_l2vpn command{};
  command.f4.f3 = abc;
  command.f4.f3_len = 0xFFFFFFF8 - 78;
  EXPECT_EQ(dbginfo_cmd_key_l2vpn__sendsingle(1, &command, 0, 0), failure);
  l2vpn_cfg_query_dfx_key query{};
  query.f0.f2 = abc;
  query.f0.f2_len = 0xFFFFFFFF - 196;
  EXPECT_EQ(l2vpn_cfg_query_dfx_key__sendsingle(1, &query, 0, 0), failure);
  l2vpn_cfg_query_dfx_rec result{};
  result.f1_count = 1;
  EXPECT_EQ(l2vpn_cfg_query_dfx_rec__sendsingle(1, &result, 0, 0), failure) << "no items";
  EXPECT_EQ(harness::takeTrace(), Trace());
}

TEST(SendSingle, AsksForAnySizeThatCanBeEncoded) {
  const auto expectAskedFor = [](const char* name, const void* record, const char* size) {
    harness::resetRecorder();
    recorder().everyAllocationFails = true;
    EXPECT_EQ(harness::operationsOf(name).sendSingle(1, record, harness::unused, 0), failure);
    EXPECT_EQ(harness::takeTrace(),
              Trace({std::string("memAlloc size=") + size + " owner=25088 caller=\"" + name +
                     "__sendsingle\" -> null"}));
  };
  dbginfo_key_l2vpn key{0, 0, 0, 0xFFFFFFFF - 28, abc};
  expectAskedFor("dbginfo_key_l2vpn", &key, "4294967295");
  key.f3_len = 0x80000000 - 28;
  expectAskedFor("dbginfo_key_l2vpn", &key, "2147483648");
  dbginfo_cmd_key_l2vpn command{};
  command.f4.f3 = abc;
  command.f4.f3_len = 0xFFFFFFF7 - 78;
  expectAskedFor("dbginfo_cmd_key_l2vpn", &command, "4294967287");
  l2vpn_cfg_query_dfx_key query{};
  query.f0.f2 = abc;
  query.f0.f2_len = 0xFFFFFFFE - 196;
  expectAskedFor("l2vpn_cfg_query_dfx_key", &query, "4294967294");
}

TEST(SendSingle, MayExceedTheBatchRegion) {
  for (const uint32_t size : {0x10000U, 0x10001U, 0x30000U}) {
    Buffer contents(size - 28, 'x');
    const dbginfo_key_l2vpn key{0, 0, 0, size - 28, contents.data()};
    harness::resetRecorder();
    EXPECT_EQ(dbginfo_key_l2vpn__sendsingle(1, &key, 0, 0), 0U);
    ASSERT_EQ(recorder().sent.size(), 1U);
    EXPECT_EQ(recorder().sent[0].bytes.size(), size);
    EXPECT_EQ(recorder().sent[0].bytes.back(), 'x');
  }
}

// Counted but unwritten bytes are sent with the content of the host's block.
TEST(SendSingle, SendsTheBytesOfAnEmptyByteString) {
  const dbginfo_key_l2vpn key{0x1111, 0, 0, 0, abc};
  harness::resetRecorder();
  EXPECT_EQ(dbginfo_key_l2vpn__sendsingle(1, &key, 0, 0), 0U);
  EXPECT_EQ(hex(recorder().sent.at(0).bytes),
            hex(Layout().u32(16).u16(12, 6, 4, 0, 0, 0).u32(12).u16(0x1111).fill(8, 0xC7)));
}

TEST(SendSingle, AllocatesTheImageOfAnItem) {
  static const l2vpn_cfg_query_dfx_item item{};
  const std::string operation = " owner=25088 caller=\"l2vpn_cfg_query_dfx_item__sendsingle\"";
  const Trace sent{"memAlloc size=16632" + operation + " -> #1",
                   "MESH_SendMsg destination=1 count=1", "memFree #1" + operation};
  Trace sentWithExtra = sent;
  sentWithExtra[1] = "MESH_SendToMsg destination=1 count=1 extra=7";
  const Trace refused{"memAlloc size=16632" + operation + " -> null"};

  harness::resetRecorder();
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__sendsingle(1, &item, 0, 0), 0U);
  EXPECT_EQ(harness::takeTrace(), sent);
  harness::resetRecorder();
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__sendmsg(1, &item, 1), 0U);
  EXPECT_EQ(harness::takeTrace(), sent) << "the same name in __sendmsg";
  harness::resetRecorder();
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__sendtomsg(1, &item, 1, 7), 0U);
  EXPECT_EQ(harness::takeTrace(), sentWithExtra) << "the same name in __sendtomsg";

  recorder().everyAllocationFails = true;
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__sendsingle(1, &item, 0, 0), failure);
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__sendmsg(1, &item, 1), failure);
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__sendtomsg(1, &item, 1, 7), failure);
  EXPECT_EQ(harness::takeTrace(), Trace({refused[0], refused[0], refused[0]}));
}

}  // namespace
