// Facts about the messages, from the schemas.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "msg/message.hpp"
#include "wire/schema.hpp"

namespace inspect {

struct Service {
  std::string name;
  std::vector<const mesh::msg::Message*> messages;  // in registration order
};

// The three services, in the order of the headers.
std::vector<Service> services();

struct SizeRange {
  uint64_t from;
  uint64_t to;
  bool isOpen;  // byte strings and vectors are not bounded
};

// The size of the compact message: all slots absent, and all scalars present.
SizeRange compactRange(const mesh::wire::Schema& schema);

std::string kindOf(const mesh::wire::Slot& slot);

// "scalar", "array", "bytes", "table" or "vector".
const char* kindName(mesh::wire::Kind kind);

// Calls visit(schema) for a record and those in it, the inner ones first, each once: `known` has
// the names of those that were visited.
template <typename Visit>
void visitRecords(const mesh::wire::Schema& schema, std::set<std::string>& known, Visit& visit) {
  if (!known.insert(schema.name).second) {
    return;
  }
  for (const mesh::wire::Slot& slot : schema.slots) {
    if (slot.nested != nullptr) {
      visitRecords(*slot.nested, known, visit);
    }
  }
  visit(schema);
}

// "_update" and "_delete" messages: a value and a whole record of the same service.
bool isWrapper(const mesh::wire::Schema& schema);

std::string hex(uint32_t id);
std::string hex(uint64_t fingerprint);

// "72 to 93", "20 and more".
std::string compactText(const mesh::wire::Schema& schema);

// The wire format of a message as a line of text, and the 64-bit FNV-1a hash of that line. Programs
// with equal fingerprints of a message understand each other.
std::string wireText(const mesh::msg::Message& message);
uint64_t fingerprint(const mesh::msg::Message& message);

}  // namespace inspect
