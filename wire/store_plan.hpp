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
};

template <size_t capacity>
struct Stretches {
  std::array<Stretch, capacity> list{};
  size_t count = 0;

  // Adds a stretch, as a part of the last one where it only goes on with it. What is copied as a
  // whole is one array, never a run of fields.
  constexpr void append(const Stretch& next) {
    if (next.size == 0) {
      return;
    }
    if (count > 0) {
      Stretch& last = list[count - 1];
      if (last.origin.isConstant == next.origin.isConstant && last.to + last.size == next.to &&
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

namespace detail {

constexpr bool isCopiedAsAWhole(const Stretch& stretch) {
  return stretch.size > host::largestInPlace;
}

// Looks for the shortest plan over all ways to lay down neighbouring stretches.
class StorePlanner {
 public:
  static constexpr uint32_t largest = 2 * host::largestInPlace;

  constexpr StorePlanner(std::span<const Stretch> stretches, const PlanLimits& limits)
      : limits_(limits), begin_(stretches.front().to), size_(0) {
    for (const Stretch& stretch : stretches) {
      for (uint32_t at = 0; at < stretch.size; ++at) {
        stretchAt_[size_++] = &stretch;
      }
    }
  }

  constexpr void addTo(StorePlan& plan) {
    best_[0].cost = 0;
    for (uint32_t laid = 0; laid < size_; ++laid) {
      if (best_[laid].cost != unreached) {
        tryStores(laid);
      }
    }
    for (uint32_t laid = size_; laid > 0; laid = best_[laid].before) {
      ++plan.count;
    }
    size_t index = plan.count;
    for (uint32_t laid = size_; laid > 0; laid = best_[laid].before) {
      plan.stores[--index] = best_[laid].store;
      plan.stores[index].to += begin_;
    }
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
    return {stretch.origin.from + begin_ + to - stretch.to, stretch.origin.isConstant};
  }

  constexpr uint32_t endAt(uint32_t to) const {
    return stretchAt_[to]->to + stretchAt_[to]->size - begin_;
  }

  constexpr void consider(uint32_t laid, uint32_t end, const Store& store) {
    const uint32_t cost = best_[laid].cost + costOfStore + (store.isPair ? costOfPair : 0) +
                          ((begin_ + store.to) % pairHalf != 0 ? costOfCrossing : 0);
    if (end > laid && cost < best_[end].cost) {
      best_[end] = {cost, laid, store};
    }
  }

  constexpr void tryStores(uint32_t laid) {
    const uint32_t first = laid < chunk ? 0 : laid + 1 - chunk;
    for (uint32_t to = laid + 1; to-- > first;) {
      if (to == laid || isPromising(to)) {
        tryPlain(laid, to);
        tryPair(laid, to);
      }
    }
  }

  constexpr bool isBoundary(uint32_t to) const {
    return to == size_ || (to < size_ && stretchAt_[to]->to - begin_ == to);
  }

  // Whether it may be worth laying down something again from here: for the alignment, for a pair's
  // two halves, or to end where a stretch does.
  constexpr bool isPromising(uint32_t to) const {
    return (begin_ + to) % pairHalf == 0 || isBoundary(to + pairHalf) || isBoundary(to + chunk);
  }

  // The widest store there is room for: a narrower one costs as much and lays down no more.
  constexpr void tryPlain(uint32_t laid, uint32_t to) {
    if (endAt(to) <= laid) {
      return;
    }
    const Origin origin = originAt(to);
    uint32_t size = chunk;
    while (to + size > size_ || !mayRead(origin, size)) {
      size /= 2;
    }
    consider(laid, endAt(to) < to + size ? endAt(to) : to + size, {to, size, origin, {}, false});
  }

  constexpr void tryPair(uint32_t laid, uint32_t to) {
    const uint32_t middle = to + pairHalf;
    const uint32_t end = to + chunk;
    if (end > size_ || endAt(to) < middle || endAt(middle) <= laid) {
      return;
    }
    const Origin low = originAt(to);
    const Origin high = originAt(middle);
    if (mayRead(low, pairHalf) && mayRead(high, pairHalf)) {
      consider(laid, endAt(middle) < end ? endAt(middle) : end, {to, chunk, low, high, true});
    }
  }

  const PlanLimits limits_;
  const uint32_t begin_;
  uint32_t size_;
  std::array<const Stretch*, largest> stretchAt_{};
  std::array<Way, largest + 1> best_{};
};

}  // namespace detail

// `stretches` cover the destination's bytes from front to back without a gap.
constexpr StorePlan planStores(std::span<const Stretch> stretches, const PlanLimits& limits) {
  StorePlan plan;
  size_t first = 0;
  while (first < stretches.size()) {
    size_t end = first;
    uint32_t size = 0;
    while (end < stretches.size() && !detail::isCopiedAsAWhole(stretches[end]) &&
           size + stretches[end].size <= detail::StorePlanner::largest) {
      size += stretches[end++].size;
    }
    if (end > first) {
      detail::StorePlanner(stretches.subspan(first, end - first), limits).addTo(plan);
    }
    if (end < stretches.size() && detail::isCopiedAsAWhole(stretches[end])) {
      const Stretch& whole = stretches[end++];
      plan.stores[plan.count++] = {whole.to, whole.size, whole.origin, {}, false};
    }
    first = end;
  }
  return plan;
}

// Eight bytes for each half. As doubles, which are moved and never calculated with: compilers load
// those straight into the halves of a register.
[[gnu::always_inline]] inline void storePair(uint8_t* to, const uint8_t* low, const uint8_t* high) {
  using Halves [[gnu::vector_size(16)]] = double;
  static_assert(sizeof(double) == 8);
  double lowBytes = 0;
  double highBytes = 0;
  std::memcpy(&lowBytes, low, sizeof lowBytes);
  std::memcpy(&highBytes, high, sizeof highBytes);
  const Halves halves{lowBytes, highBytes};
  std::memcpy(to, &halves, sizeof halves);
}

}  // namespace mesh::wire
