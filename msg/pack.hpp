// __pack: a record becomes a compact table in the caller's buffer.
#pragma once

#include "host/binding.hpp"
#include "msg/message.hpp"
#include "msg/result.hpp"
#include "wire/compact_size.hpp"
#include "wire/compact_writer.hpp"
#include "wire/report.hpp"
#include "wire/reverse.hpp"

namespace mesh::msg {

// The exact size of a record's compact message, or 0 for one that cannot be encoded.
template <const Message& message>
[[gnu::always_inline]] inline uint32_t encodedSize(const uint8_t* record) {
  const uint64_t size = wire::compactSize<*message.schema>(record);
  return size <= message.policy.largestSize ? static_cast<uint32_t>(size) : 0;
}

// Writes a compact message into a buffer that has room for it. Returns what was written.
template <host::Module& module, const Message& owner>
[[gnu::always_inline]] inline size_t encode(uint8_t* buffer, const uint8_t* record) {
  host::bindUnpackAllocator(module);
  const size_t written = wire::writeCompact<*owner.schema>(buffer, record);
  if (host::byteOrder(module) == host::ByteOrder::Reversed) [[unlikely]] {
    wire::reverseMessage(*owner.schema, buffer);
  }
  return written;
}

// The same, once for all operations of a message that is sent in the compact arrangement.
template <host::Module& module, const Message& owner>
[[gnu::noinline]] void encodeCompact(uint8_t* buffer, const uint8_t* record) {
  encode<module, owner>(buffer, record);
}

namespace detail {

// The exact size of a record's message where it fits the room, else 0.
template <const Message& owner>
[[gnu::noinline]] uint32_t sizeWithin(uint32_t room, const uint8_t* record) {
  const uint32_t size = encodedSize<owner>(record);
  return size <= room ? size : 0;
}

// Room enough, and no buffer.
[[gnu::cold, gnu::noinline]] inline uint32_t packNowhere(host::serial_env& env,
                                                         const char* function, const void* record,
                                                         uint32_t* length, uint32_t size) {
  wire::reportPackParameters(env, function, nullptr, *length, record);
  *length = size;
  return success;
}

}  // namespace detail

// `length` holds the buffer's room, and on success the message's exact size. A null buffer with
// room enough is logged, under `function`, and counts as success: so callers ask for the size.
template <host::Module& module, const Message& owner>
[[gnu::noinline]] uint32_t pack(const void* record, uint8_t* buffer, uint32_t* length,
                                const char* function) {
  if (record == nullptr || length == nullptr) [[unlikely]] {
    return failure;
  }
  const auto* const from = static_cast<const uint8_t*>(record);
  constexpr bool isBounded = !wire::ownsMemory(*owner.schema);
  static_assert(!isBounded || wire::largestCompactSize(*owner.schema) <= owner.policy.largestSize);
  // A buffer that holds the message whatever its values needs no size worked out beforehand.
  if (!isBounded || buffer == nullptr || *length < wire::largestCompactSize(*owner.schema))
      [[unlikely]] {
    const uint32_t size = detail::sizeWithin<owner>(*length, from);
    if (size == 0) {
      return failure;
    }
    // Room below 4 cannot come here: no message is that small.
    if (buffer == nullptr) [[unlikely]] {
      return detail::packNowhere(module.env, function, record, length, size);
    }
    if constexpr (!isBounded) {
      encodeCompact<module, owner>(buffer, from);
      *length = size;
      return success;
    }
  }
  if constexpr (isBounded) {
    *length = static_cast<uint32_t>(encode<module, owner>(buffer, from));
    return success;
  }
}

}  // namespace mesh::msg
