// How a record's slots are written down.
//
//   MESH_SCHEMA(l2vpn_sync_stp, style, SLOT_U32(f0), SLOT_U32(f1), SLOT_U32(f2), SLOT_U32(f3))
//
// Kinds are compared with the C struct: a field of another type, a missing field, one out of order
// or one too many does not compile.
#pragma once

#include <algorithm>
#include <string_view>

#include "wire/schema.hpp"

namespace mesh::wire {

// Declared only: a call of it is not a constant expression, and so an error with this name in it.
void aSlotsNameHasSevenCharactersAtMost();

// The release's name. Null for a record that owns no memory.
consteval const char* releaserOf(std::span<const Slot> slots, const char* name) {
  const Schema schema{"", "", "", nullptr, 0, {}, slots};
  return ownsMemory(schema) ? name : nullptr;
}

consteval std::array<char, 8> slotName(std::string_view name) {
  std::array<char, 8> held{};
  if (name.size() >= held.size()) {
    aSlotsNameHasSevenCharactersAtMost();
  }
  std::copy(name.begin(), name.end(), held.begin());
  return held;
}

template <typename Scalar, typename Field>
consteval Slot scalarSlot(const char* name, size_t offset) {
  static_assert(std::is_same_v<Scalar, Field>, "the field has another width than its slot");
  return {slotName(name), Kind::Scalar, sizeof(Scalar), static_cast<uint32_t>(offset), 0, nullptr};
}

template <size_t size, typename Field>
consteval Slot arraySlot(const char* name, size_t offset) {
  static_assert(std::is_same_v<uint8_t[size], Field>, "the array has another size than its slot");
  return {slotName(name), Kind::Array, size, static_cast<uint32_t>(offset), 0, nullptr};
}

template <typename Length, typename Field>
consteval Slot bytesSlot(const char* name, size_t lengthOffset, size_t offset) {
  static_assert(std::is_same_v<uint32_t, Length> && std::is_same_v<uint8_t*, Field>,
                "a byte string is a uint32_t length and a uint8_t pointer");
  return {slotName(name),
          Kind::Bytes,
          1,
          static_cast<uint32_t>(offset),
          static_cast<uint32_t>(lengthOffset),
          nullptr};
}

template <typename Field>
consteval Slot tableSlot(const char* name, size_t offset) {
  return {slotName(name),  Kind::Table, sizeof(Field), static_cast<uint32_t>(offset), 0,
          &schemaOf<Field>};
}

template <typename Count, typename Field>
consteval Slot vectorSlot(const char* name, size_t countOffset, size_t offset) {
  static_assert(std::is_same_v<uint32_t, Count> && std::is_pointer_v<Field>,
                "a vector is a uint32_t count and a pointer to records");
  using Item = std::remove_pointer_t<Field>;
  return {slotName(name),
          Kind::Vector,
          sizeof(Item),
          static_cast<uint32_t>(offset),
          static_cast<uint32_t>(countOffset),
          &schemaOf<Item>};
}

// The alignment that the C struct gives a record or a slot's value.
constexpr uint32_t alignmentOf(const Schema& schema);

constexpr uint32_t alignmentOf(const Slot& slot) {
  if (slot.kind == Kind::Scalar) {
    return slot.size;
  }
  if (slot.kind == Kind::Table) {
    return alignmentOf(*slot.nested);
  }
  return isOutOfLine(slot.kind) ? alignof(void*) : 1;
}

constexpr uint32_t alignmentOf(const Schema& schema) {
  uint32_t alignment = 1;
  for (const Slot& slot : schema.slots) {
    const uint32_t ofSlot = alignmentOf(slot);
    alignment = ofSlot > alignment ? ofSlot : alignment;
  }
  return alignment;
}

// Whether the slots, laid out one after the other with natural alignment, are the struct: nothing
// between them, nothing after the last.
constexpr bool slotsAreTheStruct(const Schema& schema) {
  uint32_t end = 0;
  for (const Slot& slot : schema.slots) {
    if (isOutOfLine(slot.kind)) {
      if (slot.countOffset != roundUp(end, alignof(uint32_t))) {
        return false;
      }
      end = slot.countOffset + static_cast<uint32_t>(sizeof(uint32_t));
    }
    if (slot.recordOffset != roundUp(end, alignmentOf(slot))) {
      return false;
    }
    end = recordEnd(slot);
  }
  return schema.size == roundUp(end, alignmentOf(schema));
}

}  // namespace mesh::wire

// Used inside MESH_SCHEMA, where Self is the record's type.
#define SLOT_U8(field) \
  ::mesh::wire::scalarSlot<uint8_t, decltype(Self::field)>(#field, offsetof(Self, field))
#define SLOT_U16(field) \
  ::mesh::wire::scalarSlot<uint16_t, decltype(Self::field)>(#field, offsetof(Self, field))
#define SLOT_U32(field) \
  ::mesh::wire::scalarSlot<uint32_t, decltype(Self::field)>(#field, offsetof(Self, field))
#define SLOT_U64(field) \
  ::mesh::wire::scalarSlot<uint64_t, decltype(Self::field)>(#field, offsetof(Self, field))
#define SLOT_ARRAY(size, field) \
  ::mesh::wire::arraySlot<size, decltype(Self::field)>(#field, offsetof(Self, field))
#define SLOT_BYTES(field)                                                      \
  ::mesh::wire::bytesSlot<decltype(Self::field##_len), decltype(Self::field)>( \
      #field, offsetof(Self, field##_len), offsetof(Self, field))
#define SLOT_TABLE(field) \
  ::mesh::wire::tableSlot<decltype(Self::field)>(#field, offsetof(Self, field))
#define SLOT_VECTOR(field)                                                        \
  ::mesh::wire::vectorSlot<decltype(Self::field##_count), decltype(Self::field)>( \
      #field, offsetof(Self, field##_count), offsetof(Self, field))

// The schema of a record: its type's name, its style, its slots in slot order.
#define MESH_SCHEMA(record_type, record_style, ...)                                              \
  template <>                                                                                    \
  struct mesh::wire::SchemaOf<::record_type> {                                                   \
    using Self = ::record_type;                                                                  \
    static constexpr auto slots = std::to_array<mesh::wire::Slot>({__VA_ARGS__});                \
    static constexpr mesh::wire::Schema schema{#record_type,                                     \
                                               #record_type "_unpack",                           \
                                               #record_type "_unpack_non_root",                  \
                                               releaserOf(slots, #record_type "_free_unpacked"), \
                                               sizeof(Self),                                     \
                                               record_style,                                     \
                                               slots};                                           \
    static_assert(mesh::wire::slotsAreTheStruct(schema), "slots and struct differ");             \
  };
