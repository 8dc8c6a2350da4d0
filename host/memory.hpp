// The door to the bounded memory functions. A process that has its own by these names is served by
// them; where it has none, fallbacks of the same meaning serve (Annex K of C11, without a handler).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" {
[[gnu::weak]] int memcpy_s(void* to, size_t room, const void* from, size_t count);
[[gnu::weak]] int memset_s(void* to, size_t room, int value, size_t count);
[[gnu::weak]] int memcpy_sOptAsm(void* to, size_t room, const void* from, size_t count);
}

namespace mesh::host {

// Zero on success. On a violation (null pointer, count above room, overlap) the destination's room
// is cleared (copy) or filled (fill) where it is a valid one, and the result is not zero.
int fallbackCopy(void* to, size_t room, const void* from, size_t count);
int fallbackFill(void* to, size_t room, int value, size_t count);

// Copies and fills of a size that only the running process knows. The caller has checked it, so
// the result has nothing to tell.
inline void copyBytes(void* to, const void* from, size_t count) {
  if (&::memcpy_sOptAsm != nullptr) {
    static_cast<void>(::memcpy_sOptAsm(to, count, from, count));
  } else {
    static_cast<void>(fallbackCopy(to, count, from, count));
  }
}

inline void clearBytes(void* to, size_t count) {
  if (&::memset_s != nullptr) {
    static_cast<void>(::memset_s(to, count, 0, count));
  } else {
    static_cast<void>(fallbackFill(to, count, 0, count));
  }
}

inline void copyChecked(void* to, const void* from, size_t count) {
  if (&::memcpy_s != nullptr) {
    static_cast<void>(::memcpy_s(to, count, from, count));
  } else {
    static_cast<void>(fallbackCopy(to, count, from, count));
  }
}

// Up to this size, what has a constant size is copied and cleared in place.
inline constexpr size_t largestInPlace = 256;

// For those who walk a schema while they run: an array's contents, a record.
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

// For those whom the compiler knows the size from. Moved sixteen bytes at a time, the last ones
// overlapping those before: left to themselves, compilers turn some sizes into string instructions,
// which cost more than the rest of a message together.
template <size_t count>
[[gnu::always_inline]] inline void copyConstant(uint8_t* to, const uint8_t* from) {
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

template <size_t count>
[[gnu::always_inline]] inline void clearConstant(uint8_t* to) {
  if constexpr (count > largestInPlace) {
    clearBytes(to, count);
  } else if constexpr (count <= chunk) {
    std::memset(to, 0, count);
  } else {
    for (size_t at = 0; at + chunk <= count; at += chunk) {
      std::memset(to + at, 0, chunk);
    }
    if constexpr (count % chunk != 0) {
      std::memset(to + count - chunk, 0, chunk);
    }
  }
}

}  // namespace mesh::host
