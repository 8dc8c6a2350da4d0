// __unpack and _free__unpacked.
#pragma once

#include "msg/in_byte_order.hpp"
#include "msg/message.hpp"
#include "wire/reader.hpp"
#include "wire/release.hpp"

namespace mesh::msg {

// Releases what decoding allocated inside the record; the record itself is the caller's.
template <host::Module& module, const Message& message>
void freeUnpacked(void* record) {
  if constexpr (wire::ownsMemory(*message.record)) {
    host::bindUnpackAllocator(module);
    if (record == nullptr) {
      return;
    }
    wire::releaseParts<module, *message.record>(
        static_cast<uint8_t*>(record), wire::nameText<*message.record, "_free_unpacked">());
  }
}

namespace detail {

// The record is untouched until the frame has been found good.
template <host::Module& module, const Message& message, host::ByteOrder order>
[[gnu::always_inline]] inline void unpackByMessage(wire::Buffer<order> buffer, uint8_t* into) {
  constexpr const wire::Record& record = *message.record;
  constexpr const char* function = wire::decoderName<record, wire::Decoder::Root>();
  const auto table = buffer.template read<uint32_t>(0);
  wire::TableFrame frame;
  if (wire::locateTable(module.env, function, buffer, table, frame) == wire::Decoded::No)
      [[unlikely]] {
    return;
  }
  host::bindUnpackAllocator(module);
  host::clearConstant<record.size>(into);
  if (wire::decodeSlots<module, record, wire::Decoder::Root>(buffer, frame, into) ==
      wire::Decoded::No) {
    freeUnpacked<module, message>(into);
  }
}

// The record comes back cleared where the frame is bad.
template <host::Module& module, const Message& message, host::ByteOrder order>
[[gnu::always_inline]] inline void unpackByTableReader(wire::Buffer<order> buffer, uint8_t* into) {
  constexpr const wire::Record& record = *message.record;
  const auto table = buffer.template read<uint32_t>(0);
  host::bindUnpackAllocator(module);
  host::clearConstant<record.size>(into);
  if (wire::decodeTable<module, record>(buffer, into, table) == wire::Decoded::No) {
    freeUnpacked<module, message>(into);
  }
}

}  // namespace detail

// Verifies the buffer as a table of the message and fills the record. Returns the record's size,
// whatever happened: a rejection shows in the log and in a record without out-of-line parts.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t unpack(const uint8_t* data, uint32_t length, void* record) {
  if (data == nullptr || static_cast<int32_t>(length) < 4 || record == nullptr) [[unlikely]] {
    wire::reportUnpackParameters(module.env, wire::nameText<*message.record, "_unpack">(), data,
                                 length, record);
    return message.record->size;
  }
  inByteOrder(module, [=]<host::ByteOrder order>() {
    const wire::Buffer<order> buffer{data, length};
    if constexpr (message.policy.rootDecoding == RootDecoding::ByMessage) {
      detail::unpackByMessage<module, message>(buffer, static_cast<uint8_t*>(record));
    } else {
      detail::unpackByTableReader<module, message>(buffer, static_cast<uint8_t*>(record));
    }
  });
  return message.record->size;
}

}  // namespace mesh::msg
