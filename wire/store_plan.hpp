// How bytes that come from one place, or are known, are brought to another with few stores.
//
// Stores are what a message costs most. Three things save them: what is laid down from front to
// back may run over into what is laid down later; what already lies there may be laid down again;
// and sixteen bytes may be put together from two sources of eight. Plans are made while the library
// is compiled, the shortest there is, and carried out as straight code.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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
      if (last.origin.isConstant == next.origin.isConstant && last.to + last.size == next.to &&
          last.origin.from + last.size == next.origin.from) {
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
  std::array<Store, 64> stores{};
  size_t count = 0;
};

// What may be read: the first bytes of the source, and of the constants.
struct PlanLimits {
  uint32_t source;
  uint32_t constants;
};

namespace detail {

// Looks for the shortest plan over all ways to lay down the destination's first bytes.
template <uint32_t destination>
class StorePlanner {
 public:
  constexpr StorePlanner(std::span<const Stretch> stretches, const PlanLimits& limits)
      : limits_(limits) {
    for (const Stretch& stretch : stretches) {
      for (uint32_t at = 0; at < stretch.size; ++at) {
        stretchAt_[stretch.to + at] = &stretch;
      }
    }
  }

  constexpr StorePlan plan() {
    best_[0].cost = 0;
    for (uint32_t laid = 0; laid < destination; ++laid) {
      if (best_[laid].cost != unreached) {
        tryStores(laid);
      }
    }
    StorePlan plan;
    for (uint32_t laid = destination; laid > 0; laid = best_[laid].before) {
      ++plan.count;
    }
    size_t index = plan.count;
    for (uint32_t laid = destination; laid > 0; laid = best_[laid].before) {
      plan.stores[--index] = best_[laid].store;
    }
    return plan;
  }

 private:
  static constexpr uint32_t unreached = UINT32_MAX;
  static constexpr uint32_t chunk = host::chunk;
  static constexpr uint32_t pairHalf = chunk / 2;
  // A pair takes an instruction more than another store. Images and records lie at multiples of
  // eight, mostly, and stores that do too cross a cache line less often.
  static constexpr uint32_t costOfStore = 64;
  static constexpr uint32_t costOfPair = 6;
  static constexpr uint32_t costOfCrossing = 1;

  // The best way to have laid down everything before a place: the last store of it, and the place
  // that was reached before.
  struct Way {
    uint32_t cost = unreached;
    uint32_t before = 0;
    Store store{};
  };

  constexpr bool mayRead(const Origin& origin, uint32_t size) const {
    return origin.from + size <= (origin.isConstant ? limits_.constants : limits_.source);
  }

  constexpr Origin originAt(uint32_t to) const {
    const Stretch& stretch = *stretchAt_[to];
    return {stretch.origin.from + to - stretch.to, stretch.origin.isConstant};
  }

  constexpr uint32_t endAt(uint32_t to) const { return stretchAt_[to]->to + stretchAt_[to]->size; }

  constexpr bool isWhole(uint32_t to) const { return stretchAt_[to]->size > host::largestInPlace; }

  constexpr void consider(uint32_t laid, uint32_t end, const Store& store) {
    const uint32_t cost = best_[laid].cost + costOfStore + (store.isPair ? costOfPair : 0) +
                          (store.to % pairHalf != 0 ? costOfCrossing : 0);
    if (end > laid && cost < best_[end].cost) {
      best_[end] = {cost, laid, store};
    }
  }

  constexpr void tryStores(uint32_t laid) {
    if (isWhole(laid)) {
      consider(laid, endAt(laid), {laid, stretchAt_[laid]->size, originAt(laid), {}, false});
      return;
    }
    const uint32_t first = laid < chunk ? 0 : laid + 1 - chunk;
    for (uint32_t to = laid + 1; to-- > first;) {
      if (isWhole(to)) {
        break;
      }
      for (uint32_t size = 1; size <= chunk; size *= 2) {
        tryPlain(laid, to, size);
      }
      tryPair(laid, to);
    }
  }

  constexpr void tryPlain(uint32_t laid, uint32_t to, uint32_t size) {
    const Origin origin = originAt(to);
    if (to + size <= destination && mayRead(origin, size)) {
      const uint32_t end = endAt(to) < to + size ? endAt(to) : to + size;
      consider(laid, end, {to, size, origin, {}, false});
    }
  }

  constexpr void tryPair(uint32_t laid, uint32_t to) {
    const uint32_t middle = to + pairHalf;
    if (to + chunk > destination || endAt(to) < middle || isWhole(middle)) {
      return;
    }
    const Origin low = originAt(to);
    const Origin high = originAt(middle);
    if (mayRead(low, pairHalf) && mayRead(high, pairHalf)) {
      const uint32_t end = to + chunk;
      consider(laid, endAt(middle) < end ? endAt(middle) : end, {to, chunk, low, high, true});
    }
  }

  const PlanLimits limits_;
  std::array<const Stretch*, destination> stretchAt_{};
  std::array<Way, destination + 1> best_{};
};

}  // namespace detail

// `stretches` cover the destination's bytes from front to back without a gap.
template <uint32_t destination>
consteval StorePlan planStores(std::span<const Stretch> stretches, const PlanLimits& limits) {
  return detail::StorePlanner<destination>(stretches, limits).plan();
}

// Eight bytes for each half. As doubles, which are moved and never calculated with: compilers load
// those straight into the halves of a register.
[[gnu::always_inline]] inline void storePair(uint8_t* to, const uint8_t* low, const uint8_t* high) {
  using Pair [[gnu::vector_size(16)]] = double;
  static_assert(sizeof(double) == 8);
  double lowBytes = 0;
  double highBytes = 0;
  std::memcpy(&lowBytes, low, sizeof lowBytes);
  std::memcpy(&highBytes, high, sizeof highBytes);
  const Pair pair{lowBytes, highBytes};
  std::memcpy(to, &pair, sizeof pair);
}

}  // namespace mesh::wire
