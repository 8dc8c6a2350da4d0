// What tests write down by hand: buffers byte by byte, records full of marks, recorded calls.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "support/operations.hpp"
#include "support/recorder.hpp"
#include "wire/schema.hpp"

namespace harness {

using Buffer = std::vector<uint8_t>;
using Trace = std::vector<std::string>;

// Integers back to back, little-endian: Layout().u32(16).u16(12, 23).text("abc").
class Layout {
 public:
  template <typename... Values>
  Layout& u8(Values... values) {
    return put<1>({static_cast<uint64_t>(values)...});
  }
  template <typename... Values>
  Layout& u16(Values... values) {
    return put<2>({static_cast<uint64_t>(values)...});
  }
  template <typename... Values>
  Layout& u32(Values... values) {
    return put<4>({static_cast<uint64_t>(values)...});
  }
  template <typename... Values>
  Layout& u64(Values... values) {
    return put<8>({static_cast<uint64_t>(values)...});
  }
  Layout& text(const char* characters) {
    for (; *characters != '\0'; ++characters) {
      bytes_.push_back(static_cast<uint8_t>(*characters));
    }
    return *this;
  }
  Layout& append(const Buffer& bytes) {
    for (const uint8_t byte : bytes) {
      bytes_.push_back(byte);
    }
    return *this;
  }
  Layout& fill(size_t count, uint8_t value) { return append(Buffer(count, value)); }
  Layout& zeros(size_t count) { return fill(count, 0); }

  operator Buffer() const { return bytes_; }  // a layout is the buffer it describes

 private:
  template <int width>
  Layout& put(std::initializer_list<uint64_t> values) {
    for (const uint64_t value : values) {
      for (int byte = 0; byte < width; ++byte) {
        bytes_.push_back(static_cast<uint8_t>(value >> (8 * byte)));
      }
    }
    return *this;
  }

  Buffer bytes_;
};

inline Buffer withU32(Buffer bytes, size_t at, uint32_t value) {
  for (size_t byte = 0; byte < 4; ++byte) {
    bytes.at(at + byte) = static_cast<uint8_t>(value >> (8 * byte));
  }
  return bytes;
}

inline Buffer withU16(Buffer bytes, size_t at, uint32_t value) {
  bytes.at(at) = static_cast<uint8_t>(value);
  bytes.at(at + 1) = static_cast<uint8_t>(value >> 8);
  return bytes;
}

inline Buffer firstBytes(const Buffer& bytes, size_t count) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

// Sixteen bytes a line behind their position: what differs is found by eye.
inline std::string hex(std::span<const uint8_t> bytes) {
  std::string text = std::to_string(bytes.size()) + " bytes";
  for (size_t at = 0; at < bytes.size(); ++at) {
    char piece[32];
    if (at % 16 == 0) {
      std::snprintf(piece, sizeof piece, "\n%5zu:", at);
      text.append(piece);
    }
    std::snprintf(piece, sizeof piece, " %02x", static_cast<unsigned>(bytes[at]));
    text.append(piece);
  }
  return text;
}

inline std::string hex(const Layout& layout) {
  const Buffer bytes = layout;
  return hex(std::span<const uint8_t>(bytes));
}

// The largest count of a vector; the offset words of one item more pass 32 bits.
inline constexpr uint32_t largestVectorCount = 0x3FFFFFFF;

// What every byte of a record, or of a buffer to write into, holds before the call under test.
inline constexpr uint8_t mark = 0xA5;

inline Buffer marks(size_t count) {
  return Buffer(count, mark);
}

template <typename Record>
Buffer bytesOf(const Record& record) {
  Buffer bytes(sizeof record);
  std::memcpy(bytes.data(), &record, sizeof record);
  return bytes;
}

// The recorded line of a log call that is about anything but memory, and of one about memory.
inline std::string reported(const std::string& function, const std::string& text) {
  return "log level=2 code=22 file=\"\" function=\"" + function + "\" text=\"[VELTA]:" + text +
         "\"";
}
inline std::string reportedRefusal(const std::string& function, const std::string& text) {
  return "log level=2 code=12 file=\"\" function=\"" + function + "\" text=\"[VELTA]:" + text +
         "\"";
}

// One call of a message's __unpack on a record full of marks.
template <typename Record>
class Unpacked {
 public:
  explicit Unpacked(const Buffer& bytes, int failingAllocation = 0)
      : Unpacked(bytes.data(), static_cast<uint32_t>(bytes.size()), failingAllocation) {}

  Unpacked(const uint8_t* data, uint32_t length, int failingAllocation = 0) {
    std::memset(&record, mark, sizeof record);
    resetRecorder();
    recorder().failingAllocation = failingAllocation;
    EXPECT_EQ(operations().unpack(data, length, &record), sizeof record);
    trace = takeTrace();
  }

  // Gives the record's blocks back; returns the calls that took.
  Trace release() {
    operations().freeUnpacked(&record);
    return takeTrace();
  }

  Record record;
  Trace trace;

 private:
  static const Operations& operations() { return operationsOf(mesh::wire::schemaOf<Record>.name); }
};

}  // namespace harness
