// The byte order of a message, and unaligned access in it.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "host/serial_env.hpp"

namespace mesh::host {

// Neighbouring integers are put together and stored as one in some places.
static_assert(std::endian::native == std::endian::little, "the devices are little-endian");

enum class ByteOrder {
  Host,
  Reversed,
};

inline ByteOrder byteOrder(const Module& module) {
  return module.swapBytes.load(std::memory_order_relaxed) == 0 ? ByteOrder::Host
                                                               : ByteOrder::Reversed;
}

template <ByteOrder order, typename Integer>
constexpr Integer inOrder(Integer value) {
  static_assert(std::is_unsigned_v<Integer>);
  if constexpr (order == ByteOrder::Host || sizeof(Integer) == 1) {
    return value;
  } else if constexpr (sizeof(Integer) == 2) {
    return __builtin_bswap16(value);
  } else if constexpr (sizeof(Integer) == 4) {
    return __builtin_bswap32(value);
  } else {
    static_assert(sizeof(Integer) == 8);
    return __builtin_bswap64(value);
  }
}

// Nothing on the wire is aligned: an integer is read and written through memcpy.
template <typename Integer, ByteOrder order = ByteOrder::Host>
Integer load(const uint8_t* from) {
  Integer value = 0;
  std::memcpy(&value, from, sizeof value);
  return inOrder<order>(value);
}

template <ByteOrder order = ByteOrder::Host, typename Integer>
void store(uint8_t* to, Integer value) {
  value = inOrder<order>(value);
  std::memcpy(to, &value, sizeof value);
}

// A record's pointer, which may stand at any alignment too.
template <typename Pointee>
Pointee* loadPointer(const uint8_t* from) {
  Pointee* pointer = nullptr;
  std::memcpy(&pointer, from, sizeof pointer);
  return pointer;
}

inline void storePointer(uint8_t* to, const void* pointer) {
  std::memcpy(to, &pointer, sizeof pointer);
}

}  // namespace mesh::host
