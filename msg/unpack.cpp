#include "msg/unpack.hpp"

namespace mesh::msg {
namespace {

using wire::Decoded;
using wire::Decoder;

// The record is untouched until the frame has been found good.
template <host::ByteOrder order>
Decoded decodeByMessage(host::Module& module, const wire::Schema& schema,
                        wire::Buffer<order> buffer, uint8_t* into) {
  const auto table = buffer.template read<uint32_t>(0);
  wire::TableFrame frame;
  if (wire::locateTable(module.env, schema.rootReader, buffer, table, frame) == Decoded::No) {
    return Decoded::Yes;
  }
  host::bindUnpackAllocator(module);
  host::clearRecord(into, schema.size);
  return wire::decodeSlots(module.env, schema, Decoder::Root, buffer, frame, into);
}

// The record comes back cleared where the frame is bad.
template <host::ByteOrder order>
Decoded decodeByTableReader(host::Module& module, const wire::Schema& schema,
                            wire::Buffer<order> buffer, uint8_t* into) {
  const auto table = buffer.template read<uint32_t>(0);
  host::bindUnpackAllocator(module);
  host::clearRecord(into, schema.size);
  return wire::decodeTable(module.env, schema, buffer, into, table);
}

template <host::ByteOrder order>
Decoded decodeIn(host::Module& module, const Message& message, wire::Buffer<order> buffer,
                 uint8_t* into) {
  return message.policy.rootDecoding == RootDecoding::ByMessage
             ? decodeByMessage(module, *message.schema, buffer, into)
             : decodeByTableReader(module, *message.schema, buffer, into);
}

}  // namespace

Decoded decodeAny(host::Module& module, const Message& message, host::ByteOrder order,
                  const uint8_t* data, uint32_t length, uint8_t* into) {
  using host::ByteOrder;
  return order == ByteOrder::Host
             ? decodeIn(module, message, wire::Buffer<ByteOrder::Host>{data, length}, into)
             : decodeIn(module, message, wire::Buffer<ByteOrder::Reversed>{data, length}, into);
}

}  // namespace mesh::msg
