// How bytes that come from one place, or are known, are brought to another with few stores.
//
// What is laid down from front to back may run over into what is laid down later, and what a
// stretch already holds may be laid down again: 25 bytes are two stores of 16. Plans are made while
// the library is compiled and carried out as straight code.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "host/memory.hpp"

namespace mesh::wire {

// Neighbouring bytes of the destination, at `to`: the source's bytes at `from`, or the constants'.
struct Stretch {
  uint32_t to;
  uint32_t from;
  uint32_t size;
  bool isConstant;
};

template <size_t capacity>
struct Stretches {
  std::array<Stretch, capacity> list{};
  size_t count = 0;

  constexpr void add(const Stretch& stretch) { list[count++] = stretch; }

  // Adds a stretch, as a part of the last one where it only goes on with it.
  constexpr void append(const Stretch& next) {
    if (next.size == 0) {
      return;
    }
    if (count > 0) {
      Stretch& last = list[count - 1];
      if (last.isConstant == next.isConstant && last.to + last.size == next.to &&
          last.from + last.size == next.from) {
        last.size += next.size;
        return;
      }
    }
    add(next);
  }

  [[nodiscard]] constexpr std::span<const Stretch> all() const { return {list.data(), count}; }
};

// What lies in the memory that a plan reads and writes. The source's first `source` bytes may be
// read, all of the destination may be written.
struct PlanLimits {
  uint32_t destination;
  uint32_t source;
  uint32_t constants;
};

// The width of one store that lays down `rest` bytes, or as many of them as one store can.
constexpr uint32_t storeWidth(uint32_t rest) {
  uint32_t width = 1;
  while (width < rest && width < host::chunk) {
    width *= 2;
  }
  return width;
}

// `stretches` cover the destination from front to back without a gap, from the first one on.
template <size_t capacity>
constexpr Stretches<capacity> planStores(std::span<const Stretch> stretches,
                                         const PlanLimits& limits) {
  Stretches<capacity> plan;
  for (const Stretch& stretch : stretches) {
    if (stretch.size > host::largestInPlace) {
      plan.add(stretch);
      continue;
    }
    for (uint32_t done = 0; done < stretch.size;) {
      const uint32_t rest = stretch.size - done;
      uint32_t width = storeWidth(rest);
      uint32_t start = done;
      if (width > rest) {
        const bool mayRunOver =
            stretch.to + done + width <= limits.destination &&
            stretch.from + done + width <= (stretch.isConstant ? limits.constants : limits.source);
        if (stretch.size >= width) {
          start = stretch.size - width;
        } else if (!mayRunOver) {
          width /= 2;
        }
      }
      plan.add({stretch.to + start, stretch.from + start, width, stretch.isConstant});
      done = start + width;
    }
  }
  return plan;
}

}  // namespace mesh::wire
