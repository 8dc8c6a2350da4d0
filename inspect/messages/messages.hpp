// The messages of the library, found by name or identifier.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "msg/message.hpp"

// The opaque type of the C interface.
struct mesh_l2vpn_message {
  std::string_view name;
  std::string_view service;
  const mesh::msg::Message* message;

  [[nodiscard]] const mesh::wire::Schema& schema() const { return *message->schema; }
  [[nodiscard]] uint32_t id() const { return message->id; }
  [[nodiscard]] bool isSentFixed() const {
    return message->policy.arrangement == mesh::msg::Arrangement::Fixed;
  }
};

namespace inspect {

using KnownMessage = mesh_l2vpn_message;

// All messages, service by service, in registration order.
std::span<const KnownMessage> messages();

// Null if there is no such message.
const KnownMessage* findById(uint32_t id);
const KnownMessage* findByName(std::string_view name);

// A message by its name, or by its identifier in decimal or (with 0x) hexadecimal. Fails with
// similar names.
const KnownMessage& messageNamed(std::string_view nameOrId);

// "; did you mean ...": the names most similar to one that does not exist, best first, at most
// three. Empty if none is similar.
std::string didYouMean(std::string_view name, std::span<const std::string_view> names);
std::string didYouMean(std::string_view name);  // a message

}  // namespace inspect
