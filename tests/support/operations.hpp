// Every message's operations, so that a test can be run over all of them.
#pragma once

#include <ostream>
#include <string_view>

#include "host/binding.hpp"
#include "support/exported.hpp"

// For test output.
namespace exported {
inline void PrintTo(const Operations& operations, std::ostream* out) {
  *out << operations.name;
}
}  // namespace exported

namespace harness {

using exported::allOperations;
using exported::Operations;

// Ends the process with a clear text if there is no such message.
const Operations& operationsOf(std::string_view name);

struct Modules {
  mesh::host::Module* receive;
  mesh::host::Module* send;
};

Modules modulesOf(const Operations& operations);

// Given to __sendsingle as its unused argument, to show that it is one.
inline constexpr uint64_t unused = 0xDEAD;

}  // namespace harness
