// The contents of a record as a tree, free of pointers, padding and byte order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"

namespace oracle {

struct Value;

struct FieldValue {
  Kind kind = Kind::U8;
  uint64_t scalar = 0;         // U8 .. U64
  std::vector<uint8_t> bytes;  // Array: its N bytes; Bytes: what the pointer leads to
  bool isNull = true;          // Bytes and Vector: the pointer
  uint32_t length = 0;         // Bytes: the declared length; Vector: the count. Both may lie.
  uint32_t block = 0;          // Bytes and Vector out of the reader: which allocation, 0 for null
  std::vector<Value> items;    // Table: exactly one; Vector: what the pointer leads to
};

struct Value {
  const Description* message = nullptr;
  std::vector<FieldValue> fields;

  FieldValue& operator[](size_t slot) { return fields.at(slot); }
  const FieldValue& operator[](size_t slot) const { return fields.at(slot); }
};

// Block numbers do not take part: they tell where memory came from, not what it holds.
bool operator==(const FieldValue& left, const FieldValue& right);
bool operator==(const Value& left, const Value& right);

// An all-zero record: every scalar and byte 0, every pointer null.
Value zeroValue(const Description& message);
FieldValue zeroField(const Field& field);

// Setters for the two pointer forms and the nested record, to build values in one line.
void setBytes(FieldValue& field, const std::vector<uint8_t>& contents);
void setItems(FieldValue& field, const std::vector<Value>& items);
Value& nested(FieldValue& field);
const Value& nested(const FieldValue& field);

// What a receiver of the value's compact buffer ends up with: byte strings of length 0 and
// vectors of count 0 come back as null pointers.
Value asReceived(const Value& value);

std::string print(const Value& value);
std::string print(const std::vector<uint8_t>& bytes);

// "" when equal, else the first place where they differ, for example "f1.f2: 3 is not 4".
std::string difference(const Value& left, const Value& right);

std::ostream& operator<<(std::ostream& out, const Value& value);

}  // namespace oracle
