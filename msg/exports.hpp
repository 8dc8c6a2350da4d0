// The exported operations of a message, as one-line shells over the engine. A service's receive
// module and its send module each expand one of these over the service's list of messages; `module`
// there names the module that the operations belong to.
#pragma once

#include "msg/registration.hpp"
#include "msg/send.hpp"
#include "msg/unpack.hpp"

// What serves a message, as template arguments: the module, and the message whose code it is.
#define MESH_SERVED_BY(message) module, mesh::msg::layoutOwnerOf<message>

#define MESH_DEFINE_RECEIVE(message, identifier)                                                 \
  static_assert(mesh::msg::messageOf<message>.id == identifier, "not the hash of the name");     \
  extern "C" uint32_t message##__unpack(const uint8_t* data, uint32_t length, message* record) { \
    return mesh::msg::unpack<MESH_SERVED_BY(message)>(data, length, record,                      \
                                                      mesh::msg::messageOf<message>);            \
  }                                                                                              \
  extern "C" void message##_free__unpacked(message* record) {                                    \
    mesh::msg::freeUnpacked<MESH_SERVED_BY(message)>(record);                                    \
  }

// The middleware calls every message's functions by one type, which names no record.
#define MESH_HOOK(message, identifier)                                    \
  mesh::msg::Hook{mesh::msg::messageOf<message>.id,                       \
                  reinterpret_cast<mesh_unpack_hook>(&message##__unpack), \
                  reinterpret_cast<mesh_free_hook>(&message##_free__unpacked)},

// A second name of an exported operation, for this library's own calls of it: those of the exported
// one go through the linkage table, as another library might define it. Hidden in the shared
// object; in the static library it is a name like any other.
#define MESH_LOCAL_NAME(operation) \
  extern "C"                       \
      [[gnu::alias(#operation), gnu::visibility("hidden")]] decltype(operation) operation##_local;

#define MESH_DEFINE_SEND(message, identifier)                                                     \
  static_assert(mesh::msg::messageOf<message>.id == identifier, "not the hash of the name");      \
  extern "C" uint32_t message##__pack(const message* record, uint8_t* buffer, uint32_t* length) { \
    return mesh::msg::pack<MESH_SERVED_BY(message)>(record, buffer, length, #message "_pack");    \
  }                                                                                               \
  MESH_LOCAL_NAME(message##__sendsingle)                                                          \
  extern "C" uint32_t message##__sendsingle(uint32_t destination, const message* record,          \
                                            uint64_t unused, uint64_t extra) {                    \
    return mesh::msg::sendSingle<module, mesh::msg::messageOf<message>>(                          \
        destination, record, unused, extra, &message##__sendsingle_local,                         \
        #message "__sendsingle");                                                                 \
  }                                                                                               \
  extern "C" uint32_t message##__sendbatch(uint32_t destination, const message* records,          \
                                           uint32_t count, uint64_t extra) {                      \
    return mesh::msg::sendBatch<MESH_SERVED_BY(message)>(destination, records, count, extra,      \
                                                         {identifier, #message "__sendbatch"});   \
  }                                                                                               \
  extern "C" uint32_t message##__sendtomsg(uint32_t destination, const message* records,          \
                                           uint32_t count, uint64_t extra) {                      \
    return mesh::msg::send<MESH_SERVED_BY(message)>(destination, records, count, extra,           \
                                                    &message##__sendsingle_local,                 \
                                                    {identifier, #message "__sendbatch"});        \
  }                                                                                               \
  extern "C" uint32_t message##__sendmsg(uint32_t destination, const message* records,            \
                                         uint32_t count) {                                        \
    return mesh::msg::send<MESH_SERVED_BY(message)>(destination, records, count, 0,               \
                                                    &message##__sendsingle_local,                 \
                                                    {identifier, #message "__sendbatch"});        \
  }

// A service's receive module: its constructor, its registration, its messages' operations.
#define MESH_DEFINE_RECEIVE_MODULE(service, messages)             \
  MESH_DEFINE_MODULE_CONSTRUCTOR()                                \
  extern "C" uint32_t service##_recv_init() {                     \
    static const mesh::msg::Hook hooks[] = {messages(MESH_HOOK)}; \
    return mesh::msg::registerHooks(hooks);                       \
  }                                                               \
  messages(MESH_DEFINE_RECEIVE)

// A service's send module: its constructor, its registration, its messages' operations.
#define MESH_DEFINE_SEND_MODULE(service, messages)                           \
  MESH_DEFINE_MODULE_CONSTRUCTOR()                                           \
  extern "C" uint32_t service##_send_init() {                                \
    return MESH_RegIDLResorceCleanFuncHook(&service##__send_resource_clean); \
  }                                                                          \
  extern "C" void service##__send_resource_clean() {}                        \
  messages(MESH_DEFINE_SEND)

// Runs when the library is loaded, the only thing that does.
#define MESH_DEFINE_MODULE_CONSTRUCTOR()                  \
  [[gnu::constructor]] static void clearSwapBytes() {     \
    module.swapBytes.store(0, std::memory_order_relaxed); \
  }
