// The messages of the library, found by name or identifier.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "inspect/messages/operations.hpp"

namespace inspect {

using KnownMessage = Operations;

// All messages, service by service, in registration order.
inline std::span<const KnownMessage> messages() {
  return allOperations();
}

// Null if no message has the identifier.
inline const KnownMessage* findById(uint32_t id) {
  return operationsOf(id);
}

// A message by its name, or by its identifier in decimal or (with 0x) hexadecimal. Fails with
// similar names.
const KnownMessage& messageNamed(std::string_view nameOrId);

// The names most similar to one that does not exist: best first, at most three.
std::vector<std::string_view> nearestNames(std::string_view name);

}  // namespace inspect
