// The messages of the library, found by name or identifier.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "msg/message.hpp"

namespace tool {

// A message and its exported operations, for records of any type.
struct KnownMessage {
  std::string_view name;
  std::string_view service;
  const mesh::msg::Message* data;
  uint32_t (*unpack)(const uint8_t* data, uint32_t length, void* record);
  void (*freeUnpacked)(void* record);
  uint32_t (*pack)(const void* record, uint8_t* buffer, uint32_t* length);
  uint32_t (*sendSingle)(uint32_t destination, const void* record, uint64_t extra);

  [[nodiscard]] const mesh::wire::Schema& schema() const { return *data->schema; }
  [[nodiscard]] bool isSentFixed() const {
    return data->policy.arrangement == mesh::msg::Arrangement::Fixed;
  }
};

// All messages, service by service, in registration order.
const std::vector<KnownMessage>& messages();

// Null if no message has the identifier.
const KnownMessage* findById(uint32_t id);

// A message by its name, or by its identifier in decimal or (with 0x) hexadecimal. Fails with
// similar names.
const KnownMessage& messageNamed(std::string_view nameOrId);

// The names most similar to one that does not exist: best first, at most three.
std::vector<std::string_view> nearestNames(std::string_view name);

}  // namespace tool
