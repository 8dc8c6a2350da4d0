// Places records and stack frames alike in every process. A record across two cache lines, or a
// stack frame across two pages, costs several times as much as the copy of a record.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <new>
#include <vector>

namespace bench {

inline constexpr size_t cacheLine = 64;
inline constexpr size_t page = 4096;

template <typename Item>
struct LineAllocator {
  using value_type = Item;

  LineAllocator() = default;
  template <typename Other>
  LineAllocator(const LineAllocator<Other>& /*other*/) {}

  Item* allocate(size_t count) {
    return static_cast<Item*>(::operator new (count * sizeof(Item), std::align_val_t{cacheLine}));
  }
  void deallocate(Item* items, size_t /*count*/) {
    ::operator delete (items, std::align_val_t{cacheLine});
  }
  bool operator==(const LineAllocator& /*other*/) const = default;
};

// Starts at a cache line.
template <typename Item>
using Placed = std::vector<Item, LineAllocator<Item>>;

// Times `pass`. The stack frames of its calls start right below a page boundary.
template <typename Pass>
[[gnu::noinline]] void timePasses(benchmark::State& state, Pass pass) {
  alignas(page) std::byte anchor;
  benchmark::DoNotOptimize(&anchor);
  for (auto _ : state) {
    pass();
    benchmark::ClobberMemory();
  }
}

}  // namespace bench
