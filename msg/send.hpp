// __sendsingle, __sendbatch, __sendmsg and __sendtomsg: records become encoded tables, and one
// middleware call takes them all. Every buffer lives for the call alone.
#pragma once

#include <bit>
#include <new>

#include "msg/middleware.hpp"
#include "msg/pack.hpp"
#include "wire/fixed_writer.hpp"

namespace mesh::msg {

// What tells a batch from those of other messages with the same layout.
struct Identity {
  uint32_t id;            // the message's
  const char* operation;  // the exported operation's name
};

// An exported __sendsingle.
template <typename Record>
using SendSingleOf = uint32_t(uint32_t destination, const Record* record, uint64_t unused,
                              uint64_t extra);

// One of whichever record. It takes the same registers.
using AnySendSingle = uint32_t(uint32_t destination, const void* record, uint64_t unused,
                               uint64_t extra);

// Binds the module, then begins again: a call that came back would have every send save registers
// for the one that is the module's first.
uint32_t bindAndSend(uint32_t destination, const void* record, uint64_t unused, uint64_t extra,
                     AnySendSingle* send, host::Module& module);

namespace detail {

// The longest fixed image that is built on the stack.
inline constexpr uint32_t largestOnStack = 1024;

// The tables of a compact batch, back to back, lie in a region of this size; its descriptors
// follow.
inline constexpr uint32_t batchRegion = 0x10000;

// A block of the host's, taken and given back under one operation's name.
template <host::Module& module>
class SendBlock {
 public:
  SendBlock(uint32_t size, const char* operation) : operation_(operation) {
    host::bindHost(module.env);
    data_ = static_cast<uint8_t*>(module.env.memAlloc(size, module.env.memModuleId, operation));
  }
  ~SendBlock() {
    if (data_ != nullptr) {
      host::bindHost(module.env);
      module.env.memFree(data_, module.env.memModuleId, operation_);
    }
  }
  SendBlock(const SendBlock&) = delete;
  SendBlock& operator=(const SendBlock&) = delete;

  [[nodiscard]] uint8_t* data() const { return data_; }

 private:
  uint8_t* data_;
  const char* operation_;
};

inline uint32_t handOver(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                         uint64_t extra) {
  if (extra != 0) [[unlikely]] {
    return MESH_SendToMsg(destination, descriptors, count, extra);
  }
  return MESH_SendMsg(destination, descriptors, count);
}

// Makes the descriptor of a table, in one store.
[[gnu::always_inline]] inline void describe(void* at, const uint8_t* table, uint32_t id,
                                            uint32_t length) {
  using Halves [[gnu::vector_size(sizeof(mesh_msg_desc))]] = uint64_t;
  const Halves halves{reinterpret_cast<uintptr_t>(table), id | uint64_t{length} << 32};
  new (at) mesh_msg_desc(std::bit_cast<mesh_msg_desc>(halves));
}

// Hands one image over, turned round first.
[[gnu::cold, gnu::noinline]] inline uint32_t handOverReversed(uint32_t destination,
                                                              const mesh_msg_desc& descriptor,
                                                              const wire::Schema& schema,
                                                              uint8_t* image, uint64_t extra) {
  wire::reverseMessage(schema, image);
  return handOver(destination, &descriptor, 1, extra);
}

// In a module that is bound.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendImage(uint8_t* image, uint32_t destination,
                                                 const uint8_t* record, uint64_t extra) {
  wire::writeFixedImage<*message.schema>(image, record);
  mesh_msg_desc descriptor;
  describe(&descriptor, image, message.id, wire::fixedLength(*message.schema));
  if (host::byteOrder(module) == host::ByteOrder::Reversed) [[unlikely]] {
    return handOverReversed(destination, descriptor, *message.schema, image, extra);
  }
  return handOver(destination, &descriptor, 1, extra);
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendOnStack(uint32_t destination, const uint8_t* record,
                                                   uint64_t extra) {
  constexpr uint32_t length = wire::fixedLength(*message.schema);
  // Never across two pages: a store that is costs as much as all others together.
  alignas(std::bit_ceil(length)) uint8_t image[length];
  return sendImage<module, message>(image, destination, record, extra);
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendInBlock(uint32_t destination, const uint8_t* record,
                                                   uint64_t extra, const char* operation) {
  const SendBlock<module> block(wire::fixedLength(*message.schema), operation);
  if (block.data() == nullptr) {
    return failure;
  }
  host::bindUnpackAllocator(module);
  return sendImage<module, message>(block.data(), destination, record, extra);
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendOneCompact(uint32_t destination, const uint8_t* record,
                                                      uint64_t extra, const char* operation) {
  if (record == nullptr) {
    return failure;
  }
  const uint32_t size = encodedSize<message>(record);
  if (size == 0) {
    return failure;
  }
  const SendBlock<module> block(size, operation);
  if (block.data() == nullptr) {
    return failure;
  }
  encodeCompact<module, message>(block.data(), record);
  mesh_msg_desc descriptor;
  describe(&descriptor, block.data(), message.id, size);
  return handOver(destination, &descriptor, 1, extra);
}

// Fixed images one after the other, and their descriptors.
template <host::Module& module, const Message& owner>
[[gnu::always_inline]] inline void writeImages(uint8_t* images, mesh_msg_desc* descriptors,
                                               const uint8_t* records, uint32_t count,
                                               uint32_t id) {
  constexpr const wire::Schema& schema = *owner.schema;
  constexpr uint32_t length = wire::fixedLength(schema);
  if (count == 0) {
    return;
  }
  host::bindUnpackAllocator(module);
  uint8_t* image = images;
  mesh_msg_desc* const end = descriptors + count;
  for (; descriptors != end; ++descriptors, image += length, records += schema.size) {
    wire::writeFixedImage<schema>(image, records);
    describe(descriptors, image, id, length);
  }
  if (host::byteOrder(module) == host::ByteOrder::Reversed) [[unlikely]] {
    for (uint8_t* written = images; written != image; written += length) {
      wire::reverseMessage(schema, written);
    }
  }
}

template <host::Module& module, const Message& owner>
[[gnu::always_inline]] inline uint32_t sendManyFixed(uint32_t destination, const uint8_t* records,
                                                     uint32_t count, uint64_t extra,
                                                     Identity identity) {
  constexpr uint32_t length = wire::fixedLength(*owner.schema);
  static_assert(length % alignof(mesh_msg_desc) == 0);
  const uint64_t size = uint64_t{count} * (length + sizeof(mesh_msg_desc));
  // The host is asked for the size modulo 2^32, as its allocator takes it.
  const SendBlock<module> block(static_cast<uint32_t>(size), identity.operation);
  if (block.data() == nullptr || size > UINT32_MAX) {
    return failure;
  }
  uint8_t* const images = block.data();
  auto* const descriptors = reinterpret_cast<mesh_msg_desc*>(images + uint64_t{count} * length);
  writeImages<module, owner>(images, descriptors, records, count, identity.id);
  return handOver(destination, descriptors, count, extra);
}

// Encodes the records into the region, one descriptor each. Fails, with nothing sent, at the first
// record that has no encoding or does not fit the rest of the region.
template <host::Module& module, const Message& owner>
bool encodeBatch(uint8_t* region, mesh_msg_desc* descriptors, const uint8_t* records,
                 uint32_t count, uint32_t id) {
  uint32_t used = 0;
  for (uint64_t index = 0; index < count; ++index) {
    if (used == batchRegion || records == nullptr) {
      return false;
    }
    const uint8_t* const record = records + index * owner.schema->size;
    const uint32_t size = encodedSize<owner>(record);
    if (size == 0 || size > batchRegion - used) {
      return false;
    }
    encodeCompact<module, owner>(region + used, record);
    describe(descriptors + index, region + used, id, size);
    used += size;
  }
  return true;
}

template <host::Module& module, const Message& owner>
[[gnu::always_inline]] inline uint32_t sendManyCompact(uint32_t destination, const uint8_t* records,
                                                       uint32_t count, uint64_t extra,
                                                       Identity identity) {
  const uint64_t size = uint64_t{count} * sizeof(mesh_msg_desc) + batchRegion;
  const SendBlock<module> block(static_cast<uint32_t>(size), identity.operation);
  if (block.data() == nullptr || size > UINT32_MAX) {
    return failure;
  }
  auto* const descriptors = reinterpret_cast<mesh_msg_desc*>(block.data() + batchRegion);
  if (!encodeBatch<module, owner>(block.data(), descriptors, records, count, identity.id)) {
    return failure;
  }
  return handOver(destination, descriptors, count, extra);
}

}  // namespace detail

// One record. In the fixed arrangement the record must not be null. `self` is the exported
// operation that this is the body of.
template <host::Module& module, const Message& message, typename Record>
[[gnu::always_inline]] inline uint32_t sendSingle(uint32_t destination, const Record* record,
                                                  uint64_t unused, uint64_t extra,
                                                  SendSingleOf<Record>* self,
                                                  const char* operation) {
  const auto* const from = reinterpret_cast<const uint8_t*>(record);
  if constexpr (message.policy.arrangement == Arrangement::Compact) {
    return detail::sendOneCompact<module, message>(destination, from, extra, operation);
  } else if constexpr (wire::fixedLength(*message.schema) > detail::largestOnStack) {
    return detail::sendInBlock<module, message>(destination, from, extra, operation);
  } else {
    if (!host::isUnpackAllocatorBound(module)) [[unlikely]] {
      return bindAndSend(destination, record, unused, extra, reinterpret_cast<AnySendSingle*>(self),
                         module);
    }
    return detail::sendOnStack<module, message>(destination, from, extra);
  }
}

// `count` contiguous records: one allocation, one middleware call, one descriptor each.
template <host::Module& module, const Message& owner>
[[gnu::noinline]] uint32_t sendBatch(uint32_t destination, const void* records, uint32_t count,
                                     uint64_t extra, Identity identity) {
  const auto* const from = static_cast<const uint8_t*>(records);
  if constexpr (owner.policy.arrangement == Arrangement::Fixed) {
    return detail::sendManyFixed<module, owner>(destination, from, count, extra, identity);
  } else {
    return detail::sendManyCompact<module, owner>(destination, from, count, extra, identity);
  }
}

// None fails, one is sent by the exported `single`, more as a batch.
template <host::Module& module, const Message& owner, typename Record>
[[gnu::always_inline]] inline uint32_t send(
    uint32_t destination, const Record* records, uint32_t count, uint64_t extra,
    uint32_t (*single)(uint32_t, const Record*, uint64_t, uint64_t), Identity batch) {
  if (count == 0) {
    return failure;
  }
  return count == 1 ? single(destination, records, 0, extra)
                    : sendBatch<module, owner>(destination, records, count, extra, batch);
}

}  // namespace mesh::msg
