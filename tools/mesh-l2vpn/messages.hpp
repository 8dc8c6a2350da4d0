// The messages of the library, found by name or identifier.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "inspect/messages/operations.hpp"

namespace tool {

using Message = inspect::Operations;

// All of them, service by service, in registration order.
inline std::span<const Message> messages() {
  return inspect::allOperations();
}

// Null when no message has it.
inline const Message* findById(uint32_t id) {
  return inspect::operationsOf(id);
}

// A message by its name, or by its identifier in decimal or, with 0x, hexadecimal. Fails with the
// names that come near.
const Message& messageNamed(std::string_view nameOrId);

// The names nearest to one that does not exist, best first, three at most; none when none is near.
std::vector<std::string_view> nearestNames(std::string_view name);

}  // namespace tool
