// Copies scattered bytes with few stores.
//
// Stores are most of a message's cost. Three things save stores: a store may run over into what is
// written next; it may write again what is already there; and a pair combines two sources of eight
// bytes in one store. Plans are made while the library is compiled, and become straight code.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "host/memory.hpp"

namespace mesh::wire {

// Where bytes come from: from the source at `from`, or from the constants there.
struct Origin {
  uint32_t from;
  bool isConstant;
};

// Neighbouring bytes of the destination, at `to`.
struct Stretch {
  uint32_t to;
  uint32_t size;
  Origin origin;

  [[nodiscard]] constexpr uint32_t end() const { return to + size; }
  // A large array is copied as a whole.
  [[nodiscard]] constexpr bool isWhole() const { return size > host::largestInPlace; }
  [[nodiscard]] constexpr Origin originOf(uint32_t at) const {
    return {origin.from + at - to, origin.isConstant};
  }
};

template <size_t capacity>
struct Stretches {
  std::array<Stretch, capacity> list{};
  size_t count = 0;

  // Adds a stretch, or extends the last one where `next` continues it.
  constexpr void append(const Stretch& next) {
    if (next.size == 0) {
      return;
    }
    if (count > 0) {
      Stretch& last = list[count - 1];
      if (last.origin.isConstant == next.origin.isConstant && last.end() == next.to &&
          last.origin.from + last.size == next.origin.from &&
          last.size + next.size <= host::largestInPlace) {
        last.size += next.size;
        return;
      }
    }
    list[count++] = next;
  }

  [[nodiscard]] constexpr std::span<const Stretch> all() const { return {list.data(), count}; }
};

// One store of `size` bytes; of a pair, the second half comes from `high`. More than a store holds
// is copied as a whole.
struct Store {
  uint32_t to;
  uint32_t size;
  Origin low;
  Origin high;
  bool isPair;
};

struct StorePlan {
  std::array<Store, 256> stores{};
  size_t count = 0;
};

// What may be read: the first bytes of the source, and of the constants.
struct PlanLimits {
  uint32_t source;
  uint32_t constants;
};

// Finds a plan with the fewest stores, and with few pairs, which cost one instruction more. The
// forward pass takes the store that reaches furthest, which gives the number of stores. The
// backward pass chooses them, plain ones where they suffice.
class StorePlanner {
 public:
  // `stretches` cover the destination's bytes from front to back without a gap.
  constexpr StorePlanner(std::span<const Stretch> stretches, const PlanLimits& limits)
      : stretches_(stretches), limits_(limits), end_(stretches.back().end()) {}

  constexpr StorePlan plan() const {
    StorePlan plan;
    // The furthest end that so many stores can reach.
    std::array<uint32_t, std::tuple_size_v<decltype(plan.stores)> + 1> reach{};
    reach[0] = stretches_.front().to;
    while (reach[plan.count] < end_) {
      reach[plan.count + 1] = furthest(reach[plan.count]);
      ++plan.count;
    }
    uint32_t wanted = end_;
    for (size_t index = plan.count; index-- > 0;) {
      plan.stores[index] = storeBetween(reach[index], wanted);
      wanted = plan.stores[index].to;
    }
    return plan;
  }

 private:
  static constexpr uint32_t chunk = host::chunk;
  static constexpr uint32_t pairHalf = chunk / 2;

  // A store, and the end of the correct bytes that it writes; 0 where there is no such store.
  struct Candidate {
    Store store;
    uint32_t reach;
  };

  constexpr const Stretch& stretchAt(uint32_t to) const {
    size_t index = 0;
    while (stretches_[index].end() <= to) {
      ++index;
    }
    return stretches_[index];
  }

  constexpr bool mayRead(const Origin& origin, uint32_t size) const {
    return origin.from + size <= (origin.isConstant ? limits_.constants : limits_.source);
  }

  // The widest store for which there is room: a narrower one costs as much and writes no more.
  constexpr Candidate plainAt(uint32_t to) const {
    const Stretch& stretch = stretchAt(to);
    const Origin origin = stretch.originOf(to);
    if (stretch.isWhole()) {
      return {{to, stretch.size, origin, {}, false}, to == stretch.to ? stretch.end() : 0};
    }
    uint32_t size = chunk;
    while (to + size > end_ || !mayRead(origin, size)) {
      size /= 2;
    }
    return {{to, size, origin, {}, false}, std::min(stretch.end(), to + size)};
  }

  constexpr Candidate pairAt(uint32_t to) const {
    const uint32_t middle = to + pairHalf;
    if (to + chunk > end_ || stretchAt(to).end() < middle || stretchAt(middle).isWhole()) {
      return {};
    }
    const Origin low = stretchAt(to).originOf(to);
    const Origin high = stretchAt(middle).originOf(middle);
    const bool mayReadBoth = mayRead(low, pairHalf) && mayRead(high, pairHalf);
    return {{to, chunk, low, high, true},
            mayReadBoth ? std::min(stretchAt(middle).end(), to + chunk) : 0};
  }

  // The first place of a store that can extend what is written up to `laid`.
  constexpr uint32_t firstFor(uint32_t laid) const {
    const uint32_t begin = stretches_.front().to;
    return laid < begin + chunk ? begin : laid + 1 - chunk;
  }

  constexpr uint32_t furthest(uint32_t laid) const {
    uint32_t reach = laid;
    for (uint32_t to = firstFor(laid); to <= laid; ++to) {
      reach = std::max({reach, plainAt(to).reach, pairAt(to).reach});
    }
    return reach;
  }

  // A store that begins at or before `laid` and is correct from there to `wanted`.
  constexpr Store storeBetween(uint32_t laid, uint32_t wanted) const {
    for (uint32_t to = firstFor(laid); to <= laid; ++to) {
      if (plainAt(to).reach >= wanted) {
        return plainAt(to).store;
      }
    }
    uint32_t to = firstFor(laid);
    while (pairAt(to).reach < wanted) {
      ++to;
    }
    return pairAt(to).store;
  }

  const std::span<const Stretch> stretches_;
  const PlanLimits limits_;
  const uint32_t end_;
};

constexpr StorePlan planStores(std::span<const Stretch> stretches, const PlanLimits& limits) {
  return StorePlanner(stretches, limits).plan();
}

// Eight bytes for each half. The type is double because compilers load doubles straight into the
// halves of a register.
inline void storePair(uint8_t* to, const uint8_t* low, const uint8_t* high) {
  using Halves [[gnu::vector_size(16)]] = double;
  static_assert(sizeof(double) == 8);
  host::store(to, Halves{host::load<double>(low), host::load<double>(high)});
}

}  // namespace mesh::wire
