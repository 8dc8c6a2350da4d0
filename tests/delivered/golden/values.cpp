#include "delivered/golden/values.hpp"

namespace golden {
namespace {

constexpr uint32_t rootBase = 0x40;
constexpr uint32_t longArray = 128;

enum class Filling { Full, OddSlots };

uint32_t nestedBase(size_t holder, size_t item) {
  return 0x60 + 8 * static_cast<uint32_t>(holder + item);
}

uint64_t scalarOf(uint32_t width, uint32_t first) {
  uint64_t number = first;
  for (uint32_t byte = 1; byte < width; ++byte) {
    number = number << 8 | byte;
  }
  return number;
}

std::vector<uint8_t> bytesOf(uint32_t size, uint32_t first) {
  std::vector<uint8_t> bytes(size, static_cast<uint8_t>(first));
  if (size > longArray) {
    bytes.front() = 0xF1;
    bytes.back() = 0xF2;
    return bytes;
  }
  for (uint32_t index = 0; index < size; ++index) {
    bytes[index] = static_cast<uint8_t>(first + index);
  }
  return bytes;
}

oracle::Value filled(const oracle::Description& message, uint32_t base, Filling filling) {
  oracle::Value value = oracle::zeroValue(message);
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const oracle::Field& shape = message.fields[slot];
    oracle::FieldValue& field = value[slot];
    const auto number = static_cast<uint32_t>(slot);
    if (shape.kind == oracle::Kind::Table) {
      oracle::nested(field) = filled(*shape.nested, nestedBase(slot, 0), filling);
    } else if (filling == Filling::OddSlots && slot % 2 == 0) {
      continue;
    } else if (shape.kind == oracle::Kind::Array) {
      field.bytes = bytesOf(shape.size, base + 0x80 + number);
    } else if (shape.kind == oracle::Kind::Bytes) {
      oracle::setBytes(field, bytesOf(number + 1, base + 0x80 + number));
    } else if (shape.kind == oracle::Kind::Vector) {
      std::vector<oracle::Value> items;
      for (size_t item = 0; item < (filling == Filling::Full ? 2U : 1U); ++item) {
        items.push_back(filled(*shape.nested, nestedBase(slot, item), filling));
      }
      oracle::setItems(field, items);
    } else {
      field.scalar = scalarOf(shape.size, base + number);
    }
  }
  return value;
}

}  // namespace

oracle::Value fullValue(const oracle::Description& message) {
  return filled(message, rootBase, Filling::Full);
}

oracle::Value sparseValue(const oracle::Description& message) {
  return filled(message, rootBase, Filling::OddSlots);
}

}  // namespace golden
