// What receivers do with a message: the verdict alone, quickly. judge() finds the faults.
#pragma once

#include <cstdint>
#include <span>

#include "wire/schema.hpp"

namespace inspect {

// The values are those of the C interface.
enum class Acceptance {
  Accepted,
  Tolerated,  // accepted, though the record within a wrapper is at fault
  Rejected,
};

// Allocates nothing.
Acceptance acceptanceOf(const mesh::wire::Schema& schema, std::span<const uint8_t> bytes);

}  // namespace inspect
