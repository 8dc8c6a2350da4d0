// Every message's operations behind one type, so that a test can be run over all of them.
#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

#include "host/binding.hpp"
#include "support/exported_operations.hpp"

namespace harness {

struct Operations : ExportedOperations {
  uint32_t id;
  mesh::host::Module* receive;
  mesh::host::Module* send;
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
