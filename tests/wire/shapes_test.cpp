// Record shapes that no message has yet: the engine takes them all.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "host/serial_env.hpp"
#include "wire/compact_reader.hpp"
#include "wire/compact_size.hpp"
#include "wire/compact_writer.hpp"
#include "wire/fixed_reader.hpp"
#include "wire/fixed_writer.hpp"
#include "wire/slots.hpp"

extern "C" {
struct shape_wide_at_the_end {
  uint64_t f0;
  uint32_t f1;
  uint32_t f2;
};
struct shape_one_slot {
  uint16_t f0;
};
struct shape_three_large_arrays {
  uint8_t f0[200];
  uint32_t f1;
  uint8_t f2[200];
  uint8_t f3[200];
  uint32_t f4;
};
struct shape_many_scalars {
  uint64_t f0, f1, f2, f3, f4, f5, f6, f7, f8, f9, f10, f11, f12, f13, f14, f15, f16, f17;
  uint64_t f18, f19, f20, f21, f22, f23, f24, f25, f26, f27, f28, f29, f30, f31, f32, f33;
};
}

namespace {
constexpr mesh::wire::Style slotOrder{.inlineOrder = mesh::wire::InlineOrder::Slots};
constexpr mesh::wire::Style scalarsFirst{.inlineOrder = mesh::wire::InlineOrder::ScalarsFirst};
mesh::host::Module testModule;
}  // namespace

MESH_SCHEMA(shape_wide_at_the_end, slotOrder, SLOT_U64(f0), SLOT_U32(f1), SLOT_U32(f2))
MESH_SCHEMA(shape_one_slot, slotOrder, SLOT_U16(f0))
MESH_SCHEMA(shape_three_large_arrays, scalarsFirst, SLOT_ARRAY(200, f0), SLOT_U32(f1),
            SLOT_ARRAY(200, f2), SLOT_ARRAY(200, f3), SLOT_U32(f4))
MESH_SCHEMA(shape_many_scalars, slotOrder, SLOT_U64(f0), SLOT_U64(f1), SLOT_U64(f2), SLOT_U64(f3),
            SLOT_U64(f4), SLOT_U64(f5), SLOT_U64(f6), SLOT_U64(f7), SLOT_U64(f8), SLOT_U64(f9),
            SLOT_U64(f10), SLOT_U64(f11), SLOT_U64(f12), SLOT_U64(f13), SLOT_U64(f14),
            SLOT_U64(f15), SLOT_U64(f16), SLOT_U64(f17), SLOT_U64(f18), SLOT_U64(f19),
            SLOT_U64(f20), SLOT_U64(f21), SLOT_U64(f22), SLOT_U64(f23), SLOT_U64(f24),
            SLOT_U64(f25), SLOT_U64(f26), SLOT_U64(f27), SLOT_U64(f28), SLOT_U64(f29),
            SLOT_U64(f30), SLOT_U64(f31), SLOT_U64(f32), SLOT_U64(f33))

namespace {

using namespace mesh::wire;

template <typename Record>
class Shapes : public testing::Test {
 protected:
  static constexpr const mesh::wire::Schema& record = schemaOf<Record>;

  // Every byte of the fields set, or only those of every second field.
  static std::vector<uint8_t> filled(bool whole) {
    std::vector<uint8_t> bytes(record.size, 0);
    for (size_t index = 0; index < record.slots.size(); ++index) {
      if (whole || index % 2 == 0) {
        std::memset(bytes.data() + record.slots[index].recordOffset, static_cast<int>(1 + index),
                    record.slots[index].size);
      }
    }
    return bytes;
  }
};

using Types = testing::Types<shape_wide_at_the_end, shape_one_slot, shape_three_large_arrays,
                             shape_many_scalars>;
TYPED_TEST_SUITE(Shapes, Types);

TYPED_TEST(Shapes, ComeBackFromTheCompactArrangement) {
  for (const bool whole : {true, false}) {
    const std::vector<uint8_t> from = TestFixture::filled(whole);
    // A heap block of the exact size, for the address sanitizer to watch.
    std::vector<uint8_t> message(compactSize<schemaOf<TypeParam>>(from.data()));
    ASSERT_EQ(writeCompact<schemaOf<TypeParam>>(message.data(), from.data()), message.size());
    SoundParts<schemaOf<TypeParam>> parts;
    const HostBuffer buffer{message.data(), static_cast<uint32_t>(message.size())};
    ASSERT_TRUE(verifySound<schemaOf<TypeParam>>(buffer, parts));
    std::vector<uint8_t> into(this->record.size, 0xEE);
    constexpr auto decoder = Decoder::Root;
    const Decoded decoded =
        fillRecord<testModule, schemaOf<TypeParam>, decoder>(message.data(), parts, into.data());
    EXPECT_EQ(decoded, Decoded::Yes);
    EXPECT_EQ(into, from);
  }
}

TYPED_TEST(Shapes, ComeBackFromTheFixedArrangement) {
  const std::vector<uint8_t> from = TestFixture::filled(true);
  std::vector<uint8_t> image(fixedLength(this->record), 0xEE);
  writeFixedImage<schemaOf<TypeParam>>(image.data(), from.data());
  const HostBuffer buffer{image.data(), static_cast<uint32_t>(image.size())};
  ASSERT_TRUE(hasFixedFrame<schemaOf<TypeParam>>(buffer));
  std::vector<uint8_t> into(this->record.size, 0xEE);
  readFixedImage<schemaOf<TypeParam>>(into.data(), image.data());
  EXPECT_EQ(into, from);
}

}  // namespace
