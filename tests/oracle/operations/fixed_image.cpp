#include "oracle/operations/writer.hpp"

namespace oracle {
namespace {

constexpr uint32_t root = 4;
constexpr uint32_t table = 4;

uint32_t widthInImage(const Field& field) {
  switch (field.kind) {
    case Kind::U8:
    case Kind::U16:
    case Kind::U32:
    case Kind::U64:
      return field.size;
    case Kind::Array:
      return wordWidth + wordWidth + field.size;
    case Kind::Table:
      return fixedLayout(*field.nested).length;
    case Kind::Bytes:
    case Kind::Vector:
      break;
  }
  misuse("a pointer form has no place in a fixed image");
}

class Image {
 public:
  Image(uint32_t length, bool reversed) : bytes(length, 0), reversed_(reversed) {}

  // The whole image of a record, its first byte at `begin`.
  void put(uint32_t begin, const Description& message, const Value& value) {
    const FixedLayout layout = fixedLayout(message);
    putNumber(begin, wordWidth, root);
    putNumber(begin + table, wordWidth, uint64_t{table} - layout.vtablePosition);
    for (size_t slot = 0; slot < message.fields.size(); ++slot) {
      putField(begin + table + layout.slotEntries[slot], message.fields[slot], value[slot]);
    }
    const uint32_t vtable = begin + layout.vtablePosition;
    putNumber(vtable, 2, message.vtableLength);
    putNumber(vtable + 2, 2, layout.tableLength);
    for (uint32_t slot = 0; slot < layout.slotEntries.size(); ++slot) {
      putNumber(vtable + 4 + 2 * slot, 2, layout.slotEntries[slot]);
    }
  }

  std::vector<uint8_t> bytes;

 private:
  void putField(uint32_t position, const Field& field, const FieldValue& value) {
    if (field.kind == Kind::Table) {
      put(position, *field.nested, nested(value));
    } else if (field.kind == Kind::Array) {
      putNumber(position, wordWidth, wordWidth);
      putNumber(position + wordWidth, wordWidth, field.size);
      for (uint32_t i = 0; i < field.size; ++i) {
        bytes.at(position + 2 * wordWidth + i) = value.bytes.at(i);
      }
    } else {
      putNumber(position, field.size, value.scalar);
    }
  }

  void putNumber(uint32_t position, uint32_t width, uint64_t number) {
    for (uint32_t i = 0; i < width; ++i) {
      const uint32_t significance = reversed_ ? width - 1 - i : i;
      bytes.at(position + i) = static_cast<uint8_t>(number >> (8 * significance));
    }
  }

  bool reversed_;
};

}  // namespace

FixedLayout fixedLayout(const Description& message) {
  FixedLayout layout;
  uint32_t entry = wordWidth;
  for (const Field& field : message.fields) {
    layout.slotEntries.push_back(entry);
    entry += widthInImage(field);
  }
  layout.tableLength = entry;
  layout.vtablePosition = roundUp(table + layout.tableLength, 4);
  layout.vtableEnd = layout.vtablePosition + message.vtableLength;
  layout.length = roundUp(layout.vtableEnd, 8);
  return layout;
}

uint32_t fixedLength(const Description& message) {
  return message.sentFixed ? fixedLayout(message).length : 0;
}

std::vector<uint8_t> fixedImage(const Description& message, const Value& value, bool reversed) {
  Image image(fixedLayout(message).length, reversed);
  image.put(0, message, value);
  return image.bytes;
}

}  // namespace oracle
