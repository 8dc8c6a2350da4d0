// Every message's operations behind one type, so that a test can be run over all of them.
#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

#include "host/serial_env.hpp"
#include "wire/schema.hpp"

namespace harness {

struct Operations {
  const char* name;
  const mesh::wire::Record* schema;
  uint32_t id;
  mesh::host::Module* receive;
  mesh::host::Module* send;
  uint32_t (*unpack)(const uint8_t* data, uint32_t length, void* record);
  void (*freeUnpacked)(void* record);
  uint32_t (*pack)(const void* record, uint8_t* buffer, uint32_t* length);
  uint32_t (*sendSingle)(uint32_t destination, const void* record, uint64_t extra);
  uint32_t (*sendBatch)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
  uint32_t (*sendMsg)(uint32_t destination, const void* records, uint32_t count);
  uint32_t (*sendToMsg)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
  const void* unpackAddress;
  const void* freeAddress;
};

// For test output.
inline void PrintTo(const Operations& operations, std::ostream* out) {
  *out << operations.name;
}

// All messages, service by service, in registration order.
const std::vector<Operations>& allOperations();

const Operations& operationsOf(const char* name);

}  // namespace harness
