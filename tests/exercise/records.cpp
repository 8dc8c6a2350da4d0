#include "exercise/records.hpp"

#include <algorithm>
#include <cstring>

#include "host/memory.hpp"

namespace exercise {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

Records::Records(const Schema& schema, uint32_t count, Random& random)
    : records_(std::make_unique<uint8_t[]>(size_t{schema.size} * count)) {
  for (uint32_t index = 0; index < count; ++index) {
    fill(schema, records_.get() + size_t{schema.size} * index, random);
  }
}

uint8_t* Records::take(size_t size) {
  return parts_.emplace_back(std::make_unique<uint8_t[]>(size)).get();
}

void Records::fill(const Schema& schema, uint8_t* record, Random& random) {
  for (const Slot& slot : schema.slots) {
    uint8_t* const field = record + slot.recordOffset;
    if (slot.kind == Kind::Scalar) {
      const uint64_t value = random.below(3) == 0 ? 0 : random.next();
      std::memcpy(field, &value, slot.size);
    } else if (slot.kind == Kind::Array) {
      for (uint32_t at = 0; at < slot.size; at += 8) {
        const uint64_t value = random.next();
        std::memcpy(field + at, &value, std::min<uint32_t>(8, slot.size - at));
      }
    } else if (slot.kind == Kind::Table) {
      fill(*slot.nested, field, random);
    } else {
      const uint32_t count = random.below(slot.kind == Kind::Bytes ? 40 : 3);
      if (count > 0) {
        uint8_t* const part = take(size_t{count} * slot.size);
        for (uint32_t item = 0; item < count; ++item) {
          if (slot.kind == Kind::Bytes) {
            part[item] = static_cast<uint8_t>(random.next());
          } else {
            fill(*slot.nested, part + size_t{slot.size} * item, random);
          }
        }
        std::memcpy(record + slot.countOffset, &count, sizeof count);
        std::memcpy(field, &part, sizeof part);
      }
    }
  }
}

bool ownsParts(const Schema& schema, const uint8_t* record) {
  return std::any_of(schema.slots.begin(), schema.slots.end(), [&](const Slot& slot) {
    const uint8_t* const field = record + slot.recordOffset;
    if (slot.kind == Kind::Table) {
      return ownsParts(*slot.nested, field);
    }
    return mesh::wire::isOutOfLine(slot.kind) && mesh::host::load<const uint8_t*>(field) != nullptr;
  });
}

void damage(std::vector<uint8_t>& bytes, Random& random) {
  for (uint32_t injury = 1 + random.below(3); injury > 0 && !bytes.empty(); --injury) {
    // The frame lies at the start, or behind the fields.
    const auto size = static_cast<uint32_t>(bytes.size());
    const uint32_t at =
        random.below(2) == 0 ? random.below(std::min(size, 64U)) : random.below(size);
    switch (random.below(4)) {
      case 0:
        bytes.resize(at);
        break;
      case 1:
        bytes[at] = static_cast<uint8_t>(random.below(10));
        break;
      default:
        bytes[at] = static_cast<uint8_t>(random.next());
        break;
    }
  }
}

}  // namespace exercise
