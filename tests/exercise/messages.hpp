// Every message through its exported functions alone: nothing of the library's inside is linked.
#pragma once

#include <cstdint>
#include <vector>

#include "wire/schema.hpp"

namespace exercise {

struct Operations {
  const char* name;
  const mesh::wire::Record* schema;
  bool sentFixed;
  uint32_t (*unpack)(const uint8_t* data, uint32_t length, void* record);
  void (*freeUnpacked)(void* record);
  uint32_t (*pack)(const void* record, uint8_t* buffer, uint32_t* length);
  uint32_t (*sendSingle)(uint32_t destination, const void* record, uint64_t extra);
  uint32_t (*sendBatch)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
  uint32_t (*sendMsg)(uint32_t destination, const void* records, uint32_t count);
  uint32_t (*sendToMsg)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
};

const std::vector<Operations>& messages();

}  // namespace exercise
