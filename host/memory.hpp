// Memory: unaligned integers in either byte order, and the door to the bounded memory functions.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>

extern "C" {
[[gnu::weak]] int memcpy_s(void* to, size_t room, const void* from, size_t count);
[[gnu::weak]] int memset_s(void* to, size_t room, int value, size_t count);
[[gnu::weak]] int memcpy_sOptAsm(void* to, size_t room, const void* from, size_t count);
}

namespace mesh::host {

// Some places store neighbouring integers as one.
static_assert(std::endian::native == std::endian::little, "the devices are little-endian");

enum class ByteOrder {
  Host,
  Reversed,
};

// The unsigned integer of `size` bytes: 1, 2, 4 or 8.
template <size_t size>
using Unsigned = std::tuple_element_t<std::bit_width(size) - 1,
                                      std::tuple<uint8_t, uint16_t, uint32_t, uint64_t>>;

// Copies an integer of `size` bytes from the byte order `order` to the host's, or back.
template <ByteOrder order>
void copyInteger(uint8_t* to, const uint8_t* from, size_t size) {
  for (size_t at = 0; at < size; ++at) {
    to[at] = from[order == ByteOrder::Host ? at : size - 1 - at];
  }
}

// Nothing on the wire is aligned: integers and pointers are read and written through memcpy.
template <typename Value, ByteOrder order = ByteOrder::Host>
Value load(const uint8_t* from) {
  Value value{};
  if constexpr (order == ByteOrder::Host) {
    std::memcpy(&value, from, sizeof value);
  } else {
    copyInteger<order>(reinterpret_cast<uint8_t*>(&value), from, sizeof value);
  }
  return value;
}

template <typename Value>
void store(uint8_t* to, Value value) {
  std::memcpy(to, &value, sizeof value);
}

// Copies and fills of a size known at run time. The caller has checked the size. They use the
// process's bounded memory functions. The C library's function does the work where the process has
// none, or where it refuses (a size above its own limit, for example): no byte stays unwritten.
// Source and destination do not overlap.
inline void copyBytes(void* to, const void* from, size_t count) {
  if (&::memcpy_sOptAsm == nullptr || ::memcpy_sOptAsm(to, count, from, count) != 0) {
    std::memcpy(to, from, count);
  }
}

inline void copyChecked(void* to, const void* from, size_t count) {
  if (&::memcpy_s == nullptr || ::memcpy_s(to, count, from, count) != 0) {
    std::memcpy(to, from, count);
  }
}

inline void clearBytes(void* to, size_t count) {
  if (&::memset_s == nullptr || ::memset_s(to, count, 0, count) != 0) {
    std::memset(to, 0, count);
  }
}

// Arrays and records up to this size are copied and cleared in place.
inline constexpr size_t largestInPlace = 256;

// For the slot reader, which walks a schema at run time.
inline void copyArray(uint8_t* to, const uint8_t* from, size_t count) {
  if (count <= largestInPlace) {
    std::memcpy(to, from, count);
  } else {
    copyChecked(to, from, count);
  }
}

inline void clearRecord(uint8_t* to, size_t count) {
  if (count <= largestInPlace) {
    std::memset(to, 0, count);
  } else {
    clearBytes(to, count);
  }
}

// The most that one store holds.
inline constexpr size_t chunk = 16;

// For sizes that the compiler knows. Moves sixteen bytes at a time; the last move overlaps the one
// before. Left to themselves, compilers use string instructions for some sizes, which cost more
// than the rest of a message.
template <size_t count>
void copyConstant(uint8_t* to, const uint8_t* from) {
  if constexpr (count > largestInPlace) {
    copyChecked(to, from, count);
  } else if constexpr (count <= chunk) {
    std::memcpy(to, from, count);
  } else {
    for (size_t at = 0; at + chunk <= count; at += chunk) {
      std::memcpy(to + at, from + at, chunk);
    }
    if constexpr (count % chunk != 0) {
      std::memcpy(to + count - chunk, from + count - chunk, chunk);
    }
  }
}

}  // namespace mesh::host
