// What is written about the messages, taken from the schemas at run time.
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
Range compactRange(const mesh::wire::Schema& schema);

std::string kindOf(const mesh::wire::Slot& slot);

// "_update" and "_delete" messages: a value and a whole record of the same service.
bool isWrapper(const mesh::wire::Schema& schema);

// The functions of a message, as suffixes of its name.
inline constexpr const char* operations[] = {"__unpack",     "_free__unpacked", "__pack",
                                             "__sendsingle", "__sendbatch",     "__sendmsg",
                                             "__sendtomsg"};

std::string hex(uint32_t id);
std::string hex(uint64_t fingerprint);

// "72 to 93", "20 and more".
std::string compactText(const mesh::wire::Schema& schema);

// What of a message goes over the wire, as a line of text, and the line's 64-bit FNV-1a hash. Two
// programs that agree on a message's fingerprint read each other's.
std::string wireText(const mesh::msg::Message& message);
uint64_t fingerprint(const mesh::msg::Message& message);

void writePage();
void writeFingerprints();

// The header with a service's functions, from which its public header takes them.
void writeFunctions(const Service& service);

}  // namespace catalogue
