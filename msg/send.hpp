// __sendsingle, __sendbatch, __sendmsg and __sendtomsg: records become encoded tables, and one
// middleware call takes them all. Every buffer lives for the call alone.
#pragma once

#include <new>

#include "msg/middleware.hpp"
#include "msg/pack.hpp"
#include "wire/fixed_writer.hpp"

namespace mesh::msg {
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
  return extra != 0 ? MESH_SendToMsg(destination, descriptors, count, extra)
                    : MESH_SendMsg(destination, descriptors, count);
}

template <const Message& message>
mesh_msg_desc describe(const uint8_t* table, uint32_t length) {
  return {reinterpret_cast<uintptr_t>(table), message.id, length};
}

// Fixed images one after the other, `count` of them, at least one.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline void writeImages(uint8_t* images, const uint8_t* records,
                                               uint32_t count) {
  constexpr const wire::Record& record = *message.record;
  constexpr uint64_t length = wire::fixedLength(record);
  host::bindUnpackAllocator(module);
  for (uint64_t index = 0; index < count; ++index) {
    wire::writeFixedImage<record>(images + index * length, records + index * record.size);
  }
  if (host::byteOrder(module) == host::ByteOrder::Reversed) [[unlikely]] {
    for (uint64_t index = 0; index < count; ++index) {
      wire::reverseMessage(record, images + index * length);
    }
  }
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendImage(uint8_t* image, uint32_t destination,
                                                 const uint8_t* record, uint64_t extra) {
  writeImages<module, message>(image, record, 1);
  const mesh_msg_desc descriptor = describe<message>(image, wire::fixedLength(*message.record));
  return handOver(destination, &descriptor, 1, extra);
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendOneFixed(uint32_t destination, const uint8_t* record,
                                                    uint64_t extra) {
  constexpr uint32_t length = wire::fixedLength(*message.record);
  if constexpr (length <= largestOnStack) {
    alignas(16) uint8_t image[length];
    return sendImage<module, message>(image, destination, record, extra);
  } else {
    const SendBlock<module> block(length, wire::nameText<*message.record, "__sendsingle">());
    if (block.data() == nullptr) {
      return failure;
    }
    return sendImage<module, message>(block.data(), destination, record, extra);
  }
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendOneCompact(uint32_t destination, const uint8_t* record,
                                                      uint64_t extra) {
  if (record == nullptr) {
    return failure;
  }
  const uint32_t size = encodedSize<message>(record);
  if (size == 0) {
    return failure;
  }
  const SendBlock<module> block(size, wire::nameText<*message.record, "__sendsingle">());
  if (block.data() == nullptr) {
    return failure;
  }
  encode<module, message>(block.data(), record);
  const mesh_msg_desc descriptor = describe<message>(block.data(), size);
  return handOver(destination, &descriptor, 1, extra);
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendManyFixed(uint32_t destination, const uint8_t* records,
                                                     uint32_t count, uint64_t extra) {
  constexpr uint32_t length = wire::fixedLength(*message.record);
  static_assert(length % alignof(mesh_msg_desc) == 0);
  const uint64_t size = uint64_t{count} * (length + sizeof(mesh_msg_desc));
  // The host is asked for the size modulo 2^32, as its allocator takes it.
  const SendBlock<module> block(static_cast<uint32_t>(size),
                                wire::nameText<*message.record, "__sendbatch">());
  if (block.data() == nullptr || size > UINT32_MAX) {
    return failure;
  }
  uint8_t* const images = block.data();
  auto* const descriptors = reinterpret_cast<mesh_msg_desc*>(images + uint64_t{count} * length);
  if (count > 0) {
    writeImages<module, message>(images, records, count);
  }
  for (uint64_t index = 0; index < count; ++index) {
    new (descriptors + index) mesh_msg_desc(describe<message>(images + index * length, length));
  }
  return handOver(destination, descriptors, count, extra);
}

// Encodes the records into the region, one descriptor each. Fails, with nothing sent, at the first
// record that has no encoding or does not fit the rest of the region.
template <host::Module& module, const Message& message>
bool encodeBatch(uint8_t* region, mesh_msg_desc* descriptors, const uint8_t* records,
                 uint32_t count) {
  uint32_t used = 0;
  for (uint64_t index = 0; index < count; ++index) {
    if (used == batchRegion || records == nullptr) {
      return false;
    }
    const uint8_t* const record = records + index * message.record->size;
    const uint32_t size = encodedSize<message>(record);
    if (size == 0 || size > batchRegion - used) {
      return false;
    }
    encode<module, message>(region + used, record);
    new (descriptors + index) mesh_msg_desc(describe<message>(region + used, size));
    used += size;
  }
  return true;
}

template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t sendManyCompact(uint32_t destination, const uint8_t* records,
                                                       uint32_t count, uint64_t extra) {
  const uint64_t size = uint64_t{count} * sizeof(mesh_msg_desc) + batchRegion;
  const SendBlock<module> block(static_cast<uint32_t>(size),
                                wire::nameText<*message.record, "__sendbatch">());
  if (block.data() == nullptr || size > UINT32_MAX) {
    return failure;
  }
  auto* const descriptors = reinterpret_cast<mesh_msg_desc*>(block.data() + batchRegion);
  if (!encodeBatch<module, message>(block.data(), descriptors, records, count)) {
    return failure;
  }
  return handOver(destination, descriptors, count, extra);
}

}  // namespace detail

// One record. In the fixed arrangement the record must not be null.
template <host::Module& module, const Message& message>
[[gnu::noinline]] uint32_t sendSingle(uint32_t destination, const void* record, uint64_t /*unused*/,
                                      uint64_t extra) {
  const auto* const from = static_cast<const uint8_t*>(record);
  if constexpr (message.policy.arrangement == Arrangement::Fixed) {
    return detail::sendOneFixed<module, message>(destination, from, extra);
  } else {
    return detail::sendOneCompact<module, message>(destination, from, extra);
  }
}

// `count` contiguous records: one allocation, one middleware call, one descriptor each.
template <host::Module& module, const Message& message>
[[gnu::noinline]] uint32_t sendBatch(uint32_t destination, const void* records, uint32_t count,
                                     uint64_t extra) {
  const auto* const from = static_cast<const uint8_t*>(records);
  if constexpr (message.policy.arrangement == Arrangement::Fixed) {
    return detail::sendManyFixed<module, message>(destination, from, count, extra);
  } else {
    return detail::sendManyCompact<module, message>(destination, from, count, extra);
  }
}

// None fails, one is sent singly, more as a batch.
template <host::Module& module, const Message& message>
[[gnu::always_inline]] inline uint32_t send(uint32_t destination, const void* records,
                                            uint32_t count, uint64_t extra) {
  if (count == 0) {
    return failure;
  }
  return count == 1 ? sendSingle<module, message>(destination, records, 0, extra)
                    : sendBatch<module, message>(destination, records, count, extra);
}

}  // namespace mesh::msg
