#include <algorithm>

#include "oracle/operations/trace.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/text.hpp"

namespace oracle {
namespace {

std::optional<uint64_t> sizeOfTable(const Description& message, const Value& value);

// What one field adds to the size of its table, its target included.
std::optional<uint64_t> sizeOfField(const Field& field, const FieldValue& value) {
  switch (field.kind) {
    case Kind::U8:
    case Kind::U16:
    case Kind::U32:
    case Kind::U64:
      return value.scalar == 0 ? 0 : field.size;
    case Kind::Array:
      return wordWidth + wordWidth + field.size;
    case Kind::Bytes:  // a pointer that is not null counts, even with a length of 0
      return value.isNull ? 0 : wordWidth + wordWidth + uint64_t{value.length};
    case Kind::Table: {
      const std::optional<uint64_t> inner = sizeOfTable(*field.nested, nested(value));
      return inner ? std::optional(wordWidth + *inner) : std::nullopt;
    }
    case Kind::Vector: {
      if (value.length == 0) {
        return 0;
      }
      if (value.isNull) {
        return std::nullopt;
      }
      uint64_t size = wordWidth + wordWidth + uint64_t{wordWidth} * value.length;
      for (uint32_t i = 0; i < value.length; ++i) {
        const std::optional<uint64_t> inner = sizeOfTable(*field.nested, value.items.at(i));
        if (!inner) {
          return std::nullopt;
        }
        size += *inner;
      }
      return size;
    }
  }
  misuse("unknown field kind");
}

// A table with its vtable and everything its fields lead to.
std::optional<uint64_t> sizeOfTable(const Description& message, const Value& value) {
  uint64_t size = message.vtableLength + wordWidth;
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const std::optional<uint64_t> added = sizeOfField(message.fields[slot], value[slot]);
    if (!added) {
      return std::nullopt;
    }
    size += *added;
  }
  return size;
}

bool isPresent(const FieldValue& value) {
  switch (value.kind) {
    case Kind::U8:
    case Kind::U16:
    case Kind::U32:
    case Kind::U64:
      return value.scalar != 0;
    case Kind::Array:
    case Kind::Table:
      return true;
    case Kind::Bytes:
    case Kind::Vector:
      return !value.isNull && value.length != 0;
  }
  misuse("unknown field kind");
}

// One buffer being filled from front to back.
class CompactWriter {
 public:
  CompactWriter(uint64_t size, bool reversed) : bytes_(size), reversed_(reversed) {}

  WrittenBytes write(const Description& message, const Value& value) {
    cursor_ = wordWidth;
    const uint64_t table = writeTable(message, value);
    put(0, wordWidth, table);
    return bytes_;
  }

 private:
  struct PendingWord {
    size_t slot;
    uint64_t position;
  };

  // The vtable at the cursor, the table behind it, its targets behind the table. Returns the
  // position of the table and leaves the cursor after everything written.
  uint64_t writeTable(const Description& message, const Value& value) {
    const uint64_t vtable = cursor_;
    const uint64_t table = vtable + message.vtableLength;
    cursor_ = table + wordWidth;

    std::vector<uint64_t> entries(message.fields.size(), 0);
    std::vector<PendingWord> words;
    for (const size_t slot : inlineOrder(message)) {
      if (!isPresent(value[slot])) {
        continue;
      }
      entries[slot] = cursor_ - table;
      if (isScalar(message.fields[slot].kind)) {
        append(message.fields[slot].size, value[slot].scalar);
      } else {
        words.push_back({slot, cursor_});
        cursor_ += wordWidth;
      }
    }
    // The table length takes in the inline part and the byte strings, not what is nested.
    uint64_t tableLength = cursor_ - table;
    for (const PendingWord& word : words) {
      const uint64_t begin = cursor_;
      const FieldValue& field = value[word.slot];
      const uint64_t target = writeTarget(message.fields[word.slot], field);
      put(word.position, wordWidth, target - word.position);
      if (field.kind == Kind::Array || field.kind == Kind::Bytes) {
        tableLength += cursor_ - begin;
      }
    }

    put(vtable, 2, message.vtableLength);
    put(vtable + 2, 2, tableLength);
    for (size_t slot = 0; slot < entries.size(); ++slot) {
      put(vtable + 4 + 2 * slot, 2, entries[slot]);
    }
    put(table, wordWidth, table - vtable);
    return table;
  }

  static std::vector<size_t> inlineOrder(const Description& message) {
    std::vector<size_t> slots;
    for (size_t slot = 0; slot < message.fields.size(); ++slot) {
      slots.push_back(slot);
    }
    if (!message.slotOrder) {
      std::stable_partition(slots.begin(), slots.end(), [&message](size_t slot) {
        return isScalar(message.fields[slot].kind);
      });
    }
    return slots;
  }

  // Returns the position that the field's offset word must lead to.
  uint64_t writeTarget(const Field& field, const FieldValue& value) {
    switch (field.kind) {
      case Kind::Array:
        return writeString(value.bytes, field.size);
      case Kind::Bytes:
        return writeString(value.bytes, value.length);
      case Kind::Table:
        return writeTable(*field.nested, nested(value));
      case Kind::Vector:
        return writeVector(field, value);
      default:
        misuse("a scalar has no target");
    }
  }

  uint64_t writeString(const std::vector<uint8_t>& contents, uint32_t length) {
    if (contents.size() < length) {
      misuse("a byte string is shorter than its declared length and cannot be written");
    }
    const uint64_t target = cursor_;
    append(wordWidth, length);
    for (uint32_t i = 0; i < length; ++i) {
      append(1, contents[i]);
    }
    return target;
  }

  uint64_t writeVector(const Field& field, const FieldValue& value) {
    const uint64_t target = cursor_;
    append(wordWidth, value.length);
    const uint64_t words = cursor_;
    cursor_ += uint64_t{wordWidth} * value.length;
    for (uint32_t i = 0; i < value.length; ++i) {
      const uint64_t word = words + uint64_t{wordWidth} * i;
      const uint64_t table = writeTable(*field.nested, value.items.at(i));
      put(word, wordWidth, table - word);
    }
    return target;
  }

  void append(uint32_t width, uint64_t number) {
    put(cursor_, width, number);
    cursor_ += width;
  }

  void put(uint64_t position, uint32_t width, uint64_t number) {
    for (uint32_t i = 0; i < width; ++i) {
      const uint32_t significance = reversed_ ? width - 1 - i : i;
      bytes_.at(position + i) = static_cast<uint8_t>(number >> (8 * significance));
    }
  }

  WrittenBytes bytes_;
  bool reversed_;
  uint64_t cursor_ = 0;
};

}  // namespace

uint64_t compactSize(const Description& message, const Value& value) {
  const std::optional<uint64_t> size = sizeOfTable(message, value);
  return size ? wordWidth + *size : noSize;
}

std::optional<uint32_t> sendableSize(const Description& message, const Value& value) {
  const uint64_t size = compactSize(message, value);
  if (size == noSize || size > message.largestSize) {
    return std::nullopt;
  }
  return static_cast<uint32_t>(size);
}

WrittenBytes compactBytes(const Description& message, const Value& value, bool reversed) {
  const uint64_t size = compactSize(message, value);
  if (size == noSize) {
    misuse(joined({"a record of ", message.name, " without a size cannot be written"}));
  }
  return CompactWriter(size, reversed).write(message, value);
}

PackResult pack(const Description& message, const Value* recordOrNull, bool bufferIsNull,
                uint32_t room, bool lengthIsNull, bool reversed) {
  PackResult result;
  result.result = failure;
  if (recordOrNull == nullptr || lengthIsNull) {
    return result;
  }
  const std::optional<uint32_t> size = sendableSize(message, *recordOrNull);
  if (!size || room < *size) {
    return result;
  }
  result.result = 0;
  result.length = *size;
  if (bufferIsNull || room < 4) {
    result.trace.push_back(packParametersLine(message.name + "_pack", bufferIsNull, room, false));
    return result;
  }
  result.bytes = compactBytes(message, *recordOrNull, reversed);
  return result;
}

}  // namespace oracle
