// Every message's operations, so that a test can be run over all of them.
#pragma once

#include <ostream>
#include <string_view>
#include <vector>

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

// The messages that senders transmit compact.
std::vector<Operations> compactMessages();

struct Modules {
  mesh::host::Module* receive;
  mesh::host::Module* send;
};

Modules modulesOf(const Operations& operations);

// What packing and sending return when they refuse.
inline constexpr uint32_t failure = 0xFFFFFFFF;

// Given to __sendsingle as its unused argument, to show that it is one.
inline constexpr uint64_t unused = 0xDEAD;

}  // namespace harness
