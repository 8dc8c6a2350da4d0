// Record shapes that no message has yet: the engine takes them all.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "host/binding.hpp"
#include "wire/compact_size.hpp"
#include "wire/compact_writer.hpp"
#include "wire/fixed_image.hpp"
#include "wire/quick_reader.hpp"
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
// What follows an absent f1 is one byte shorter than f1.
struct shape_short_tail {
  uint8_t f0[3];
  uint64_t f1;
};
// Entries that are checked eight at a time.
struct shape_eleven_scalars {
  uint32_t f0, f1, f2, f3, f4, f5, f6, f7, f8, f9, f10;
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
MESH_SCHEMA(shape_short_tail, slotOrder, SLOT_ARRAY(3, f0), SLOT_U64(f1))
MESH_SCHEMA(shape_eleven_scalars, slotOrder, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3),
            SLOT_U32(f4), SLOT_U32(f5), SLOT_U32(f6), SLOT_U32(f7), SLOT_U32(f8), SLOT_U32(f9),
            SLOT_U32(f10))
MESH_SCHEMA(shape_many_scalars, slotOrder, SLOT_U64(f0), SLOT_U64(f1), SLOT_U64(f2), SLOT_U64(f3),
            SLOT_U64(f4), SLOT_U64(f5), SLOT_U64(f6), SLOT_U64(f7), SLOT_U64(f8), SLOT_U64(f9),
            SLOT_U64(f10), SLOT_U64(f11), SLOT_U64(f12), SLOT_U64(f13), SLOT_U64(f14),
            SLOT_U64(f15), SLOT_U64(f16), SLOT_U64(f17), SLOT_U64(f18), SLOT_U64(f19),
            SLOT_U64(f20), SLOT_U64(f21), SLOT_U64(f22), SLOT_U64(f23), SLOT_U64(f24),
            SLOT_U64(f25), SLOT_U64(f26), SLOT_U64(f27), SLOT_U64(f28), SLOT_U64(f29),
            SLOT_U64(f30), SLOT_U64(f31), SLOT_U64(f32), SLOT_U64(f33))

namespace {

using namespace mesh::wire;

// The engine's templates as functions of their own, as the operations are.
template <const Schema& schema>
[[gnu::noinline]] size_t packed(uint8_t* message, const uint8_t* from) {
  return writeCompact<schema>(message, from);
}
template <const Schema& schema>
[[gnu::noinline]] bool readQuickly(HostBuffer buffer, uint8_t* into) {
  return readSoundTable<schema>(buffer, buffer.read<uint32_t>(0), into);
}
template <const Schema& schema>
[[gnu::noinline]] void imaged(uint8_t* image, const uint8_t* from) {
  writeFixedImage<schema>(image, from);
}
template <const Schema& schema>
[[gnu::noinline]] bool readImage(HostBuffer buffer, uint8_t* into) {
  const bool isImage = hasFixedTemplate<schema>(buffer);
  readFixedImage<schema>(into, buffer.data);
  return isImage;
}

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
                             shape_short_tail, shape_eleven_scalars, shape_many_scalars>;
TYPED_TEST_SUITE(Shapes, Types);

TYPED_TEST(Shapes, ComeBackFromTheCompactArrangement) {
  for (const bool whole : {true, false}) {
    const std::vector<uint8_t> from = TestFixture::filled(whole);
    const size_t size = compactSize<schemaOf<TypeParam>>(from.data());
    std::vector<uint8_t> message(size + 1, 0xEE);
    ASSERT_EQ(packed<schemaOf<TypeParam>>(message.data(), from.data()), size);
    EXPECT_EQ(message[size], 0xEE) << "the byte behind the message";
    // A heap block of the exact size, for the address sanitizer to watch the readers.
    message.resize(size);
    message.shrink_to_fit();
    const HostBuffer buffer{message.data(), static_cast<uint32_t>(message.size())};
    const auto table = buffer.read<uint32_t>(0);
    std::vector<uint8_t> into(this->record.size, 0);
    EXPECT_EQ(SlotReader(testModule.env, buffer).decodeTable(this->record, table, into.data()),
              Decoded::Yes);
    EXPECT_EQ(into, from);
    if constexpr (hasQuickReader(schemaOf<TypeParam>)) {
      into.assign(into.size(), 0xEE);
      EXPECT_TRUE(readQuickly<schemaOf<TypeParam>>(buffer, into.data()));
      EXPECT_EQ(into, from);
    }
  }
}

TYPED_TEST(Shapes, ComeBackFromTheFixedArrangement) {
  const std::vector<uint8_t> from = TestFixture::filled(true);
  std::vector<uint8_t> image(fixedLength(this->record), 0xEE);
  imaged<schemaOf<TypeParam>>(image.data(), from.data());
  const HostBuffer buffer{image.data(), static_cast<uint32_t>(image.size())};
  std::vector<uint8_t> into(this->record.size, 0xEE);
  ASSERT_TRUE(readImage<schemaOf<TypeParam>>(buffer, into.data()));
  EXPECT_EQ(into, from);
}

bool areTheStruct(std::initializer_list<Slot> slots, uint32_t size) {
  return slotsAreTheStruct({"", "", "", nullptr, size, slotOrder, {slots.begin(), slots.size()}});
}

TEST(Slots, AreTheStructOfNaturalAlignment) {
  constexpr Slot byte = scalarSlot<uint8_t, uint8_t>("f0", 0);
  EXPECT_TRUE(areTheStruct({byte, scalarSlot<uint32_t, uint32_t>("f1", 4)}, 8));
  EXPECT_TRUE(areTheStruct({byte, arraySlot<3, uint8_t[3]>("f1", 1)}, 4));
  EXPECT_TRUE(areTheStruct({byte, bytesSlot<uint32_t, uint8_t*>("f1", 4, 8)}, 16));
  EXPECT_TRUE(areTheStruct({byte, tableSlot<shape_wide_at_the_end>("f1", 8)}, 24));
}

TEST(Slots, AreNotTheStructWithAFieldTooManyOrElsewhere) {
  constexpr Slot byte = scalarSlot<uint8_t, uint8_t>("f0", 0);
  EXPECT_FALSE(areTheStruct({byte, scalarSlot<uint32_t, uint32_t>("f1", 4)}, 12));
  EXPECT_FALSE(areTheStruct({byte, scalarSlot<uint32_t, uint32_t>("f1", 8)}, 12));
  EXPECT_FALSE(areTheStruct({byte, arraySlot<3, uint8_t[3]>("f1", 2)}, 5));
  EXPECT_FALSE(areTheStruct({byte, bytesSlot<uint32_t, uint8_t*>("f1", 8, 16)}, 24));
  EXPECT_FALSE(areTheStruct({byte, bytesSlot<uint32_t, uint8_t*>("f1", 4, 16)}, 24));
  EXPECT_FALSE(areTheStruct({byte, bytesSlot<uint32_t, uint8_t*>("f1", 1, 8)}, 16));
  EXPECT_FALSE(areTheStruct({byte, tableSlot<shape_wide_at_the_end>("f1", 4)}, 20));
}

bool haveOneLayout(std::initializer_list<Slot> one, std::initializer_list<Slot> other,
                   uint32_t otherSize = 16) {
  const Schema schema{"one", "", "", nullptr, 16, slotOrder, {one.begin(), one.size()}};
  const Schema same{"other", "", "", nullptr, otherSize, slotOrder, {other.begin(), other.size()}};
  return haveSameLayout(schema, same);
}

TEST(Layouts, DifferInAnySlot) {
  constexpr Slot first = scalarSlot<uint32_t, uint32_t>("f0", 0);
  constexpr Slot firstArray = arraySlot<4, uint8_t[4]>("f0", 0);
  constexpr Slot last = scalarSlot<uint32_t, uint32_t>("f1", 4);
  constexpr Slot lastArray = arraySlot<4, uint8_t[4]>("f1", 4);
  EXPECT_TRUE(haveOneLayout({first, lastArray}, {first, lastArray}));
  EXPECT_FALSE(haveOneLayout({first, last}, {firstArray, last}));
  EXPECT_FALSE(haveOneLayout({first, last}, {first, lastArray}));
  EXPECT_FALSE(haveOneLayout({first, last}, {first, last}, 24));
  EXPECT_FALSE(haveOneLayout({first, last}, {first}));
  EXPECT_FALSE(haveOneLayout({first}, {first, last}));
}

TEST(Layouts, DifferInAnyNumberOfASlot) {
  EXPECT_FALSE(
      haveOneLayout({arraySlot<3, uint8_t[3]>("f0", 0)}, {arraySlot<4, uint8_t[4]>("f0", 0)}));
  EXPECT_FALSE(haveOneLayout({scalarSlot<uint8_t, uint8_t>("f0", 0)},
                             {scalarSlot<uint8_t, uint8_t>("f0", 1)}));
  EXPECT_FALSE(haveOneLayout({bytesSlot<uint32_t, uint8_t*>("f0", 0, 8)},
                             {bytesSlot<uint32_t, uint8_t*>("f0", 4, 8)}));
  constexpr Slot nested = tableSlot<shape_wide_at_the_end>("f0", 0);
  constexpr Slot otherNested = tableSlot<shape_short_tail>("f0", 0);
  static_assert(nested.size == otherNested.size);
  EXPECT_TRUE(haveOneLayout({nested}, {nested}));
  EXPECT_FALSE(haveOneLayout({nested}, {otherNested}));
}

constexpr char sevenCharacters[] = "seven_7";
constexpr char eightCharacters[] = "eight__8";

template <const auto& name>
concept IsSlotName = requires {
  typename std::bool_constant<(slotName(name), true)>;
};

TEST(Slots, HaveNamesOfSevenCharactersAtMost) {
  EXPECT_TRUE(IsSlotName<sevenCharacters>);
  EXPECT_FALSE(IsSlotName<eightCharacters>);
}

}  // namespace
