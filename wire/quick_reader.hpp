// The quick readers, for the host's byte order: of fixed images, and of sound tables in either
// arrangement. Anything unusual goes to the slot reader.
//
// Fixed images: if the buffer equals the template of the image, every field is at its known place,
// and a plan of stores fills the record.
//
// Sound tables: the first pass verifies each value and stores it. The second pass allocates the
// blocks of byte strings, so nothing is allocated before everything is verified. What is out of
// bounds, has a short vtable, or lacks an array or nested table goes to the slot reader, which
// clears the record and starts over: nothing stored here remains. The record is not touched before
// the root's head is verified, because the slot reader may leave it alone where the head is bad.
#pragma once

#include <bit>

#include "wire/fixed_image.hpp"
#include "wire/slot_reader.hpp"

namespace mesh::wire {

// Neighbouring bytes of the template that are compared together.
struct TemplatePart {
  uint32_t at;
  uint32_t size;
};

template <const Schema& schema>
inline constexpr auto templateParts = [] {
  struct {
    std::array<TemplatePart, 2 * leafCount<schema> + 2> list{};
    size_t count = 0;
  } parts;
  const auto add = [&](uint32_t at, auto value) {
    if (parts.count > 0 &&
        parts.list[parts.count - 1].at + parts.list[parts.count - 1].size == at) {
      parts.list[parts.count - 1].size += sizeof value;
    } else {
      parts.list[parts.count++] = {at, sizeof value};
    }
  };
  visitTemplate(schema, 0, add);
  return parts;
}();

// Nonzero where a part of the image differs from the template, compared by `Wide`; the last
// comparison overlaps the one before.
template <const Schema& schema, typename Wide, TemplatePart part>
Wide differences(const uint8_t* image) {
  const auto differenceAt = [&](uint32_t at) {
    return host::load<Wide>(image + at) ^ host::load<Wide>(imageTemplate<schema>.data() + at);
  };
  Wide found = differenceAt(part.at + part.size - sizeof(Wide));
  forEach<(part.size - 1) / sizeof(Wide)>(
      [&](auto index) { found |= differenceAt(part.at + sizeof(Wide) * index); });
  return found;
}

// Whether the buffer holds an image with exactly this template. Its padding, and what follows it,
// may be anything.
template <const Schema& schema>
bool hasFixedTemplate(HostBuffer buffer) {
  constexpr uint32_t end = fixedVtable(schema) + vtableLength(schema);
  // The root word alone rejects most other buffers.
  if (buffer.length < end || buffer.read<uint32_t>(0) != fixedTable) {
    return false;
  }
  uint64_t found = 0;
  forEach<templateParts<schema>.count>([&](auto index) {
    constexpr TemplatePart part = templateParts<schema>.list[index];
    if constexpr (part.size < 8) {
      found |= differences<schema, uint32_t, part>(buffer.data);
    } else if constexpr (part.size < 16) {
      found |= differences<schema, uint64_t, part>(buffer.data);
    } else {
      using Sixteen [[gnu::vector_size(16)]] = uint64_t;
      const Sixteen both = differences<schema, Sixteen, part>(buffer.data);
      found |= both[0] | both[1];
    }
  });
  return found == 0;
}

// A record as stretches of its image and of zeros, which stand where the record has padding.
template <const Schema& schema>
inline constexpr auto recordStretches = [] {
  Stretches<2 * leafCount<schema> + 1> stretches;
  uint32_t end = 0;
  const auto add = [&](const Leaf& leaf) {
    stretches.append({end, leaf.record - end, {0, true}});
    stretches.append({leaf.record, leaf.size, {leaf.image, false}});
    end = leaf.record + leaf.size;
  };
  visitLeaves(schema, 0, 0, add);
  stretches.append({end, schema.size - end, {0, true}});
  return stretches;
}();

inline constexpr std::array<uint8_t, host::chunk> zeros{};

template <const Schema& schema>
inline constexpr StorePlan recordPlan =
    planStores(recordStretches<schema>.all(),
               {.source = fixedVtable(schema) + vtableLength(schema), .constants = zeros.size()});

// Fills the record, its padding with zeros, from an image that has the fixed template.
template <const Schema& schema>
void readFixedImage(uint8_t* into, const uint8_t* image) {
  if constexpr (schema.size > host::largestInPlace) {
    host::clearBytes(into, schema.size);
  }
  forEach<recordPlan<schema>.count>([&](auto index) {
    constexpr Store store = recordPlan<schema>.stores[index];
    const auto source = [&](Origin origin) {
      return (origin.isConstant ? zeros.data() : image) + origin.from;
    };
    if constexpr (store.isPair) {
      storePair(into + store.to, source(store.low), source(store.high));
    } else {
      host::copyConstant<store.size>(into + store.to, source(store.low));
    }
  });
}

// Vectors go to the slot reader. So do records above 256 bytes: the host's functions clear and copy
// them, and would be called twice where a quick reading is given up.
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

// Whether every slot's position and footprint lie within `left` bytes from the table on. Entry 0 of
// an absent slot always passes: `left` holds the widest footprint.
template <const Schema& schema>
bool entriesInside(const uint8_t* entries, uint32_t left) {
  constexpr size_t count = schema.slots.size();
  constexpr uint32_t widest = widestFootprint(schema);
  if (left < widest) {
    return false;
  }
  if constexpr (count < laneCount) {
    uint32_t outside = 0;
    forEachSlot<schema>([&](auto index) {
      constexpr uint32_t width = footprint(schema.slots[index]);
      outside |= host::load<uint16_t>(entries + 2 * index) + width > left ? 1U : 0U;
    });
    return outside == 0;
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

// An absent scalar loads the table's first bytes, and masks them to 0.
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
// one, clears what lies behind it in the record: the slot reader would stop there. While the host
// allocates, later pointers still point into the buffer.
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
