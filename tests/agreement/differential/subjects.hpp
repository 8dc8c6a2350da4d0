// Every message behind one type: its operations, and the data for comparing its records.
#pragma once

#include <cstdint>
#include <vector>

#include "support/exported.hpp"

namespace differential {

namespace host = mesh::host;
namespace msg = mesh::msg;
namespace wire = mesh::wire;

// The reader that accepts a message.
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
  // Like Subject::values, for an item.
  std::vector<uint8_t> itemValues;
};

struct Subject : exported::Operations {
  host::Module* receive;
  host::Module* send;
  // Which of the message's readers accepts the buffer first.
  Way (*wayOf)(const uint8_t* data, uint32_t length);

  std::vector<Field> fields;
  // 0xFF for each byte of a record that belongs to a field.
  std::vector<uint8_t> values;
  std::vector<Part> parts;

  [[nodiscard]] uint32_t size() const { return schema().size; }
  // Whether its records or their blocks have 16 KiB.
  [[nodiscard]] bool isLarge() const;
};

// All messages, service by service, in registration order. They are bound.
std::vector<Subject> bindSubjects();

}  // namespace differential
