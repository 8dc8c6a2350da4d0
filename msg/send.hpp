// A service's send module: __pack, __sendsingle, __sendbatch, __sendmsg, __sendtomsg and
// _send_init.
//
// A sender encodes its records and passes all of them to the middleware in one call. Buffers live
// only for this call. A probe fires for a send that fails before; the middleware's own result
// passes unseen, as sends end in a tail call.
#pragma once

#include <bit>
#include <new>

#include "msg/middleware.hpp"
#include "msg/pack.hpp"
#include "wire/fixed_image.hpp"

namespace mesh::msg {

// What distinguishes messages of the same layout in a batch.
struct Identity {
  uint32_t id;            // the message's
  const char* operation;  // the exported operation's name
};

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

// Fails a send before it reaches the middleware, in a function of its own. Fixed batches, whose
// block alone can fail them, do without: with it they would save one register more.
#ifdef MESH_L2VPN_PROBES
[[gnu::cold, gnu::noinline]] inline uint32_t failProbed(uint32_t id) {
  MESH_PROBE2(send_failed, id, failure);
  return failure;
}
#define MESH_FAIL_SEND(id) failProbed(id)
#else
#define MESH_FAIL_SEND(id) failure
#endif

inline uint32_t handOver(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                         uint64_t extra) {
  if (extra != 0) [[unlikely]] {
    return MESH_SendToMsg(destination, descriptors, count, extra);
  }
  return MESH_SendMsg(destination, descriptors, count);
}

// Makes the descriptor of a table, in one store.
inline void describe(void* at, const uint8_t* table, uint32_t id, uint32_t length) {
  using Halves [[gnu::vector_size(sizeof(mesh_msg_desc))]] = uint64_t;
  const Halves halves{reinterpret_cast<uintptr_t>(table), id | uint64_t{length} << 32};
  new (at) mesh_msg_desc(std::bit_cast<mesh_msg_desc>(halves));
}

// One image of a module that is not bound yet, or whose wire is byte-reversed. A tail call: other
// sends spill no registers for it.
[[gnu::cold, gnu::noinline]] inline uint32_t sendSlowly(host::Module& module,
                                                        const Message& message,
                                                        uint32_t destination, const uint8_t* record,
                                                        uint64_t extra) {
  host::bindCodec(module);
  uint8_t image[largestOnStack];
  wire::writeImageAtRunTime(*message.schema, image, record);
  if (host::byteOrder(module) == host::ByteOrder::Reversed) {
    wire::reverseMessage(*message.schema, image);
  }
  mesh_msg_desc descriptor;
  describe(&descriptor, image, message.id, wire::fixedLength(*message.schema));
  return handOver(destination, &descriptor, 1, extra);
}

template <host::Module& module, const Message& message>
uint32_t sendOnStack(uint32_t destination, const uint8_t* record, uint64_t extra) {
  if (!host::isCodecBound(module) || host::byteOrder(module) == host::ByteOrder::Reversed)
      [[unlikely]] {
    return sendSlowly(module, message, destination, record, extra);
  }
  constexpr uint32_t length = wire::fixedLength(*message.schema);
  // Never across two pages: one store across pages costs as much as all the others.
  alignas(std::bit_ceil(length)) uint8_t image[length];
  wire::writeFixedImage<*message.schema>(image, record);
  mesh_msg_desc descriptor;
  describe(&descriptor, image, message.id, length);
  return handOver(destination, &descriptor, 1, extra);
}

// Fixed images one after the other, and their descriptors.
template <host::Module& module, const Message& owner>
void writeImages(uint8_t* images, mesh_msg_desc* descriptors, const uint8_t* records,
                 uint32_t count, uint32_t id) {
  constexpr const wire::Schema& schema = *owner.schema;
  constexpr uint32_t length = wire::fixedLength(schema);
  if (count == 0) {
    return;
  }
  host::bindCodec(module);
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

template <host::Module& module, const Message& message>
uint32_t sendInBlock(uint32_t destination, const uint8_t* record, uint64_t extra,
                     const char* operation) {
  const SendBlock<module> block(wire::fixedLength(*message.schema), operation);
  if (block.data() == nullptr) {
    return MESH_FAIL_SEND(message.id);
  }
  mesh_msg_desc descriptor;
  writeImages<module, message>(block.data(), &descriptor, record, 1, message.id);
  return handOver(destination, &descriptor, 1, extra);
}

template <host::Module& module, const Message& owner>
uint32_t sendManyFixed(uint32_t destination, const uint8_t* records, uint32_t count, uint64_t extra,
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

template <host::Module& module, const Message& message>
uint32_t sendOneCompact(uint32_t destination, const uint8_t* record, uint64_t extra,
                        const char* operation) {
  if (record == nullptr) {
    return MESH_FAIL_SEND(message.id);
  }
  const uint32_t size = encodedSize<message>(record);
  if (size == 0) {
    return MESH_FAIL_SEND(message.id);
  }
  const SendBlock<module> block(size, operation);
  if (block.data() == nullptr) {
    return MESH_FAIL_SEND(message.id);
  }
  encodeCompact<module, message>(block.data(), record);
  mesh_msg_desc descriptor;
  describe(&descriptor, block.data(), message.id, size);
  return handOver(destination, &descriptor, 1, extra);
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
uint32_t sendManyCompact(uint32_t destination, const uint8_t* records, uint32_t count,
                         uint64_t extra, Identity identity) {
  const uint64_t size = uint64_t{count} * sizeof(mesh_msg_desc) + batchRegion;
  const SendBlock<module> block(static_cast<uint32_t>(size), identity.operation);
  if (block.data() == nullptr || size > UINT32_MAX) {
    return MESH_FAIL_SEND(identity.id);
  }
  auto* const descriptors = reinterpret_cast<mesh_msg_desc*>(block.data() + batchRegion);
  if (!encodeBatch<module, owner>(block.data(), descriptors, records, count, identity.id)) {
    return MESH_FAIL_SEND(identity.id);
  }
  return handOver(destination, descriptors, count, extra);
}

// One record. In the fixed arrangement the record must not be null.
template <host::Module& module, const Message& message>
uint32_t sendSingle(uint32_t destination, const void* record, uint64_t extra,
                    const char* operation) {
  const auto* const from = static_cast<const uint8_t*>(record);
  if constexpr (message.policy.arrangement == Arrangement::Compact) {
    return sendOneCompact<module, message>(destination, from, extra, operation);
  } else if constexpr (wire::fixedLength(*message.schema) > largestOnStack) {
    return sendInBlock<module, message>(destination, from, extra, operation);
  } else {
    return sendOnStack<module, message>(destination, from, extra);
  }
}

// `count` contiguous records: one allocation, one middleware call, one descriptor each.
template <host::Module& module, const Message& owner>
[[gnu::noinline, gnu::flatten]] uint32_t sendBatch(uint32_t destination, const void* records,
                                                   uint32_t count, uint64_t extra,
                                                   Identity identity) {
  const auto* const from = static_cast<const uint8_t*>(records);
  if constexpr (owner.policy.arrangement == Arrangement::Fixed) {
    return sendManyFixed<module, owner>(destination, from, count, extra, identity);
  } else {
    return sendManyCompact<module, owner>(destination, from, count, extra, identity);
  }
}

}  // namespace mesh::msg

// The module of a service, from its list of messages.
#define MESH_DEFINE_SEND_MODULE(service, list)                               \
  MESH_DEFINE_MODULE(service, sendModule)                                    \
  extern "C" uint32_t service##_send_init() {                                \
    return MESH_RegIDLResorceCleanFuncHook(&service##__send_resource_clean); \
  }                                                                          \
  extern "C" void service##__send_resource_clean() {}                        \
  list(MESH_DEFINE_SEND)

// No record fails, one is sent by __sendsingle, more as a batch.
#define MESH_SEND(message, identifier, destination, records, count, extra) \
  count == 0   ? mesh::msg::failure                                        \
  : count == 1 ? message##__sendsingle(destination, records, 0, extra)     \
               : mesh::msg::sendBatch<MESH_SERVED_BY(message)>(            \
                     destination, records, count, extra, {identifier, #message "__sendbatch"})

#define MESH_DEFINE_SEND(message, identifier)                                                     \
  static_assert(mesh::msg::messageOf<message>.id == identifier, "not the hash of the name");      \
  extern "C" uint32_t message##__pack(const message* record, uint8_t* buffer, uint32_t* length) { \
    return mesh::msg::pack<MESH_SERVED_BY(message)>(record, buffer, length, #message "_pack");    \
  }                                                                                               \
  extern "C" [[gnu::flatten]] uint32_t message##__sendsingle(                                     \
      uint32_t destination, const message* record, uint64_t /*unused*/, uint64_t extra) {         \
    return mesh::msg::sendSingle<module, mesh::msg::messageOf<message>>(                          \
        destination, record, extra, #message "__sendsingle");                                     \
  }                                                                                               \
  extern "C" uint32_t message##__sendbatch(uint32_t destination, const message* records,          \
                                           uint32_t count, uint64_t extra) {                      \
    return mesh::msg::sendBatch<MESH_SERVED_BY(message)>(destination, records, count, extra,      \
                                                         {identifier, #message "__sendbatch"});   \
  }                                                                                               \
  extern "C" uint32_t message##__sendtomsg(uint32_t destination, const message* records,          \
                                           uint32_t count, uint64_t extra) {                      \
    return MESH_SEND(message, identifier, destination, records, count, extra);                    \
  }                                                                                               \
  extern "C" uint32_t message##__sendmsg(uint32_t destination, const message* records,            \
                                         uint32_t count) {                                        \
    return MESH_SEND(message, identifier, destination, records, count, 0);                        \
  }
