// A service's receive module: __unpack, _free__unpacked and _recv_init.
#pragma once

#include "msg/message.hpp"
#include "msg/middleware.hpp"
#include "wire/fixed_image.hpp"
#include "wire/quick_reader.hpp"

namespace mesh::msg {

using wire::Decoded;
using wire::Decoder;

// Releases every out-of-line part of a record, in slot order, and sets its pointer to null. Calls
// the host's free for null pointers too. Lengths and counts stay. `function` is the message's own
// release text, also for the parts of nested records.
template <host::Module& module, const wire::Schema& schema>
void releaseParts(uint8_t* into, const char* function) {
  wire::forEachSlot<schema>([&](auto index) {
    constexpr const wire::Slot& slot = schema.slots[index];
    uint8_t* const field = into + slot.recordOffset;
    if constexpr (slot.kind == wire::Kind::Table && wire::ownsMemory(*slot.nested)) {
      releaseParts<module, *slot.nested>(field, function);
    } else if constexpr (wire::isOutOfLine(slot.kind)) {
      static_assert(slot.nested == nullptr || !wire::ownsMemory(*slot.nested),
                    "the items of a vector own nothing yet");
      module.env.unpackFree(host::load<uint8_t*>(field), host::unpackOwner, function);
      host::store<uint8_t*>(field, nullptr);
    }
  });
}

// Releases what decoding allocated inside the record; the record itself is the caller's.
template <host::Module& module, const Message& message>
[[gnu::flatten]] void freeUnpacked(void* record) {
  if constexpr (wire::ownsMemory(*message.schema)) {
    host::bindCodec(module);
    if (record != nullptr) {
      releaseParts<module, *message.schema>(static_cast<uint8_t*>(record),
                                            message.schema->releaser);
    }
  }
}

// What decoding asks of its caller. A root head that the message itself rejects needs no release:
// the record is untouched.
enum class [[nodiscard]] Outcome : bool{
    Finished,
    ReleaseParts,
};

template <host::ByteOrder order>
Outcome decodeSlotBySlot(host::Module& module, const Message& message, const uint8_t* data,
                         uint32_t length, uint8_t* into) {
  const wire::Schema& schema = *message.schema;
  const wire::Buffer<order> buffer{data, length};
  const wire::SlotReader<order> reader(module.env, buffer);
  const auto table = buffer.template read<uint32_t>(0);
  wire::Head head;
  const bool isByMessage = message.policy.rootDecoding == RootDecoding::ByMessage;
  if (isByMessage && reader.locateTable(schema.rootReader, table, head) == Decoded::No) {
    reader.probeRejection(message.id);
    return Outcome::Finished;
  }
  host::bindCodec(module);
  host::clearRecord(into, schema.size);
  const Decoded decoded = isByMessage ? reader.decodeSlots(schema, Decoder::Root, head, into)
                                      : reader.decodeTable(schema, table, into);
  if (decoded == Decoded::Yes) {
    return Outcome::Finished;
  }
  reader.probeRejection(message.id);
  return Outcome::ReleaseParts;
}

// Decodes any buffer of at least 4 bytes.
[[gnu::noinline]] inline Outcome decodeAny(host::Module& module, const Message& message,
                                           host::ByteOrder order, const uint8_t* data,
                                           uint32_t length, uint8_t* into) {
  return order == host::ByteOrder::Host
             ? decodeSlotBySlot<host::ByteOrder::Host>(module, message, data, length, into)
             : decodeSlotBySlot<host::ByteOrder::Reversed>(module, message, data, length, into);
}

// Chooses the reader. A module that is not bound yet takes the slot reader, so that no quick reader
// spills registers for a call that binds. `owner` gives the layout, `message` the names.
template <host::Module& module, const Message& owner>
Outcome decode(const Message& message, const uint8_t* data, uint32_t length, uint8_t* into) {
  constexpr const wire::Schema& schema = *owner.schema;
  const host::ByteOrder order = host::byteOrder(module);
  if (order == host::ByteOrder::Host && host::isCodecBound(module)) [[likely]] {
    const wire::HostBuffer buffer{data, length};
    if constexpr (wire::hasFixedArrangement(schema)) {
      if (wire::hasFixedTemplate<schema>(buffer)) {
        wire::readFixedImage<schema>(into, data);
        return Outcome::Finished;
      }
    }
    if constexpr (wire::hasQuickReader(schema)) {
      if (wire::readSoundTable<schema>(buffer, buffer.read<uint32_t>(0), into)) [[likely]] {
        if constexpr (wire::ownsMemory(schema)) {
          constexpr auto decoder =
              owner.policy.rootDecoding == RootDecoding::ByMessage ? Decoder::Root : Decoder::Table;
          return wire::takeParts<schema, decoder>(module.env, into) == Decoded::Yes
                     ? Outcome::Finished
                     : Outcome::ReleaseParts;
        }
        return Outcome::Finished;
      }
    }
  }
  return decodeAny(module, message, order, data, length, into);
}

// Verifies the buffer as a table of the message and fills the record. Returns the record's size,
// whatever happened: a rejection shows in the log and in a record without out-of-line parts.
template <host::Module& module, const Message& owner>
[[gnu::noinline, gnu::flatten]] uint32_t unpack(const uint8_t* data, uint32_t length, void* record,
                                                const Message& message) {
  if (data == nullptr || static_cast<int32_t>(length) < 4 || record == nullptr) [[unlikely]] {
    host::reportUnpackParameters(module.env, message.schema->rootReader, data, length, record);
  } else if (decode<module, owner>(message, data, length, static_cast<uint8_t*>(record)) ==
             Outcome::ReleaseParts) {
    freeUnpacked<module, owner>(record);
  }
  return owner.schema->size;
}

// What the middleware needs of one message to deliver it.
struct Hook {
  uint32_t id;
  mesh_unpack_hook unpack;
  mesh_free_hook release;
};

// Registers the hooks in order, up to the first result that is not 0, and returns the last result.
// Registrations made before a failure stay.
inline uint32_t registerHooks(std::span<const Hook> hooks) {
  for (const Hook& hook : hooks) {
    const uint32_t result = MESH_RegIDLFuncHook(hook.id, hook.unpack, hook.release);
    if (result != success) {
      return result;
    }
  }
  return success;
}

}  // namespace mesh::msg

// The module of a service, from its list of messages.
#define MESH_DEFINE_RECEIVE_MODULE(service, list)             \
  MESH_DEFINE_MODULE(service, receiveModule)                  \
  extern "C" uint32_t service##_recv_init() {                 \
    static const mesh::msg::Hook hooks[] = {list(MESH_HOOK)}; \
    return mesh::msg::registerHooks(hooks);                   \
  }                                                           \
  list(MESH_DEFINE_RECEIVE)

// The middleware calls the functions of all messages through one type, which names no record.
#define MESH_HOOK(message, identifier)                                                \
  mesh::msg::Hook{identifier, reinterpret_cast<mesh_unpack_hook>(&message##__unpack), \
                  reinterpret_cast<mesh_free_hook>(&message##_free__unpacked)},

#define MESH_DEFINE_RECEIVE(message, identifier)                                                 \
  static_assert(mesh::msg::messageOf<message>.id == identifier, "not the hash of the name");     \
  extern "C" uint32_t message##__unpack(const uint8_t* data, uint32_t length, message* record) { \
    return mesh::msg::unpack<MESH_SERVED_BY(message)>(data, length, record,                      \
                                                      mesh::msg::messageOf<message>);            \
  }                                                                                              \
  extern "C" void message##_free__unpacked(message* record) {                                    \
    mesh::msg::freeUnpacked<MESH_SERVED_BY(message)>(record);                                    \
  }
