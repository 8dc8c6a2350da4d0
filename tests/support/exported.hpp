// Every message's exported operations behind one type, for records of any type.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "msg/message.hpp"

namespace exported {

// The functions are the exported ones, called by name: nothing of the library's inside is linked.
struct Operations {
  std::string_view name;
  std::string_view service;
  const mesh::msg::Message* message;
  uint32_t (*unpack)(const uint8_t* data, uint32_t length, void* record);
  void (*freeUnpacked)(void* record);
  uint32_t (*pack)(const void* record, uint8_t* buffer, uint32_t* length);
  uint32_t (*sendSingle)(uint32_t destination, const void* record, uint64_t unused, uint64_t extra);
  uint32_t (*sendBatch)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);
  uint32_t (*sendMsg)(uint32_t destination, const void* records, uint32_t count);
  uint32_t (*sendToMsg)(uint32_t destination, const void* records, uint32_t count, uint64_t extra);

  [[nodiscard]] const mesh::wire::Schema& schema() const { return *message->schema; }
  [[nodiscard]] uint32_t id() const { return message->id; }
  [[nodiscard]] bool isSentFixed() const {
    return message->policy.arrangement == mesh::msg::Arrangement::Fixed;
  }
};

// Service by service, in registration order.
std::span<const Operations> allOperations();

// Null when there is no such message.
const Operations* operationsOf(std::string_view name);

}  // namespace exported
