// The blocks of a record that was decoded, and the integers at any place of a record.
#pragma once

#include <cstdlib>

#include "wire/schema.hpp"

namespace inspect {

template <typename Integer>
Integer loadAs(const uint8_t* from) {
  return mesh::host::load<Integer>(from);
}

template <typename Integer>
void storeAs(uint8_t* to, Integer value) {
  mesh::host::store(to, value);
}

// Frees every out-of-line part of a record and sets its pointer to null. Counts stay.
inline void releaseParts(const mesh::wire::Schema& schema, uint8_t* record) {
  using mesh::wire::Kind;
  for (const mesh::wire::Slot& slot : schema.slots) {
    uint8_t* const field = record + slot.recordOffset;
    if (slot.kind == Kind::Table) {
      releaseParts(*slot.nested, field);
    } else if (mesh::wire::isOutOfLine(slot.kind)) {
      auto* const block = loadAs<uint8_t*>(field);
      const bool ownsItems =
          slot.kind == Kind::Vector && block != nullptr && mesh::wire::ownsMemory(*slot.nested);
      for (uint64_t item = 0; ownsItems && item < loadAs<uint32_t>(record + slot.countOffset);
           ++item) {
        releaseParts(*slot.nested, block + item * slot.size);
      }
      std::free(block);
      storeAs<uint8_t*>(field, nullptr);
    }
  }
}

}  // namespace inspect
