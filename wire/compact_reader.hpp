// Reads sound tables quickly, in whatever arrangement: first every bound is verified, without a
// write, then the record is filled, without a branch for a scalar that is there or not.
//
// Sound is less than valid: a table of which anything is out of bounds, or whose vtable is shorter
// than the record's, or which lacks an array or a nested table, is left to the reader that takes
// slot by slot. What is read here is read to the same result there.
#pragma once

#include <array>
#include <utility>

#include "host/byte_order.hpp"
#include "host/memory.hpp"
#include "wire/buffer.hpp"
#include "wire/reader.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

using HostBuffer = Buffer<host::ByteOrder::Host>;

// Vectors are decoded item by item, with everything that can go wrong on the way.
constexpr bool hasQuickReader(const Schema& schema) {
  for (const Slot& slot : schema.slots) {
    if (slot.kind == Kind::Vector || (slot.kind == Kind::Table && !hasQuickReader(*slot.nested))) {
      return false;
    }
  }
  return true;
}

// Where the parts of a sound table lie in its buffer, as positions one after the other: the table,
// its slot entries, then for each slot an array's contents, or a byte string's contents and length,
// or the parts of a nested table. The record is filled from them and from the buffer, whose bytes
// must not change meanwhile.
constexpr size_t partCount(const Schema& schema, size_t slots);

constexpr size_t partCount(const Schema& schema) {
  return partCount(schema, schema.slots.size());
}

constexpr size_t partCount(const Schema& schema, size_t slots) {
  size_t count = 2;
  for (const Slot& slot : schema.slots.first(slots)) {
    count += slot.kind == Kind::Array   ? 1
             : slot.kind == Kind::Bytes ? 2
             : slot.kind == Kind::Table ? partCount(*slot.nested)
                                        : 0;
  }
  return count;
}

// Where a slot's parts begin among its table's.
template <const Schema& schema, size_t index>
inline constexpr size_t partOf = partCount(schema, index);

template <const Schema& schema>
using SoundParts = std::array<uint32_t, partCount(schema)>;

namespace detail {

// The bytes at a present slot's position that the table itself must hold.
constexpr uint16_t footprint(const Slot& slot) {
  return isScalar(slot.kind) ? static_cast<uint16_t>(slot.size) : uint16_t{4};
}

constexpr uint32_t widestFootprint(const Schema& schema) {
  uint32_t widest = 0;
  for (const Slot& slot : schema.slots) {
    widest = footprint(slot) > widest ? footprint(slot) : widest;
  }
  return widest;
}

// Eight slot entries at once.
using Lanes [[gnu::vector_size(16)]] = uint16_t;
inline constexpr size_t laneCount = 8;

template <const Schema& schema, size_t start>
inline constexpr auto footprints = [] {
  std::array<uint16_t, laneCount> widths{};
  for (size_t lane = 0; lane < laneCount; ++lane) {
    widths[lane] = footprint(schema.slots[start + lane]);
  }
  return widths;
}();

// All ones in the lane of each entry whose footprint ends before `limit`, counted from the table.
template <const Schema& schema, size_t start>
[[gnu::always_inline]] inline Lanes entriesBefore(const uint8_t* entries, Lanes limit) {
  Lanes entry;
  Lanes widths;
  std::memcpy(&entry, entries + 2 * start, sizeof entry);
  std::memcpy(&widths, footprints<schema, start>.data(), sizeof widths);
  return reinterpret_cast<Lanes>(entry <= limit - widths);
}

// Whether every slot's position and footprint lie within `left` bytes from the table on. Zero, the
// entry of an absent slot, is always inside: that of the vtable offset.
template <const Schema& schema>
[[gnu::always_inline]] inline bool entriesInside(const uint8_t* entries, uint32_t left) {
  constexpr size_t count = schema.slots.size();
  if (left < widestFootprint(schema)) {
    return false;
  }
  if constexpr (count < laneCount) {
    return [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
      const auto behind = [&](size_t slot, uint32_t width) -> uint32_t {
        return host::load<uint16_t>(entries + 2 * slot) + width > left ? 1 : 0;
      };
      return (behind(index, footprint(schema.slots[index])) | ...) == 0;
    }
    (std::make_index_sequence<count>());
  } else {
    // A position that sixteen bits cannot hold is left to the other reader.
    const Lanes limit = Lanes{} + static_cast<uint16_t>(left < UINT16_MAX ? left : UINT16_MAX);
    const Lanes inside = [&]<size_t... block>(std::index_sequence<block...>)
        __attribute__((always_inline)) {
      return (entriesBefore<schema, count - laneCount>(entries, limit) & ... &
              entriesBefore<schema, laneCount * block>(entries, limit));
    }
    (std::make_index_sequence<count / laneCount>());
    std::array<uint64_t, 2> halves;
    std::memcpy(halves.data(), &inside, sizeof inside);
    return (halves[0] & halves[1]) == UINT64_MAX;
  }
}

template <const Schema& schema>
bool verifyTable(HostBuffer buffer, uint32_t table, uint32_t* parts);

// The contents and the length of the byte string whose offset word, at `word`, lies inside.
[[gnu::always_inline]] inline bool verifyBytes(HostBuffer buffer, Position word, uint32_t& contents,
                                               uint32_t& length) {
  const Position target = word + buffer.read<uint32_t>(word);
  if (!buffer.holds(target, 4)) [[unlikely]] {
    return false;
  }
  contents = static_cast<uint32_t>(target) + 4;
  length = buffer.read<uint32_t>(target);
  return buffer.holds(target + 4, length);
}

template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline bool verifySlot(HostBuffer buffer, uint32_t* parts) {
  constexpr const Slot& slot = schema.slots[index];
  if constexpr (isScalar(slot.kind)) {
    return true;
  } else {
    uint32_t* const part = parts + partOf<schema, index>;
    const auto entry = buffer.read<uint16_t>(Position{parts[1]} + 2 * index);
    const Position word = Position{parts[0]} + entry;
    if constexpr (slot.kind == Kind::Array) {
      uint32_t length = 0;
      return entry != 0 && verifyBytes(buffer, word, part[0], length) && length == slot.size;
    } else if constexpr (slot.kind == Kind::Bytes) {
      part[0] = 0;
      part[1] = 0;
      return entry == 0 || verifyBytes(buffer, word, part[0], part[1]);
    } else {
      const Position target = word + buffer.read<uint32_t>(word);
      return entry != 0 && target <= UINT32_MAX &&
             verifyTable<*slot.nested>(buffer, static_cast<uint32_t>(target), part);
    }
  }
}

template <const Schema& schema>
[[gnu::always_inline]] inline bool verifyTable(HostBuffer buffer, uint32_t table, uint32_t* parts) {
  TableFrame frame;
  if (readFrame(buffer, table, frame) != FrameFault::None ||
      frame.vtableLength < vtableLength(schema)) [[unlikely]] {
    return false;
  }
  parts[0] = table;
  parts[1] = frame.vtable + 4;
  if (!entriesInside<schema>(buffer.data + parts[1], buffer.length - table)) [[unlikely]] {
    return false;
  }
  return [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    return (verifySlot<schema, index>(buffer, parts) && ...);
  }
  (std::make_index_sequence<schema.slots.size()>());
}

template <host::Module& module, const Schema& schema, Decoder decoder>
Decoded fillTable(const uint8_t* data, const uint32_t* parts, uint8_t* into);

template <typename Scalar>
[[gnu::always_inline]] inline void fillScalar(const uint8_t* table, uint16_t entry,
                                              uint8_t* field) {
  // An absent one reads the vtable offset, and keeps nothing of it.
  const auto isThere = static_cast<Scalar>(0 - static_cast<Scalar>(entry != 0));
  host::store(field, static_cast<Scalar>(host::load<Scalar>(table + entry) & isThere));
}

template <host::Module& module, const Schema& schema, size_t index, Decoder decoder>
[[gnu::always_inline]] inline Decoded fillSlot(const uint8_t* data, const uint32_t* parts,
                                               uint8_t* into) {
  constexpr const Slot& slot = schema.slots[index];
  const uint32_t* const part = parts + partOf<schema, index>;
  uint8_t* const field = into + slot.recordOffset;
  if constexpr (slot.kind == Kind::Array) {
    host::copyConstant<slot.size>(field, data + part[0]);
  } else if constexpr (slot.kind == Kind::Bytes) {
    if (part[1] != 0) {
      return takeBytes(module.env, schema, decoder, slot, {data + part[0], part[1]}, into);
    }
  } else if constexpr (slot.kind == Kind::Table) {
    return fillTable<module, *slot.nested, Decoder::Table>(data, part, field);
  } else {
    const uint8_t* const table = data + parts[0];
    const auto entry = host::load<uint16_t>(data + parts[1] + 2 * index);
    if constexpr (slot.kind == Kind::U8) {
      fillScalar<uint8_t>(table, entry, field);
    } else if constexpr (slot.kind == Kind::U16) {
      fillScalar<uint16_t>(table, entry, field);
    } else if constexpr (slot.kind == Kind::U32) {
      fillScalar<uint32_t>(table, entry, field);
    } else {
      fillScalar<uint64_t>(table, entry, field);
    }
  }
  return Decoded::Yes;
}

// The padding between a slot's value and what follows it in the record.
template <const Schema& schema, size_t index>
[[gnu::always_inline]] inline void clearPadding(uint8_t* into) {
  constexpr const Slot& slot = schema.slots[index];
  constexpr uint32_t end = slot.recordOffset + slot.size;
  constexpr uint32_t next =
      index + 1 < schema.slots.size() ? schema.slots[index + 1].recordOffset : schema.size;
  if constexpr (end < next) {
    host::clearConstant<next - end>(into + end);
  }
}

// Whether a record is cleared before it is filled: where an allocation that fails leaves fields
// unread, and where the host's own fill is to do it.
constexpr bool isClearedFirst(const Schema& schema) {
  return ownsMemory(schema) || schema.size > host::largestInPlace;
}

template <host::Module& module, const Schema& schema, Decoder decoder>
[[gnu::always_inline]] inline Decoded fillTable(const uint8_t* data, const uint32_t* parts,
                                                uint8_t* into) {
  Decoded decoded = Decoded::Yes;
  [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    static_cast<void>(((decoded = fillSlot<module, schema, index, decoder>(data, parts, into),
                        decoded == Decoded::Yes) &&
                       ...));
    if constexpr (!isClearedFirst(schema)) {
      (clearPadding<schema, index>(into), ...);
    }
  }
  (std::make_index_sequence<schema.slots.size()>());
  return decoded;
}

}  // namespace detail

// Whether the buffer's root table is sound. The buffer is at least 4 bytes long.
template <const Schema& schema>
[[gnu::always_inline]] inline bool verifySound(HostBuffer buffer, SoundParts<schema>& parts) {
  return detail::verifyTable<schema>(buffer, buffer.read<uint32_t>(0), parts.data());
}

// Fills the record, its padding with zeros. Fails where an allocation does; what was decoded stays,
// blocks included, and what was not is zero.
template <host::Module& module, const Schema& schema, Decoder decoder>
[[gnu::always_inline]] inline Decoded fillRecord(const uint8_t* data,
                                                 const SoundParts<schema>& parts, uint8_t* into) {
  if constexpr (detail::isClearedFirst(schema)) {
    host::clearConstant<schema.size>(into);
  }
  return detail::fillTable<module, schema, decoder>(data, parts.data(), into);
}

}  // namespace mesh::wire
