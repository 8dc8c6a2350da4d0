#include "oracle/operations/decoding.hpp"

#include "oracle/operations/trace.hpp"

namespace oracle {
namespace {

constexpr uint32_t largestCount = 0x3FFFFFFF;

}  // namespace

Decoding::Decoding(const uint8_t* data, uint32_t length, bool reversed, int failingAllocation)
    : data_(data), length_(length), reversed_(reversed), failingAllocation_(failingAllocation) {}

uint64_t Decoding::numberAt(uint64_t position, uint32_t width) const {
  uint64_t number = 0;
  for (uint32_t i = 0; i < width; ++i) {
    const uint32_t significance = reversed_ ? width - 1 - i : i;
    number |= static_cast<uint64_t>(byteAt(position + i)) << (8 * significance);
  }
  return number;
}

std::optional<uint64_t> Decoding::vtableOf(uint64_t table, const std::string& function) {
  const uint32_t tablePosition = static_cast<uint32_t>(table);
  if (table < 4 || table > length_ - 4) {
    trace_.push_back(tableOffsetLine(function, tablePosition, length_));
    return std::nullopt;
  }
  const uint64_t distance = numberAt(table, wordWidth);
  const uint64_t vtable = static_cast<uint32_t>(table - distance);
  if (vtable < 4 || vtable > length_ - 4) {
    trace_.push_back(vtableOffsetLine(function, tablePosition, length_));
    return std::nullopt;
  }
  const uint64_t vtableLength = numberAt(vtable, 2);
  if (!fits(vtable, vtableLength)) {
    trace_.push_back(vtableLengthLine(function, static_cast<uint32_t>(vtableLength),
                                      static_cast<uint32_t>(length_ - vtable)));
    return std::nullopt;
  }
  return vtable;
}

bool Decoding::decodeSlots(const Description& message, uint64_t table, uint64_t vtable,
                           const std::string& function, Decoder decoder, Value& record) {
  const uint64_t vtableLength = numberAt(vtable, 2);
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    if (vtableLength < 4 + 2 * (slot + 1)) {
      return true;  // an older writer: this field and all later ones stay zero
    }
    const uint64_t entry = numberAt(vtable + 4 + 2 * slot, 2);
    if (entry == 0) {
      continue;
    }
    const Field& field = message.fields[slot];
    if (!decodeField(message, field, table + entry, function, decoder, record[slot])) {
      return false;
    }
  }
  return true;
}

bool Decoding::decodeTableAt(const Description& message, uint64_t table, Value& record) {
  const std::string function = message.name + "_unpack_non_root";
  const std::optional<uint64_t> vtable = vtableOf(table, function);
  return vtable && decodeSlots(message, table, *vtable, function, Decoder::OfTable, record);
}

uint8_t Decoding::byteAt(uint64_t position) const {
  if (position >= length_) {
    misuse("the reader was about to leave the buffer");
  }
  return data_[position];
}

bool Decoding::fits(uint64_t position, uint64_t size) const {
  return position + size <= length_;
}

std::vector<uint8_t> Decoding::contentsAt(uint64_t position, uint64_t size) const {
  std::vector<uint8_t> contents;
  for (uint64_t i = 0; i < size; ++i) {
    contents.push_back(byteAt(position + i));
  }
  return contents;
}

std::optional<uint64_t> Decoding::targetOf(uint64_t position) const {
  if (!fits(position, wordWidth)) {
    return std::nullopt;
  }
  const uint64_t target = position + numberAt(position, wordWidth);
  if (!fits(target, wordWidth)) {
    return std::nullopt;
  }
  return target;
}

bool Decoding::decodeField(const Description& message, const Field& field, uint64_t position,
                           const std::string& function, Decoder decoder, FieldValue& value) {
  switch (field.kind) {
    case Kind::U8:
    case Kind::U16:
    case Kind::U32:
    case Kind::U64:
      if (!fits(position, field.size)) {
        return false;
      }
      value.scalar = numberAt(position, field.size);
      return true;
    case Kind::Array:
      return decodeArray(field, position, value);
    case Kind::Bytes:
      return decodeBytes(position, function, decoder, value);
    case Kind::Table: {
      const bool decoded = decodeNested(field, position, value);
      return decoded || message.wrapper;  // a wrapper never looks at the verdict
    }
    case Kind::Vector:
      return decodeVector(field, position, function, decoder, value);
  }
  misuse("unknown field kind");
}

bool Decoding::decodeArray(const Field& field, uint64_t position, FieldValue& value) const {
  const std::optional<uint64_t> target = targetOf(position);
  if (!target) {
    return false;
  }
  const uint64_t size = numberAt(*target, wordWidth);
  if (!fits(*target + wordWidth, size) || size != field.size) {
    return false;
  }
  value.bytes = contentsAt(*target + wordWidth, size);
  return true;
}

bool Decoding::decodeBytes(uint64_t position, const std::string& function, Decoder decoder,
                           FieldValue& value) {
  const std::optional<uint64_t> target = targetOf(position);
  if (!target) {
    return false;
  }
  const uint64_t size = numberAt(*target, wordWidth);
  if (!fits(*target + wordWidth, size)) {
    return false;
  }
  value.length = static_cast<uint32_t>(size);  // kept even if the allocation fails
  if (size == 0) {
    return true;
  }
  value.block = allocate(value.length, function, decoder);
  if (value.block == 0) {
    return false;
  }
  value.isNull = false;
  value.bytes = contentsAt(*target + wordWidth, size);
  return true;
}

bool Decoding::decodeNested(const Field& field, uint64_t position, FieldValue& value) {
  if (!fits(position, wordWidth)) {
    return false;
  }
  const uint64_t target = position + numberAt(position, wordWidth);
  return target <= largestU32 && decodeTableAt(*field.nested, target, nested(value));
}

bool Decoding::decodeVector(const Field& field, uint64_t position, const std::string& function,
                            Decoder decoder, FieldValue& value) {
  const std::optional<uint64_t> target = targetOf(position);
  if (!target) {
    return false;
  }
  const uint64_t count = numberAt(*target, wordWidth);
  if (count > largestCount || !fits(*target + wordWidth, count * wordWidth)) {
    return false;
  }
  if (count == 0) {
    return true;
  }
  const uint64_t blockSize = count * field.size;
  if (blockSize > largestU32) {
    return false;
  }
  value.block = allocate(static_cast<uint32_t>(blockSize), function, decoder);
  if (value.block == 0) {
    return false;  // the count stays zero: it is stored with the pointer
  }
  value.isNull = false;
  value.length = static_cast<uint32_t>(count);
  value.items.assign(count, zeroValue(*field.nested));
  for (uint64_t i = 0; i < count; ++i) {
    const uint64_t word = *target + wordWidth + i * wordWidth;
    const uint64_t table = word + numberAt(word, wordWidth);
    if (table > largestU32 || !decodeTableAt(*field.nested, table, value.items[i])) {
      return false;
    }
  }
  return true;
}

uint32_t Decoding::allocate(uint32_t size, const std::string& function, Decoder decoder) {
  ++allocations_;
  if (allocations_ == failingAllocation_) {
    trace_.push_back(unpackAllocLine(size, function, 0));
    trace_.push_back(decoder == Decoder::OfRoot ? rootAllocationFailedLine(function, size)
                                                : tableAllocationFailedLine(function, size));
    return 0;
  }
  ++blocks_;
  trace_.push_back(unpackAllocLine(size, function, blocks_));
  return blocks_;
}

}  // namespace oracle
