// What the page of messages is made of, taken from the schemas at run time.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "msg/message.hpp"
#include "wire/schema.hpp"

namespace catalogue {

struct Service {
  std::string name;
  std::vector<const mesh::msg::Message*> messages;  // in registration order
};

// The three services, in the order in which the library's headers are read.
std::vector<Service> services();

struct Range {
  uint64_t from;
  uint64_t to;
  bool isOpen;  // byte strings or vectors have no end of their own
};

// The compact message with nothing in it, and with every scalar.
Range compactRange(const mesh::wire::Record& record);

std::string kindOf(const mesh::wire::Slot& slot);

// "_update" and "_delete" messages: a value and a whole record of the same service.
bool isWrapper(const mesh::wire::Record& record);

}  // namespace catalogue
