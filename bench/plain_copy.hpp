// The yardstick: a copy of the record and of its byte strings and items. The copy function is
// opaque to the compiler, which so cannot omit, merge or expand copies.
#pragma once

#include <cstring>

#include "bench/exported.hpp"

namespace bench {

using CopyFunction = void* (*)(void*, const void*, size_t);

inline CopyFunction opaqueCopy() {
  static CopyFunction volatile copy = &std::memcpy;
  return copy;
}

// Copies the byte strings and runs of a copied record into `room`. Returns their end.
template <const mesh::wire::Schema& record, size_t slot = 0>
[[gnu::always_inline]] inline uint8_t* copyParts(CopyFunction copy, uint8_t* into, uint8_t* room) {
  if constexpr (slot == record.slots.size()) {
    return room;
  } else {
    constexpr const mesh::wire::Slot& part = record.slots[slot];
    if constexpr (mesh::wire::isOutOfLine(part.kind)) {
      static_assert(part.nested == nullptr || !mesh::wire::ownsMemory(*part.nested));
      uint32_t count;
      const uint8_t* from;
      std::memcpy(&count, into + part.countOffset, sizeof count);
      std::memcpy(&from, into + part.recordOffset, sizeof from);
      const size_t bytes = size_t{count} * part.size;
      copy(room, from, bytes);
      std::memcpy(into + part.recordOffset, &room, sizeof room);
      room += bytes;
    } else if constexpr (part.kind == mesh::wire::Kind::Table) {
      room = copyParts<*part.nested>(copy, into + part.recordOffset, room);
    }
    return copyParts<record, slot + 1>(copy, into, room);
  }
}

// `room` receives the parts of one record.
template <typename Record>
[[gnu::always_inline]] inline void copyRecord(CopyFunction copy, Record* into, const Record* from,
                                              uint8_t* room) {
  copy(into, from, sizeof(Record));
  if constexpr (owns<Record>) {
    copyParts<schema<Record>>(copy, reinterpret_cast<uint8_t*>(into), room);
  }
}

}  // namespace bench
