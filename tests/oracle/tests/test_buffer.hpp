// Expected buffers written down number by number, for the tests of the oracle.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "oracle/operations/writer.hpp"

namespace oracle {

// TestBuffer().u32(16).u16({12, 23}).bytes({'a', 'b'}): little-endian, back to back.
class TestBuffer {
 public:
  TestBuffer& u8(uint64_t number) { return put(1, number); }
  TestBuffer& u16(uint64_t number) { return put(2, number); }
  TestBuffer& u32(uint64_t number) { return put(4, number); }
  TestBuffer& u64(uint64_t number) { return put(8, number); }
  TestBuffer& u16(const std::vector<uint64_t>& numbers) {
    for (const uint64_t number : numbers) {
      put(2, number);
    }
    return *this;
  }
  TestBuffer& u32(const std::vector<uint64_t>& numbers) {
    for (const uint64_t number : numbers) {
      put(4, number);
    }
    return *this;
  }
  TestBuffer& bytes(const std::vector<uint8_t>& contents) {
    content.insert(content.end(), contents.begin(), contents.end());
    return *this;
  }
  TestBuffer& zeros(size_t count) { return bytes(std::vector<uint8_t>(count, 0)); }

  std::vector<uint8_t> content;

 private:
  TestBuffer& put(uint32_t width, uint64_t number) {
    for (uint32_t i = 0; i < width; ++i) {
      content.push_back(static_cast<uint8_t>(number >> (8 * i)));
    }
    return *this;
  }
};

inline uint64_t numberIn(const std::vector<uint8_t>& buffer, uint64_t position, uint32_t width) {
  uint64_t number = 0;
  for (uint32_t i = 0; i < width; ++i) {
    number |= static_cast<uint64_t>(buffer.at(position + i)) << (8 * i);
  }
  return number;
}

// The written bytes, with `left` in the places that were not.
inline std::vector<uint8_t> filled(const WrittenBytes& written, uint8_t left = 0xEE) {
  std::vector<uint8_t> buffer;
  for (const std::optional<uint8_t>& byte : written) {
    buffer.push_back(byte.value_or(left));
  }
  return buffer;
}

inline std::vector<uint8_t> packed(const Description& type, const Value& value,
                                   bool reversed = false) {
  return filled(compactBytes(type, value, reversed));
}

// Every scalar `number` cut to its width, everything else zero, nested records alike.
inline Value withScalars(const Description& type, uint64_t number) {
  Value value = zeroValue(type);
  for (size_t slot = 0; slot < type.fields.size(); ++slot) {
    if (isScalar(type.fields[slot].kind)) {
      value[slot].scalar = number & (UINT64_MAX >> (64 - 8 * type.fields[slot].size));
    } else if (type.fields[slot].kind == Kind::Table) {
      nested(value[slot]) = withScalars(*type.fields[slot].nested, number);
    }
  }
  return value;
}

}  // namespace oracle
