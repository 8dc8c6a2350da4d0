// Every message behind one type: its operations, and what comparing its records takes.
#pragma once

#include <cstdint>
#include <vector>

#include "inspect/messages/operations.hpp"

namespace differential {

namespace host = mesh::host;
namespace msg = mesh::msg;
namespace wire = mesh::wire;

// Which reader takes a message.
enum class Way : uint8_t { FixedImage, Quick, SlotBySlot };

// A value of a record or of a record nested in it.
struct Field {
  uint32_t at;
  uint32_t size;
};

// A byte string or vector of a record or of a record nested in it.
struct Part {
  uint32_t count;
  uint32_t pointer;
  // Null for a byte string.
  const wire::Schema* items;
  // As Subject::values, of an item.
  std::vector<uint8_t> itemValues;
};

struct Subject : inspect::Operations {
  host::Module* receive;
  host::Module* send;
  // Which of the message's readers accepts the buffer first.
  Way (*wayOf)(const uint8_t* data, uint32_t length);

  std::vector<Field> fields;
  // All ones for each byte of a record that belongs to a field.
  std::vector<uint8_t> values;
  std::vector<Part> parts;

  [[nodiscard]] uint32_t size() const { return schema().size; }
  // Whether its records or their blocks are of 16 KiB.
  [[nodiscard]] bool isLarge() const;
};

// All messages, service by service, in registration order, and bound.
std::vector<Subject> bindSubjects();

}  // namespace differential
