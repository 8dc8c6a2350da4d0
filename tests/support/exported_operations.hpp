// A message's exported functions behind one type. Nothing of the library's inside is linked for it.
#pragma once

#include <cstdint>

#include "wire/schema.hpp"

namespace harness {

struct ExportedOperations {
  const char* name;
  const mesh::wire::Schema* schema;
  uint32_t (*unpack)(const uint8_t* data, uint32_t length, void* record);
  void (*freeUnpacked)(void* record);
  uint32_t (*pack)(const void* record, uint8_t* buffer, uint32_t* length);
  uint32_t (*sendSingle)(uint32_t destination, const void* record, uint64_t extra);
  uint32_t (*sendBatch)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
  uint32_t (*sendMsg)(uint32_t destination, const void* records, uint32_t count);
  uint32_t (*sendToMsg)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
};

}  // namespace harness

// The unused argument of __sendsingle is filled, to show that it is one.
#define EXPORTED_OPERATIONS(X)                                                             \
  (harness::ExportedOperations{                                                            \
      #X, &mesh::wire::schemaOf<X>,                                                        \
      [](const uint8_t* data, uint32_t length, void* record) {                             \
        return X##__unpack(data, length, static_cast<X*>(record));                         \
      },                                                                                   \
      [](void* record) { X##_free__unpacked(static_cast<X*>(record)); },                   \
      [](const void* record, uint8_t* buffer, uint32_t* length) {                          \
        return X##__pack(static_cast<const X*>(record), buffer, length);                   \
      },                                                                                   \
      [](uint32_t destination, const void* record, uint64_t extra) {                       \
        return X##__sendsingle(destination, static_cast<const X*>(record), 0xDEAD, extra); \
      },                                                                                   \
      [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {      \
        return X##__sendbatch(destination, static_cast<const X*>(records), count, extra);  \
      },                                                                                   \
      [](uint32_t destination, const void* records, uint32_t count) {                      \
        return X##__sendmsg(destination, static_cast<const X*>(records), count);           \
      },                                                                                   \
      [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {      \
        return X##__sendtomsg(destination, static_cast<const X*>(records), count, extra);  \
      }})
