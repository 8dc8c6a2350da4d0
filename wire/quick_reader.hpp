// The quick reader: reads sound tables, in either arrangement, in the host's byte order.
//
// The first pass verifies each value and stores it. The second pass allocates the blocks of byte
// strings, so nothing is allocated before everything is verified. Anything unusual (out of bounds,
// short vtable, missing array or nested table) goes to the slot reader. The slot reader clears the
// record and starts over, so nothing stored here remains. This reader does not touch the record
// before it has verified the root's head, because the slot reader may leave the record alone where
// the head is bad.
#pragma once

#include <bit>

#include "wire/slot_reader.hpp"

namespace mesh::wire {

using HostBuffer = Buffer<host::ByteOrder::Host>;

// Vectors go to the slot reader. So do records that the host's functions clear and copy: the host
// would see calls of a reading that is given up.
constexpr bool hasQuickReader(const Schema& schema) {
  for (const Slot& slot : schema.slots) {
    if (slot.kind == Kind::Vector || (slot.kind == Kind::Table && !hasQuickReader(*slot.nested))) {
      return false;
    }
  }
  return schema.size <= host::largestInPlace;
}

// Eight slot entries at once.
using Lanes [[gnu::vector_size(16)]] = uint16_t;
inline constexpr size_t laneCount = 8;

template <const Schema& schema, size_t first>
inline constexpr auto footprints = [] {
  std::array<uint16_t, laneCount> widths{};
  for (size_t lane = 0; lane < laneCount; ++lane) {
    widths[lane] = footprint(schema.slots[first + lane]);
  }
  return widths;
}();

// All ones in the lane of each entry whose footprint ends before `limit`, counted from the table.
template <const Schema& schema, size_t first>
Lanes entriesBefore(const uint8_t* entries, Lanes limit) {
  const auto entry = host::load<Lanes>(entries + 2 * first);
  const auto widths =
      host::load<Lanes>(reinterpret_cast<const uint8_t*>(footprints<schema, first>.data()));
  return reinterpret_cast<Lanes>(entry <= limit - widths);
}

constexpr uint32_t widestFootprint(const Schema& schema) {
  uint32_t widest = 0;
  for (const Slot& slot : schema.slots) {
    widest = footprint(slot) > widest ? footprint(slot) : widest;
  }
  return widest;
}

// Whether every slot's position and footprint lie within `left` bytes from the table on. Zero, the
// entry of an absent slot, is always inside: that of the vtable offset.
template <const Schema& schema>
bool entriesInside(const uint8_t* entries, uint32_t left) {
  constexpr size_t count = schema.slots.size();
  constexpr uint32_t widest = widestFootprint(schema);
  if (left < widest) {
    return false;
  }
  if constexpr (count < laneCount) {
    return sumSlots<schema>([&](auto index) -> uint64_t {
             return host::load<uint16_t>(entries + 2 * index) + footprint(schema.slots[index]) >
                    left;
           }) == 0;
  } else {
    // Positions beyond sixteen bits go to the slot reader.
    const Lanes limit = Lanes{} + static_cast<uint16_t>(left < UINT16_MAX ? left : UINT16_MAX);
    Lanes inside = entriesBefore<schema, count - laneCount>(entries, limit);
    forEach<count / laneCount>(
        [&](auto block) { inside &= entriesBefore<schema, laneCount * block>(entries, limit); });
    const auto halves = std::bit_cast<std::array<uint64_t, 2>>(inside);
    return (halves[0] & halves[1]) == UINT64_MAX;
  }
}

template <uint32_t from, uint32_t to>
void clearBetween(uint8_t* into) {
  if constexpr (from < to) {
    std::memset(into + from, 0, to - from);
  }
}

// The padding between a slot's value and what follows it in the record.
template <const Schema& schema, size_t index>
void clearPadding(uint8_t* into) {
  constexpr uint32_t next =
      index + 1 < schema.slots.size() ? recordBegin(schema.slots[index + 1]) : schema.size;
  clearBetween<recordEnd(schema.slots[index]), next>(into);
}

// An absent scalar reads the vtable offset, and keeps nothing of it.
template <typename Value>
void readScalar(const uint8_t* at, uint16_t entry, uint8_t* field) {
  const auto isThere = static_cast<Value>(0 - static_cast<Value>(entry != 0));
  host::store(field, static_cast<Value>(host::load<Value>(at) & isThere));
}

// Verifies the table at `table` and fills the record. The pointers of byte strings point into the
// buffer. Returns false where the slot reader must decide.
template <const Schema& schema>
bool readSoundTable(HostBuffer buffer, uint32_t table, uint8_t* into) {
  constexpr uint32_t wholeVtable = vtableLength(schema);
  Head head;
  if (buffer.readHead(table, head) != HeadFault::None || head.vtableLength < wholeVtable)
      [[unlikely]] {
    return false;
  }
  const uint8_t* const entries = buffer.data + head.vtable + 4;
  if (!entriesInside<schema>(entries, buffer.length - table)) [[unlikely]] {
    return false;
  }
  return allSlots<schema>([&](auto index) {
    constexpr const Slot& slot = schema.slots[index];
    const auto entry = host::load<uint16_t>(entries + 2 * index);
    const Position at = Position{table} + entry;
    uint8_t* const field = into + slot.recordOffset;
    clearPadding<schema, index>(into);
    if constexpr (slot.kind == Kind::Scalar) {
      readScalar<ScalarOf<schema, index>>(buffer.data + at, entry, field);
      return true;
    } else if constexpr (slot.kind == Kind::Table) {
      Position target = 0;
      return entry != 0 && buffer.follow(at, target) &&
             readSoundTable<*slot.nested>(buffer, static_cast<uint32_t>(target), field);
    } else if constexpr (slot.kind == Kind::Array) {
      Contents contents{};
      if (entry == 0 || !buffer.locateBytes(at, contents) || contents.length != slot.size)
          [[unlikely]] {
        return false;
      }
      host::copyConstant<slot.size>(field, contents.bytes);
      return true;
    } else {
      Contents contents{};
      if (entry != 0 && !buffer.locateBytes(at, contents)) [[unlikely]] {
        return false;
      }
      // Points into the buffer until takeParts() allocates the block.
      clearBetween<slot.countOffset + 4, slot.recordOffset>(into);
      host::store(into + slot.countOffset, contents.length);
      host::store(field, contents.length != 0 ? contents.bytes : nullptr);
      return true;
    }
  });
}

// Replaces the pointers into the buffer by allocated blocks, in slot order. Where the host refuses
// one, clears what lies behind it in the record: the slot reader would stop there.
template <const Schema& schema, Decoder decoder>
Decoded takeParts(host::serial_env& env, uint8_t* into) {
  const bool areTaken = allSlots<schema>([&](auto index) {
    constexpr const Slot& slot = schema.slots[index];
    uint8_t* const field = into + slot.recordOffset;
    auto taken = Decoded::Yes;
    if constexpr (slot.kind == Kind::Bytes) {
      const auto* const bytes = host::load<const uint8_t*>(field);
      if (bytes != nullptr) {
        host::store<uint8_t*>(field, nullptr);
        const auto length = host::load<uint32_t>(into + slot.countOffset);
        taken = takeBytes(env, schema, decoder, slot, {bytes, length}, into);
      }
    } else if constexpr (slot.kind == Kind::Table && ownsMemory(*slot.nested)) {
      taken = takeParts<*slot.nested, Decoder::Table>(env, field);
    }
    if (taken == Decoded::No) [[unlikely]] {
      std::memset(into + recordEnd(slot), 0, schema.size - recordEnd(slot));
    }
    return taken == Decoded::Yes;
  });
  return areTaken ? Decoded::Yes : Decoded::No;
}

}  // namespace mesh::wire
