#include "bench/records.hpp"

#include <cstring>

namespace bench {
namespace {

using mesh::wire::Kind;
using mesh::wire::Slot;

constexpr uint64_t roundedUp(uint64_t size) {
  return (size + 7) / 8 * 8;
}

uint64_t lengthOf(const Slot& slot, const Shape& shape) {
  return slot.kind == Kind::Bytes ? shape.stringLength : uint64_t{shape.items} * slot.size;
}

template <typename Value>
Value load(const uint8_t* from) {
  Value value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

// Little-endian, like the machines this runs on.
void fillScalar(const Slot& slot, Fill fill, Random& random, uint8_t* to) {
  if (fill == Fill::Sparse && random.coin()) {
    return;
  }
  const uint64_t values = slot.size == 8 ? 0 : uint64_t{1} << (8 * slot.size);
  const uint64_t value = values == 0 ? random.next() | 1 : 1 + random.next() % (values - 1);
  std::memcpy(to, &value, slot.size);
}

bool equalRuns(const Slot& slot, const uint8_t* one, const uint8_t* other) {
  const auto count = load<uint32_t>(one + slot.countOffset);
  if (count != load<uint32_t>(other + slot.countOffset)) {
    return false;
  }
  const auto* const items = load<const uint8_t*>(one + slot.recordOffset);
  const auto* const otherItems = load<const uint8_t*>(other + slot.recordOffset);
  if (items == nullptr || otherItems == nullptr) {
    return items == otherItems;
  }
  if (slot.kind == Kind::Bytes) {
    return std::memcmp(items, otherItems, count) == 0;
  }
  for (uint64_t index = 0; index < count; ++index) {
    if (!equal(*slot.nested, items + index * slot.size, otherItems + index * slot.size)) {
      return false;
    }
  }
  return true;
}

}  // namespace

uint64_t partsSize(const mesh::wire::Schema& schema, const Shape& shape) {
  uint64_t size = 0;
  for (const Slot& slot : schema.slots) {
    if (isOutOfLine(slot.kind)) {
      size += roundedUp(lengthOf(slot, shape));
    } else if (slot.kind == Kind::Table) {
      size += partsSize(*slot.nested, shape);
    }
  }
  return size;
}

uint8_t* fill(const mesh::wire::Schema& schema, const Shape& shape, Random& random, uint8_t* record,
              uint8_t* parts) {
  for (const Slot& slot : schema.slots) {
    uint8_t* const at = record + slot.recordOffset;
    if (isScalar(slot.kind)) {
      fillScalar(slot, shape.fill, random, at);
    } else if (slot.kind == Kind::Array) {
      random.fill(at, slot.size);
    } else if (slot.kind == Kind::Table) {
      parts = fill(*slot.nested, shape, random, at, parts);
    } else {
      const uint32_t count = slot.kind == Kind::Bytes ? shape.stringLength : shape.items;
      std::memcpy(record + slot.countOffset, &count, sizeof count);
      std::memcpy(at, &parts, sizeof parts);
      uint8_t* next = parts + roundedUp(lengthOf(slot, shape));
      if (slot.kind == Kind::Bytes) {
        random.fill(parts, count);
      } else {
        for (uint32_t index = 0; index < count; ++index) {
          next = fill(*slot.nested, shape, random, parts + uint64_t{index} * slot.size, next);
        }
      }
      parts = next;
    }
  }
  return parts;
}

bool equal(const mesh::wire::Schema& schema, const uint8_t* one, const uint8_t* other) {
  return std::all_of(schema.slots.begin(), schema.slots.end(), [=](const Slot& slot) {
    if (isOutOfLine(slot.kind)) {
      return equalRuns(slot, one, other);
    }
    const uint8_t* const value = one + slot.recordOffset;
    const uint8_t* const otherValue = other + slot.recordOffset;
    return slot.kind == Kind::Table ? equal(*slot.nested, value, otherValue)
                                    : std::memcmp(value, otherValue, slot.size) == 0;
  });
}

}  // namespace bench
