// Copies scattered bytes with few stores.
//
// Stores are what a message costs most. Three things save them: a store may run over into what is
// written next; it may write again what already lies there; and a pair puts sixteen bytes together
// from two sources of eight. Plans are made while the library is compiled, and carried out as
// straight code.
#pragma once

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
  // More than that is one array, and copied as a whole.
  [[nodiscard]] constexpr bool isWhole() const { return size > host::largestInPlace; }
  [[nodiscard]] constexpr Origin originOf(uint32_t at) const {
    return {origin.from + at - to, origin.isConstant};
  }
};

template <size_t capacity>
struct Stretches {
  std::array<Stretch, capacity> list{};
  size_t count = 0;

  // Adds a stretch, as a part of the last one where it only goes on with it.
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

// Looks for the store that reaches furthest, again and again.
class StorePlanner {
 public:
  // `stretches` cover the destination's bytes from front to back without a gap.
  constexpr StorePlanner(std::span<const Stretch> stretches, const PlanLimits& limits)
      : stretches_(stretches), limits_(limits), end_(stretches.back().end()) {}

  constexpr StorePlan plan() {
    StorePlan plan;
    for (uint32_t laid = stretches_.front().to; laid < end_; laid = reach_) {
      plan.stores[plan.count++] = furthest(laid);
    }
    return plan;
  }

 private:
  static constexpr uint32_t chunk = host::chunk;
  static constexpr uint32_t pairHalf = chunk / 2;

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

  // The store after which most lies there, when everything before `laid` does. Of equals, the one
  // that is no pair, and the one that begins last.
  constexpr Store furthest(uint32_t laid) {
    const Stretch& next = stretchAt(laid);
    if (next.isWhole()) {
      reach_ = next.end();
      return {laid, next.size, next.origin, {}, false};
    }
    reach_ = laid;
    for (uint32_t to = laid + 1; to-- > first(laid);) {
      tryPlain(to);
    }
    for (uint32_t to = laid + 1; to-- > first(laid);) {
      tryPair(to);
    }
    return best_;
  }

  // Where a store that adds to what is laid may begin.
  constexpr uint32_t first(uint32_t laid) const {
    const uint32_t begin = stretches_.front().to;
    return laid < begin + chunk ? begin : laid + 1 - chunk;
  }

  constexpr void consider(const Store& store, uint32_t reach) {
    const uint32_t end = store.to + store.size;
    if ((reach < end ? reach : end) > reach_) {
      reach_ = reach < end ? reach : end;
      best_ = store;
    }
  }

  // The widest store there is room for: a narrower one costs as much and lays down no more.
  constexpr void tryPlain(uint32_t to) {
    const Stretch& stretch = stretchAt(to);
    uint32_t size = chunk;
    while (to + size > end_ || !mayRead(stretch.originOf(to), size)) {
      size /= 2;
    }
    consider({to, size, stretch.originOf(to), {}, false}, stretch.end());
  }

  constexpr void tryPair(uint32_t to) {
    const uint32_t middle = to + pairHalf;
    if (to + chunk > end_ || stretchAt(to).end() < middle) {
      return;
    }
    const Stretch& second = stretchAt(middle);
    const Origin low = stretchAt(to).originOf(to);
    const Origin high = second.originOf(middle);
    if (!second.isWhole() && mayRead(low, pairHalf) && mayRead(high, pairHalf)) {
      consider({to, chunk, low, high, true}, second.end());
    }
  }

  const std::span<const Stretch> stretches_;
  const PlanLimits limits_;
  const uint32_t end_;
  uint32_t reach_ = 0;
  Store best_{};
};

constexpr StorePlan planStores(std::span<const Stretch> stretches, const PlanLimits& limits) {
  return StorePlanner(stretches, limits).plan();
}

// Eight bytes for each half. As doubles, which are moved and never calculated with: compilers load
// those straight into the halves of a register.
inline void storePair(uint8_t* to, const uint8_t* low, const uint8_t* high) {
  using Halves [[gnu::vector_size(16)]] = double;
  static_assert(sizeof(double) == 8);
  host::store(to, Halves{host::load<double>(low), host::load<double>(high)});
}

}  // namespace mesh::wire
