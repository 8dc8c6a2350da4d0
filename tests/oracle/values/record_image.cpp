#include "oracle/values/record_image.hpp"

#include <cstring>
#include <utility>

#include "oracle/values/text.hpp"

namespace oracle {
namespace {

// A record holds its numbers in the order of this machine, so a copy of the bytes is the number.
template <typename Number>
Number numberAt(const uint8_t* place) {
  Number number;
  std::memcpy(&number, place, sizeof number);
  return number;
}

template <typename Number>
void putNumber(uint8_t* place, Number number) {
  std::memcpy(place, &number, sizeof number);
}

FieldValue loadField(const Field& field, const uint8_t* record) {
  FieldValue value;
  value.kind = field.kind;
  const uint8_t* place = record + field.offset;
  switch (field.kind) {
    case Kind::U8:
      value.scalar = *place;
      break;
    case Kind::U16:
      value.scalar = numberAt<uint16_t>(place);
      break;
    case Kind::U32:
      value.scalar = numberAt<uint32_t>(place);
      break;
    case Kind::U64:
      value.scalar = numberAt<uint64_t>(place);
      break;
    case Kind::Array:
      value.bytes.assign(place, place + field.size);
      break;
    case Kind::Table:
      value.items.push_back(load(*field.nested, place));
      break;
    case Kind::Bytes: {
      value.length = numberAt<uint32_t>(record + field.lengthOffset);
      const auto* contents = numberAt<const uint8_t*>(place);
      value.isNull = contents == nullptr;
      if (contents != nullptr) {
        value.bytes.assign(contents, contents + value.length);
      }
      break;
    }
    case Kind::Vector: {
      value.length = numberAt<uint32_t>(record + field.lengthOffset);
      const auto* items = numberAt<const uint8_t*>(place);
      value.isNull = items == nullptr;
      for (size_t i = 0; items != nullptr && i < value.length; ++i) {
        value.items.push_back(load(*field.nested, items + i * field.size));
      }
      break;
    }
  }
  return value;
}

}  // namespace

Value load(const Description& message, const void* record) {
  Value value;
  value.message = &message;
  for (const Field& field : message.fields) {
    value.fields.push_back(loadField(field, static_cast<const uint8_t*>(record)));
  }
  return value;
}

RecordImage::RecordImage(const Description& message, const Value& value)
    : RecordImage(message, std::vector<Value>{value}) {}

RecordImage::RecordImage(const Description& message, const std::vector<Value>& values)
    : size_(values.size() * message.recordSize) {
  record_ = take(size_);
  for (size_t i = 0; i < values.size(); ++i) {
    store(message, values[i], record_ + i * message.recordSize);
  }
}

RecordImage::RecordImage(const Description& message, uint8_t fill) : size_(message.recordSize) {
  record_ = take(size_);
  std::memset(record_, fill, size_);
}

std::vector<uint8_t> RecordImage::bytes() const {
  return {record_, record_ + size_};
}

uint8_t* RecordImage::take(size_t size) {
  std::unique_ptr<uint8_t, Release> owned(static_cast<uint8_t*>(::operator new(size, alignment)));
  uint8_t* block = owned.get();
  blocks_.push_back(std::move(owned));
  std::memset(block, 0, size);
  return block;
}

void RecordImage::store(const Description& message, const Value& value, uint8_t* record) {
  if (value.message != &message) {
    misuse(joined({"a value of another message for a record of ", message.name}));
  }
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const Field& field = message.fields[slot];
    const FieldValue& given = value[slot];
    uint8_t* place = record + field.offset;
    switch (field.kind) {
      case Kind::U8:
        *place = static_cast<uint8_t>(given.scalar);
        break;
      case Kind::U16:
        putNumber(place, static_cast<uint16_t>(given.scalar));
        break;
      case Kind::U32:
        putNumber(place, static_cast<uint32_t>(given.scalar));
        break;
      case Kind::U64:
        putNumber(place, given.scalar);
        break;
      case Kind::Array:
        if (given.bytes.size() != field.size) {
          misuse(joined({message.name, " ", field.name, " holds an array of another size"}));
        }
        std::memcpy(place, given.bytes.data(), field.size);
        break;
      case Kind::Table:
        store(*field.nested, nested(given), place);
        break;
      case Kind::Bytes:
        putNumber(record + field.lengthOffset, given.length);
        if (!given.isNull) {
          uint8_t* contents = take(given.bytes.size());
          if (!given.bytes.empty()) {
            std::memcpy(contents, given.bytes.data(), given.bytes.size());
          }
          putNumber(place, contents);
        }
        break;
      case Kind::Vector:
        putNumber(record + field.lengthOffset, given.length);
        if (!given.isNull) {
          uint8_t* items = take(given.items.size() * field.size);
          for (size_t i = 0; i < given.items.size(); ++i) {
            store(*field.nested, given.items[i], items + i * field.size);
          }
          putNumber(place, items);
        }
        break;
    }
  }
}

}  // namespace oracle
