// __unpack and _free__unpacked.
#pragma once

#include "msg/message.hpp"
#include "wire/compact_reader.hpp"
#include "wire/fixed_reader.hpp"
#include "wire/release.hpp"
#include "wire/report.hpp"

namespace mesh::msg {

// Releases what decoding allocated inside the record; the record itself is the caller's.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline void freeUnpacked(void* record) {
  if constexpr (wire::ownsMemory(*message.schema)) {
    host::bindUnpackAllocator(module);
    if (record == nullptr) {
      return;
    }
    wire::releaseParts<module, *message.schema>(static_cast<uint8_t*>(record),
                                                message.schema->releaser);
  }
}

// Decodes any buffer of 4 bytes at least, slot by slot: this decides what is logged, and what a
// buffer that is not in order leaves in the record. After a No the record's parts are to be
// released; a bad frame at the root of a message that decodes itself is no No, as it has none.
wire::Decoded decodeAny(host::Module& module, const Message& message, host::ByteOrder order,
                        const uint8_t* data, uint32_t length, uint8_t* into);

namespace detail {

// The quick ways, for buffers in the host's byte order that are in order. A module that is not
// bound yet takes the long way once, so that no message saves registers for a call that binds.
// `owner` gives the layout, `message` the names.
template <host::Module& module, const Message& owner>
[[gnu::always_inline]] inline wire::Decoded decode(const Message& message, const uint8_t* data,
                                                   uint32_t length, uint8_t* into) {
  constexpr const wire::Schema& schema = *owner.schema;
  const host::ByteOrder order = host::byteOrder(module);
  if (order == host::ByteOrder::Host && host::isUnpackAllocatorBound(module)) [[likely]] {
    const wire::HostBuffer buffer{data, length};
    if constexpr (wire::hasFixedArrangement(schema)) {
      if (wire::hasFixedFrame<schema>(buffer)) {
        wire::readFixedImage<schema>(into, data);
        return wire::Decoded::Yes;
      }
    }
    if constexpr (wire::hasQuickReader(schema)) {
      wire::SoundParts<*owner.schema> parts;
      if (wire::verifySound<schema>(buffer, parts)) [[likely]] {
        constexpr auto decoder = owner.policy.rootDecoding == RootDecoding::ByMessage
                                     ? wire::Decoder::Root
                                     : wire::Decoder::Table;
        return wire::fillRecord<module, schema, decoder>(data, parts, into);
      }
    }
  }
  return decodeAny(module, message, order, data, length, into);
}

}  // namespace detail

// Verifies the buffer as a table of the message and fills the record. Returns the record's size,
// whatever happened: a rejection shows in the log and in a record without out-of-line parts.
template <host::Module& module, const Message& owner>
[[gnu::noinline]] uint32_t unpack(const uint8_t* data, uint32_t length, void* record,
                                  const Message& message) {
  if (data == nullptr || static_cast<int32_t>(length) < 4 || record == nullptr) [[unlikely]] {
    wire::reportUnpackParameters(module.env, message.schema->rootReader, data, length, record);
  } else if (detail::decode<module, owner>(message, data, length, static_cast<uint8_t*>(record)) ==
             wire::Decoded::No) {
    freeUnpacked<module, owner>(record);
  }
  return owner.schema->size;
}

}  // namespace mesh::msg
