// Gives back what decoding allocated inside a record.
#pragma once

#include <utility>

#include "host/binding.hpp"
#include "host/byte_order.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

// Every out-of-line part, in slot order, each pointer null afterwards; lengths and counts stay. The
// host's free is called for null pointers too. `function` is the message's own release text, also
// for the parts of nested records. Binding is the caller's.
template <host::Module& module, const Schema& schema>
void releaseParts(uint8_t* into, const char* function);

namespace detail {

template <host::Module& module, const Schema& schema, size_t index>
[[gnu::always_inline]] inline void releaseSlot(uint8_t* into, const char* function) {
  constexpr const Slot& slot = schema.slots[index];
  uint8_t* const field = into + slot.recordOffset;
  if constexpr (slot.kind == Kind::Table) {
    if constexpr (ownsMemory(*slot.nested)) {
      releaseParts<module, *slot.nested>(field, function);
    }
  } else if constexpr (isOutOfLine(slot.kind)) {
    auto* const block = host::loadPointer<uint8_t>(field);
    if constexpr (slot.kind == Kind::Vector) {
      static_assert(!ownsMemory(*slot.nested), "the items of a vector own nothing yet");
    }
    module.env.unpackFree(block, host::unpackOwner, function);
    host::storePointer(field, nullptr);
  }
}

}  // namespace detail

template <host::Module& module, const Schema& schema>
void releaseParts(uint8_t* into, const char* function) {
  [&]<size_t... index>(std::index_sequence<index...>) __attribute__((always_inline)) {
    (detail::releaseSlot<module, schema, index>(into, function), ...);
  }
  (std::make_index_sequence<schema.slots.size()>());
}

}  // namespace mesh::wire
