// __pack: a record becomes a compact message in the caller's buffer.
#pragma once

#include "host/log.hpp"
#include "msg/message.hpp"
#include "wire/compact_writer.hpp"
#include "wire/slow_writer.hpp"

namespace mesh::msg {

// The exact size of a record's compact message, or 0 for one that cannot be encoded.
template <const Message& message>
uint32_t encodedSize(const uint8_t* from) {
  const uint64_t size = wire::compactSize<*message.schema>(from);
  return size <= message.policy.largestSize ? static_cast<uint32_t>(size) : 0;
}

// Writes a compact message into a buffer that has room for it. Returns what was written.
template <host::Module& module, const Message& owner>
size_t encode(uint8_t* buffer, const uint8_t* from) {
  host::bindCodec(module);
  const size_t written = wire::writeCompact<*owner.schema>(buffer, from);
  if (host::byteOrder(module) == host::ByteOrder::Reversed) [[unlikely]] {
    wire::reverseMessage(*owner.schema, buffer);
  }
  return written;
}

// The same, as one function that all operations of a compact message share.
template <host::Module& module, const Message& owner>
[[gnu::noinline, gnu::flatten]] void encodeCompact(uint8_t* buffer, const uint8_t* from) {
  encode<module, owner>(buffer, from);
}

// The exact size of a record's message where it fits the room, else 0.
template <const Message& owner>
[[gnu::noinline, gnu::flatten]] uint32_t sizeWithin(uint32_t room, const uint8_t* from) {
  const uint32_t size = encodedSize<owner>(from);
  return size <= room ? size : 0;
}

// The room is enough, but there is no buffer: logs, and states the size.
[[gnu::cold, gnu::noinline]] inline uint32_t reportSizeOnly(host::serial_env& env,
                                                            const char* function,
                                                            const void* record, uint32_t* length,
                                                            uint32_t size) {
  host::reportPackParameters(env, function, nullptr, *length, record);
  *length = size;
  return success;
}

// A record with out-of-line parts: measured, then written.
template <host::Module& module, const Message& owner>
uint32_t packMeasured(const uint8_t* from, uint8_t* buffer, uint32_t* length,
                      const char* function) {
  const uint32_t size = sizeWithin<owner>(*length, from);
  if (size == 0) {
    return failure;
  }
  if (buffer == nullptr) [[unlikely]] {
    return reportSizeOnly(module.env, function, from, length, size);
  }
  encodeCompact<module, owner>(buffer, from);
  *length = size;
  return success;
}

// A record without out-of-line parts. A buffer that holds the largest message is written at once;
// the writer returns the size.
template <host::Module& module, const Message& owner>
uint32_t packBounded(const uint8_t* from, uint8_t* buffer, uint32_t* length, const char* function) {
  constexpr uint64_t largest = wire::largestCompactSize(*owner.schema);
  static_assert(largest <= owner.policy.largestSize);
  if (buffer == nullptr || *length < largest) [[unlikely]] {
    const uint32_t size = sizeWithin<owner>(*length, from);
    if (size == 0) {
      return failure;
    }
    if (buffer == nullptr) {
      return reportSizeOnly(module.env, function, from, length, size);
    }
  }
  *length = static_cast<uint32_t>(encode<module, owner>(buffer, from));
  return success;
}

// `length` is the buffer's room on entry, and the message's exact size on success. A null buffer
// with enough room is logged under `function` and counts as success: callers ask for the size this
// way.
template <host::Module& module, const Message& owner>
[[gnu::noinline, gnu::flatten]] uint32_t pack(const void* record, uint8_t* buffer, uint32_t* length,
                                              const char* function) {
  if (record == nullptr || length == nullptr) [[unlikely]] {
    return failure;
  }
  const auto* const from = static_cast<const uint8_t*>(record);
  if constexpr (wire::ownsMemory(*owner.schema)) {
    return packMeasured<module, owner>(from, buffer, length, function);
  } else {
    return packBounded<module, owner>(from, buffer, length, function);
  }
}

}  // namespace mesh::msg
