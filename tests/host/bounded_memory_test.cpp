// If a process has bounded memory functions, the library uses them.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "bounded/memory.h"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "support/bytes.hpp"
#include "wire/fixed_image.hpp"
#include "wire/quick_reader.hpp"

extern "C" {
struct shape_of_256_bytes {
  uint8_t f0[252];
  uint32_t f1;
};
}

namespace {
constexpr mesh::wire::Style scalarsFirst{.inlineOrder = mesh::wire::InlineOrder::ScalarsFirst};
}

MESH_SCHEMA(shape_of_256_bytes, scalarsFirst, SLOT_ARRAY(252, f0), SLOT_U32(f1))

namespace {

using harness::Buffer;
using harness::Layout;
using harness::Unpacked;

// One call. A fill has no source.
struct Call {
  std::string function;
  const void* to;
  size_t room;
  const void* from;
  size_t count;
  int value;

  bool operator==(const Call&) const = default;
};

// For test output.
void PrintTo(const Call& call, std::ostream* out) {
  *out << call.function << "(" << call.to << ", " << call.room << ", ";
  if (call.function == "memset_s") {
    *out << call.value;
  } else {
    *out << call.from;
  }
  *out << ", " << call.count << ")";
}

std::vector<Call> calls;

Call fastCopy(const void* to, const void* from, size_t count) {
  return {"memcpy_sOptAsm", to, count, from, count, 0};
}
Call copy(const void* to, const void* from, size_t count) {
  return {"memcpy_s", to, count, from, count, 0};
}
Call clear(const void* to, size_t count) {
  return {"memset_s", to, count, nullptr, count, 0};
}

const Buffer key = Layout().u32(16).u16(12, 15, 0, 0, 0, 4).u32(12).u32(4, 3).text("abc");

TEST(BoundedMemory, CopiesAByteStringIntoItsBlock) {
  calls.clear();
  Unpacked<dbginfo_key_l2vpn> read(key);
  ASSERT_EQ(read.record.f3_len, 3U);
  EXPECT_EQ(calls, std::vector<Call>({fastCopy(read.record.f3, key.data() + 28, 3)}));
  EXPECT_EQ(std::string(read.record.f3, read.record.f3 + 3), "abc");
  read.release();
}

TEST(BoundedMemory, CopiesAByteStringIntoItsMessage) {
  uint8_t text[] = {'a', 'b', 'c'};
  const dbginfo_key_l2vpn record{0, 0, 0, 3, text};
  Buffer buffer = harness::marks(31);
  uint32_t length = 31;
  calls.clear();
  EXPECT_EQ(dbginfo_key_l2vpn__pack(&record, buffer.data(), &length), 0U);
  EXPECT_EQ(calls, std::vector<Call>({fastCopy(buffer.data() + 28, text, 3)}));
  EXPECT_EQ(harness::hex(buffer), harness::hex(key));
}

TEST(BoundedMemory, IsNotCalledForAnAbsentByteString) {
  calls.clear();
  const Unpacked<dbginfo_key_l2vpn> failed(harness::withU32(key, 24, 4));
  const Unpacked<dbginfo_key_l2vpn> refused(key, 1);
  const Unpacked<dbginfo_key_l2vpn> empty(harness::withU32(key, 24, 0));
  EXPECT_EQ(calls, std::vector<Call>());
}

// Sixteen kilobytes; arrays of a few bytes are copied in place.
TEST(BoundedMemory, CopiesAnItemsLargeArray) {
  const auto item = std::make_unique<l2vpn_cfg_query_dfx_item>();
  std::memset(item->f4, 0x44, sizeof item->f4);
  Buffer buffer(16622);
  uint32_t length = 16622;
  calls.clear();
  EXPECT_EQ(l2vpn_cfg_query_dfx_item__pack(item.get(), buffer.data(), &length), 0U);
  EXPECT_EQ(calls, std::vector<Call>({fastCopy(buffer.data() + 238, item->f4, 16384)}));

  const auto read = std::make_unique<l2vpn_cfg_query_dfx_item>();
  calls.clear();
  l2vpn_cfg_query_dfx_item__unpack(buffer.data(), length, read.get());
  EXPECT_EQ(calls, std::vector<Call>(
                       {clear(read.get(), 16572), copy(read->f4, buffer.data() + 238, 16384)}));
  EXPECT_EQ(std::memcmp(read.get(), item.get(), sizeof *item), 0);
}

TEST(BoundedMemory, ClearsTheRecordOfALargeFixedImage) {
  constexpr const mesh::wire::Schema& schema = mesh::wire::schemaOf<l2vpn_cfg_query_dfx_item>;
  const auto item = std::make_unique<l2vpn_cfg_query_dfx_item>();
  std::memset(item->f4, 0x44, sizeof item->f4);
  Buffer image(mesh::wire::fixedLength(schema));
  mesh::wire::writeFixedImage<schema>(image.data(), reinterpret_cast<const uint8_t*>(item.get()));
  const Buffer array(16384, 0x44);
  const auto contents = std::search(image.begin(), image.end(), array.begin(), array.end());
  const auto read = std::make_unique<l2vpn_cfg_query_dfx_item>();
  for (int round = 0; round < 2; ++round) {  // the first one binds the module
    calls.clear();
    l2vpn_cfg_query_dfx_item__unpack(image.data(), static_cast<uint32_t>(image.size()), read.get());
    EXPECT_EQ(calls,
              std::vector<Call>({clear(read.get(), 16572), copy(read->f4, &*contents, 16384)}));
  }
}

TEST(BoundedMemory, ClearsTheBlockOfItems) {
  // Two items without fields.
  const Buffer bytes =
      Layout().u32(12).u16(8, 0, 0, 4).u32(8).u32(4).u32(2, 12, 8).u16(4, 4).u32(4);
  calls.clear();
  Unpacked<l2vpn_cfg_query_dfx_rec> read(bytes);
  ASSERT_EQ(read.record.f1_count, 2U);
  EXPECT_EQ(calls, std::vector<Call>({clear(read.record.f1, 33144)}));
  EXPECT_EQ(harness::bytesOf(read.record.f1[1]), Buffer(16572, 0));
  read.release();
}

TEST(BoundedMemory, IsNotCalledUpTo256Bytes) {
  const Buffer from(257, 0x57);
  Buffer to(257);
  calls.clear();
  mesh::host::copyArray(to.data(), from.data(), 256);
  mesh::host::copyConstant<256>(to.data(), from.data());
  mesh::host::clearRecord(to.data(), 256);
  EXPECT_EQ(calls, std::vector<Call>());
  mesh::host::copyArray(to.data(), from.data(), 257);
  mesh::host::copyConstant<257>(to.data(), from.data());
  mesh::host::clearRecord(to.data(), 257);
  EXPECT_EQ(calls, std::vector<Call>({copy(to.data(), from.data(), 257),
                                      copy(to.data(), from.data(), 257), clear(to.data(), 257)}));
}

TEST(BoundedMemory, IsNotCalledForAnImageOf256Bytes) {
  constexpr const mesh::wire::Schema& schema = mesh::wire::schemaOf<shape_of_256_bytes>;
  const Buffer from(256, 0x56);
  Buffer image(mesh::wire::fixedLength(schema));
  Buffer to(256);
  calls.clear();
  mesh::wire::writeFixedImage<schema>(image.data(), from.data());
  mesh::wire::readFixedImage<schema>(to.data(), image.data());
  EXPECT_EQ(calls, std::vector<Call>());
  EXPECT_EQ(to, from);
}

}  // namespace

extern "C" {

int memcpy_s(void* to, size_t room, const void* from, size_t count) {
  calls.push_back({"memcpy_s", to, room, from, count, 0});
  std::memcpy(to, from, count);
  return 0;
}
int memset_s(void* to, size_t room, int value, size_t count) {
  calls.push_back({"memset_s", to, room, nullptr, count, value});
  std::memset(to, value, count);
  return 0;
}
int memcpy_sOptAsm(void* to, size_t room, const void* from, size_t count) {
  calls.push_back({"memcpy_sOptAsm", to, room, from, count, 0});
  std::memcpy(to, from, count);
  return 0;
}

}  // extern "C"
