// __pack: a record becomes a compact table in the caller's buffer.
#pragma once

#include "host/binding.hpp"
#include "msg/message.hpp"
#include "msg/result.hpp"
#include "wire/compact_size.hpp"
#include "wire/compact_writer.hpp"
#include "wire/report.hpp"
#include "wire/reverse.hpp"
#include "wire/text.hpp"

namespace mesh::msg {

// The exact size of a record's compact message, or 0 for one that cannot be encoded.
template <const Message& message>
[[gnu::always_inline]] inline uint32_t encodedSize(const uint8_t* record) {
  const uint64_t size = wire::compactSize<*message.record>(record);
  return size <= message.policy.largestSize ? static_cast<uint32_t>(size) : 0;
}

// Writes a compact message into a buffer that has room for it. Returns what was written.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline size_t encode(uint8_t* buffer, const uint8_t* record) {
  host::bindUnpackAllocator(module);
  const size_t written = wire::writeCompact<*message.record>(buffer, record);
  if (host::byteOrder(module) == host::ByteOrder::Reversed) [[unlikely]] {
    wire::reverseMessage(*message.record, buffer);
  }
  return written;
}

// `length` holds the buffer's room, and on success the message's exact size. A null buffer with
// room enough is logged and counts as success: so callers ask for the size.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t pack(const void* record, uint8_t* buffer, uint32_t* length) {
  if (record == nullptr || length == nullptr) [[unlikely]] {
    return failure;
  }
  const auto* const from = static_cast<const uint8_t*>(record);
  // A buffer that holds the message whatever its values needs no size worked out beforehand.
  constexpr bool isBounded = !wire::ownsMemory(*message.record);
  if (isBounded && buffer != nullptr && *length >= wire::largestCompactSize(*message.record))
      [[likely]] {
    *length = static_cast<uint32_t>(encode<module, message>(buffer, from));
    return success;
  }
  const uint32_t size = encodedSize<message>(from);
  if (size == 0 || *length < size) [[unlikely]] {
    return failure;
  }
  // Room below 4 cannot come here: no message is that small.
  if (buffer == nullptr) [[unlikely]] {
    wire::reportPackParameters(module.env, wire::nameText<*message.record, "_pack">(), buffer,
                               *length, record);
  } else {
    encode<module, message>(buffer, from);
  }
  *length = size;
  return success;
}

}  // namespace mesh::msg
