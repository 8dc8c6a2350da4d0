// Many records in one call give what each of them gives alone.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "mesh_l2vpn/inspect.h"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/exported.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace {

using inspect::Bytes;

constexpr size_t count = 9;

// Records of one message, side by side, with what they point to.
class RecordRun {
 public:
  explicit RecordRun(const exported::Operations& operations) {
    const oracle::Description& type = oracle::descriptionOf(std::string(operations.name));
    std::mt19937_64 random(operations.id());
    for (size_t index = 0; index < count; ++index) {
      const auto density = static_cast<oracle::Density>(index % 3);
      images_.emplace_back(type, oracle::asReceived(oracle::randomValue(type, random, density)));
      const auto* const from = static_cast<const uint8_t*>(images_.back().data());
      bytes_.insert(bytes_.end(), from, from + operations.schema().size);
    }
  }
  [[nodiscard]] const uint8_t* data() const { return bytes_.data(); }

 private:
  std::vector<oracle::RecordImage> images_;
  Bytes bytes_;
};

Bytes packedAlone(const mesh_l2vpn_message* message, const uint8_t* record, mesh_l2vpn_form form) {
  uint8_t* data = nullptr;
  size_t size = 0;
  EXPECT_EQ(mesh_l2vpn_pack(message, record, form, &data, &size), 0) << mesh_l2vpn_last_error();
  Bytes bytes(data, data + size);
  mesh_l2vpn_free(data);
  return bytes;
}

// The messages of stp records with f0 = 1, 2, ...
struct Stps {
  const mesh_l2vpn_message* message = mesh_l2vpn_message_by_name("l2vpn_sync_stp");
  std::vector<uint32_t> records = std::vector<uint32_t>(4 * count);
  Bytes bytes = Bytes(40 * count);
  std::vector<size_t> ends = std::vector<size_t>(count);

  explicit Stps(mesh_l2vpn_form form) {
    for (size_t index = 0; index < count; ++index) {
      records[4 * index] = static_cast<uint32_t>(index + 1);
    }
    EXPECT_EQ(mesh_l2vpn_pack_many(message, records.data(), count, form, bytes.data(), bytes.size(),
                                   ends.data(), nullptr),
              0);
  }
};

TEST(Many, AreWhatEachIsAlone) {
  for (const exported::Operations& operations : exported::allOperations()) {
    SCOPED_TRACE(operations.name);
    const mesh_l2vpn_message* const message = mesh_l2vpn_message_by_id(operations.id());
    const size_t size = operations.schema().size;
    const RecordRun records(operations);
    for (const mesh_l2vpn_form form : {MESH_L2VPN_AS_SENT, MESH_L2VPN_COMPACT}) {
      Bytes expected;
      std::vector<size_t> expectedEnds;
      for (size_t index = 0; index < count; ++index) {
        const Bytes alone = packedAlone(message, records.data() + index * size, form);
        expected.insert(expected.end(), alone.begin(), alone.end());
        expectedEnds.push_back(expected.size());
      }
      std::vector<size_t> ends(count);
      ASSERT_EQ(mesh_l2vpn_pack_many(message, records.data(), count, form, nullptr, 0, ends.data(),
                                     nullptr),
                0);
      EXPECT_EQ(ends, expectedEnds);
      Bytes bytes(ends.back(), 0xEE);
      size_t done = 0;
      ASSERT_EQ(mesh_l2vpn_pack_many(message, records.data(), count, form, bytes.data(),
                                     bytes.size(), ends.data(), &done),
                0);
      EXPECT_EQ(done, count);
      EXPECT_EQ(bytes, expected);

      Bytes unpacked(count * size + 8, 0xEE);
      ASSERT_EQ(
          mesh_l2vpn_unpack_many(message, bytes.data(), ends.data(), count, unpacked.data(), &done),
          0);
      EXPECT_EQ(done, count);
      EXPECT_EQ(Bytes(unpacked.end() - 8, unpacked.end()), Bytes(8, 0xEE));
      for (size_t index = 0; index < count; ++index) {
        uint8_t* const record = unpacked.data() + index * size;
        if (!mesh::wire::ownsMemory(operations.schema())) {
          const size_t begin = index == 0 ? 0 : ends[index - 1];
          Bytes alone(size, 0xEE);
          ASSERT_EQ(
              mesh_l2vpn_unpack(message, bytes.data() + begin, ends[index] - begin, alone.data()),
              0);
          EXPECT_EQ(Bytes(record, record + size), alone) << "padding included";
        }
        EXPECT_EQ(packedAlone(message, record, form),
                  packedAlone(message, records.data() + index * size, form));
        mesh_l2vpn_release(message, record);
      }
    }
  }
}

TEST(Many, StopAtTheFirstThatIsRejected) {
  for (const mesh_l2vpn_form form : {MESH_L2VPN_FIXED, MESH_L2VPN_COMPACT}) {
    Stps stps(form);
    stps.bytes[stps.ends[3]] = 0xFF;  // the root word of the fifth
    std::vector<uint32_t> records(4 * count, 7);
    size_t done = 0;
    EXPECT_EQ(mesh_l2vpn_unpack_many(stps.message, stps.bytes.data(), stps.ends.data(), count,
                                     records.data(), &done),
              EBADMSG);
    EXPECT_EQ(std::string(mesh_l2vpn_last_error()).substr(0, 18), "message 4: byte 0:");
    EXPECT_EQ(done, 4u);
    EXPECT_EQ(records[4 * 3], 4u);
    EXPECT_EQ(records[4 * 4], 0u);
    EXPECT_EQ(records[4 * 5], 7u);
  }
}

// Another vtable with the same values is no image, and receivers take it.
TEST(Many, TakeWhatReceiversTake) {
  Stps stps(MESH_L2VPN_FIXED);
  ASSERT_EQ(stps.ends[0], 40u);
  stps.bytes[stps.ends[1] - 1] = 1;  // padding of the second
  std::vector<uint32_t> records(4 * count, 7);
  EXPECT_EQ(mesh_l2vpn_unpack_many(stps.message, stps.bytes.data(), stps.ends.data(), count,
                                   records.data(), nullptr),
            0);
  EXPECT_EQ(records, stps.records);
}

TEST(Many, NeedEndsThatGoForward) {
  Stps stps(MESH_L2VPN_FIXED);
  stps.ends[2] = 79;
  std::vector<uint32_t> records(4 * count);
  size_t done = 0;
  EXPECT_EQ(mesh_l2vpn_unpack_many(stps.message, stps.bytes.data(), stps.ends.data(), count,
                                   records.data(), &done),
            EINVAL);
  EXPECT_EQ(done, 2u);
  EXPECT_STREQ(mesh_l2vpn_last_error(), "message 2: its end lies before its beginning");
}

TEST(Many, NeedRoom) {
  const Stps stps(MESH_L2VPN_FIXED);
  Bytes bytes(40 * 3 + 40, 0xEE);
  std::vector<size_t> ends(count);
  size_t done = 0;
  EXPECT_EQ(mesh_l2vpn_pack_many(stps.message, stps.records.data(), count, MESH_L2VPN_FIXED,
                                 bytes.data(), 40 * 3 + 39, ends.data(), &done),
            EINVAL);
  EXPECT_EQ(done, 3u);
  EXPECT_STREQ(mesh_l2vpn_last_error(), "record 3: the buffer has no room for its message");
  EXPECT_EQ(Bytes(bytes.begin() + 120, bytes.end()), Bytes(40, 0xEE));
}

TEST(Many, RefuseWrongUse) {
  const Stps stps(MESH_L2VPN_FIXED);
  std::vector<size_t> ends(1);
  uint32_t record[4] = {};
  EXPECT_EQ(
      mesh_l2vpn_pack_many(nullptr, record, 1, MESH_L2VPN_FIXED, nullptr, 0, ends.data(), nullptr),
      EINVAL);
  EXPECT_EQ(
      mesh_l2vpn_pack_many(stps.message, record, 1, MESH_L2VPN_FIXED, nullptr, 0, nullptr, nullptr),
      EINVAL);
  EXPECT_EQ(mesh_l2vpn_pack_many(stps.message, record, 1, static_cast<mesh_l2vpn_form>(3), nullptr,
                                 0, ends.data(), nullptr),
            EINVAL);
  EXPECT_EQ(mesh_l2vpn_pack_many(mesh_l2vpn_message_by_name("dbginfo_key_l2vpn"), record, 1,
                                 MESH_L2VPN_FIXED, nullptr, 0, ends.data(), nullptr),
            EINVAL);
  EXPECT_EQ(mesh_l2vpn_unpack_many(stps.message, nullptr, ends.data(), 1, record, nullptr), EINVAL);
  EXPECT_EQ(mesh_l2vpn_pack_many(stps.message, record, 0, MESH_L2VPN_FIXED, nullptr, 0, ends.data(),
                                 nullptr),
            0);
}

// Each message is within the limit, all of them are not.
TEST(Many, CountTogetherForTheLimit) {
  const mesh_l2vpn_message* const list = mesh_l2vpn_message_by_name("l2vpn_cfg_query_dfx_rec");
  const Bytes bytes = inspect::itemsOfOneVtable(40, 4);
  Bytes twice = bytes;
  twice.insert(twice.end(), bytes.begin(), bytes.end());
  const std::vector<size_t> ends = {bytes.size(), twice.size()};
  std::vector<uint64_t> records(2 * mesh_l2vpn_message_record_size(list) / 8);
  mesh_l2vpn_set_limit(1'000'000);
  size_t done = 0;
  EXPECT_EQ(mesh_l2vpn_unpack_many(list, twice.data(), ends.data(), 2, records.data(), &done),
            ENOMEM);
  EXPECT_EQ(done, 1u);
  mesh_l2vpn_release(list, records.data());
  mesh_l2vpn_set_limit(0);
  EXPECT_EQ(mesh_l2vpn_unpack_many(list, twice.data(), ends.data(), 2, records.data(), &done), 0);
  mesh_l2vpn_release(list, records.data());
  mesh_l2vpn_release(list, records.data() + mesh_l2vpn_message_record_size(list) / 8);
}

}  // namespace
