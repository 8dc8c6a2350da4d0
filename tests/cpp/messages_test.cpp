// mesh_l2vpn/messages.hpp does for every message what the exported operations do.
#include "mesh_l2vpn/messages.hpp"

#include <gtest/gtest.h>

#include <array>
#include <span>

#include "support/bytes.hpp"

std::error_code resultOfAnotherObject(uint32_t value);

namespace {

using harness::Buffer;
using harness::hex;
using harness::Operations;
using harness::recorder;
using mesh_l2vpn::message;
using mesh_l2vpn::pack;
using mesh_l2vpn::send;
using mesh_l2vpn::span;
using mesh_l2vpn::unpack;
using mesh_l2vpn::unpacked;

constexpr uint32_t peer = 9;

TEST(Message, IsVisitedInRegistrationOrder) {
  std::vector<std::string_view> visited;
  mesh_l2vpn::for_each_message([&visited](auto of) { visited.push_back(of.name); });
  std::vector<std::string_view> expected;
  for (const Operations& operations : harness::allOperations()) {
    expected.push_back(operations.name);
  }
  EXPECT_EQ(visited, expected);
}

#define MESSAGE_IS_THE_RECORDS(X, identifier)                                                      \
  static_assert(message<X>::name == #X && message<X>::id == (identifier));                         \
  static_assert(message<X>::unpack == X##__unpack && message<X>::pack == X##__pack);               \
  static_assert(message<X>::free_unpacked == X##_free__unpacked);                                  \
  static_assert(message<X>::send_single == X##__sendsingle);                                       \
  static_assert(message<X>::send_batch == X##__sendbatch && message<X>::send_msg == X##__sendmsg); \
  static_assert(message<X>::send_to_msg == X##__sendtomsg && mesh_l2vpn::is_record<X>);
L2VPN_MESSAGES(MESSAGE_IS_THE_RECORDS)
static_assert(!mesh_l2vpn::is_record<int>);

Buffer keyMessage() {
  uint8_t text[] = {'a', 'b', 'c'};
  return pack(dbginfo_key_l2vpn{1, 2, 3, sizeof text, text});
}

TEST(Unpacked, ReleasesItsRecordOnce) {
  harness::resetRecorder();
  {
    const unpacked<dbginfo_key_l2vpn> key = unpack<dbginfo_key_l2vpn>(keyMessage());
    ASSERT_NE(key->f3, nullptr);
    EXPECT_EQ(recorder().blocks.size(), 1U);
  }
  EXPECT_TRUE(recorder().blocks.empty());
  EXPECT_EQ(recorder().blocksGiven, 1);
}

TEST(Unpacked, IsZeroAfterAMove) {
  harness::resetRecorder();
  {
    unpacked<dbginfo_key_l2vpn> from = unpack<dbginfo_key_l2vpn>(keyMessage());
    const unpacked<dbginfo_key_l2vpn> to = std::move(from);
    EXPECT_EQ(to->f0, 1);
    EXPECT_EQ(from->f0, 0);  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(from->f3, nullptr);
    EXPECT_EQ(from->f3_len, 0U);
    from = unpack<dbginfo_key_l2vpn>(keyMessage());
    EXPECT_EQ(from->f0, 1) << "it can be used again";
    EXPECT_EQ(recorder().blocks.size(), 2U);
  }
  EXPECT_TRUE(recorder().blocks.empty());
  EXPECT_EQ(recorder().blocksGiven, 2);
}

TEST(Unpacked, ReleasesWhatAnAssignmentReplaces) {
  harness::resetRecorder();
  unpacked<dbginfo_key_l2vpn> key = unpack<dbginfo_key_l2vpn>(keyMessage());
  key = unpack<dbginfo_key_l2vpn>(keyMessage());
  EXPECT_EQ(recorder().blocks.size(), 1U);
  unpacked<dbginfo_key_l2vpn>& itself = key;
  key = std::move(itself);
  EXPECT_EQ(key->f3_len, 3U) << "moved to itself";
  EXPECT_EQ(recorder().blocks.size(), 1U);
  key = {};
  EXPECT_TRUE(recorder().blocks.empty());
}

TEST(Unpacked, HandsOutItsRecord) {
  harness::resetRecorder();
  unpacked<dbginfo_key_l2vpn> key = unpack<dbginfo_key_l2vpn>(keyMessage());
  dbginfo_key_l2vpn record = key.release();
  key = {};
  EXPECT_EQ(recorder().blocks.size(), 1U);
  message<dbginfo_key_l2vpn>::free_unpacked(&record);
  EXPECT_TRUE(recorder().blocks.empty());
}

static_assert(!std::is_copy_constructible_v<unpacked<l2vpn_sync_stp>>);
static_assert(!std::is_copy_assignable_v<unpacked<l2vpn_sync_stp>>);
static_assert(std::is_nothrow_move_constructible_v<unpacked<l2vpn_sync_stp>>);
static_assert(std::is_nothrow_move_assignable_v<unpacked<l2vpn_sync_stp>>);

TEST(Unpack, LeavesZerosOfRejectedBytes) {
  const l2vpn_sync_stp zeros{};
  const Buffer bad(16, 0xFF);
  EXPECT_EQ(std::memcmp(&*unpack<l2vpn_sync_stp>(bad), &zeros, sizeof zeros), 0);
  EXPECT_EQ(std::memcmp(&*unpack<l2vpn_sync_stp>({}), &zeros, sizeof zeros), 0);
}

TEST(Unpack, RefusesBytesThat32BitsDoNotCount) {
  const Buffer good = pack(l2vpn_sync_stp{1, 2, 3, 4});
  EXPECT_EQ(unpack<l2vpn_sync_stp>({good.data(), good.size()})->f3, 4U);
  EXPECT_EQ(unpack<l2vpn_sync_stp>({good.data(), (size_t{1} << 32) + good.size()})->f3, 0U);
}

TEST(Unpack, LeavesNullWhereMemoryIsRefused) {
  const Buffer bytes = keyMessage();
  harness::resetRecorder();
  recorder().everyAllocationFails = true;
  EXPECT_EQ(unpack<dbginfo_key_l2vpn>(bytes)->f3, nullptr);
  harness::resetRecorder();
}

TEST(Pack, ChangesNothingWhereTheRoomIsTooSmall) {
  const l2vpn_sync_stp record{1, 2, 3, 4};
  Buffer room(pack(record).size() - 1, 0xEE);
  span<uint8_t> packed(room);
  EXPECT_EQ(pack(record, packed), mesh_l2vpn::errc::failed);
  EXPECT_EQ(packed.data(), room.data());
  EXPECT_EQ(packed.size(), room.size());
  EXPECT_EQ(room, Buffer(room.size(), 0xEE));
}

TEST(Pack, TakesRoomThat32BitsDoNotCount) {
  const l2vpn_sync_stp record{1, 2, 3, 4};
  Buffer room(256);
  span<uint8_t> packed(room.data(), (size_t{1} << 32) + 1);
  EXPECT_FALSE(pack(record, packed));
  EXPECT_EQ(hex(Buffer(packed.begin(), packed.end())), hex(pack(record)));
}

TEST(Pack, IsEmptyForARecordThatCannotBeEncoded) {
  const l2vpn_cfg_query_dfx_rec record{{}, 1, nullptr};
  EXPECT_EQ(pack(record), Buffer());
}

TEST(Pack, AsksForTheSizeOfALargeMessage) {
  Buffer text(100'000, 'x');
  const dbginfo_key_l2vpn key{1, 2, 3, static_cast<uint32_t>(text.size()), text.data()};
  const Buffer packed = pack(key);
  Buffer room(packed.size());
  auto length = static_cast<uint32_t>(room.size());
  ASSERT_EQ(dbginfo_key_l2vpn__pack(&key, room.data(), &length), 0U);
  EXPECT_EQ(packed, room);
  EXPECT_EQ(unpack<dbginfo_key_l2vpn>(packed)->f3_len, text.size());
}

// __pack leaves 8 bytes unwritten behind a byte string with a pointer and no bytes.
TEST(Pack, LeavesNoOldBytesInTheVector) {
  uint8_t text[] = {'x'};
  const dbginfo_key_l2vpn key{1, 2, 3, 0, text};
  Buffer room(256, 0);
  auto length = static_cast<uint32_t>(room.size());
  ASSERT_EQ(dbginfo_key_l2vpn__pack(&key, room.data(), &length), 0U);
  room.resize(length);
  EXPECT_EQ(hex(pack(key)), hex(room));
}

TEST(Send, ReturnsTheMiddlewaresResult) {
  harness::resetRecorder();
  recorder().middlewareResult = 5;
  const std::vector<l2vpn_sync_stp> records(3);
  EXPECT_EQ(send(peer, records[0]), mesh_l2vpn::result(5));
  EXPECT_EQ(send(peer, records), mesh_l2vpn::result(5));
  recorder().middlewareResult = 0xFFFFFFFE;
  EXPECT_EQ(send(peer, records), mesh_l2vpn::result(0xFFFFFFFE));
  harness::resetRecorder();
}

TEST(Send, FailsWhereMemoryIsRefused) {
  harness::resetRecorder();
  recorder().everyAllocationFails = true;
  EXPECT_EQ(send(peer, std::vector<l2vpn_sync_stp>(3)), mesh_l2vpn::errc::failed);
  harness::resetRecorder();
}

TEST(Send, RefusesNoneAndMoreThan32BitsCount) {
  harness::resetRecorder();
  const l2vpn_sync_stp record{};
  EXPECT_EQ(send(peer, std::vector<l2vpn_sync_stp>()), mesh_l2vpn::errc::failed);
  EXPECT_EQ(send(peer, span(&record, (size_t{1} << 32) + 1)), mesh_l2vpn::errc::failed);
  EXPECT_TRUE(recorder().sent.empty());
}

TEST(Send, TakesEveryKindOfRow) {
  harness::resetRecorder();
  const std::array<l2vpn_sync_stp, 2> array{};
  const l2vpn_sync_stp plain[3] = {};
  std::vector<l2vpn_sync_stp> vector(4);
  EXPECT_FALSE(send(peer, array));
  EXPECT_FALSE(send(peer, plain));
  EXPECT_FALSE(send(peer, vector));
  EXPECT_FALSE(send(peer, std::span(vector).first(1)));
  EXPECT_FALSE(send(peer, span<const l2vpn_sync_stp>(vector)));
  EXPECT_EQ(recorder().sent.size(), 2U + 3U + 4U + 1U + 4U);
}

TEST(Category, NamesEveryResult) {
  EXPECT_STREQ(mesh_l2vpn::category().name(), "mesh_l2vpn");
  EXPECT_EQ(mesh_l2vpn::result(0).message(), "success");
  EXPECT_EQ(mesh_l2vpn::result(2).message(), "result 2 of the middleware");
  EXPECT_EQ(mesh_l2vpn::result(0xFFFFFFFE).message(), "result 4294967294 of the middleware");
  EXPECT_EQ(mesh_l2vpn::result(0xFFFFFFFF), mesh_l2vpn::errc::failed);
  EXPECT_EQ(mesh_l2vpn::result(0xFFFFFFFF).message(),
            "the record cannot be encoded, or memory or room was refused");
  EXPECT_NE(mesh_l2vpn::result(2), std::error_code(2, std::generic_category()));
}

TEST(Category, IsOneInAllSharedObjects) {
  EXPECT_EQ(resultOfAnotherObject(2), mesh_l2vpn::result(2));
  EXPECT_EQ(resultOfAnotherObject(0xFFFFFFFF), mesh_l2vpn::errc::failed);
}

struct Derived : l2vpn_sync_stp {
  uint32_t more = 0;
};
static_assert(std::is_convertible_v<std::vector<uint8_t>&, span<uint8_t>>);
static_assert(std::is_convertible_v<const std::vector<uint8_t>&, span<const uint8_t>>);
static_assert(!std::is_convertible_v<const std::vector<uint8_t>&, span<uint8_t>>);
static_assert(!std::is_convertible_v<std::vector<char>&, span<const uint8_t>>);
static_assert(!std::is_convertible_v<std::vector<Derived>&, span<const l2vpn_sync_stp>>,
              "the second one would begin elsewhere");
static_assert(std::is_convertible_v<span<uint8_t>, span<const uint8_t>>);

}  // namespace
