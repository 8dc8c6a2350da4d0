// The books of the allocator: one account an owner, one an owner and caller. The tables are of
// fixed size and never locked; an entry, once made, stays.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ddm {

// What was taken and not given back.
class Balance {
 public:
  // The bytes out afterwards.
  uint64_t take(uint64_t bytes) {
    blocks_.fetch_add(1, std::memory_order_relaxed);
    return bytes_.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  }
  void giveBack(uint64_t bytes) {
    blocks_.fetch_sub(1, std::memory_order_relaxed);
    bytes_.fetch_sub(bytes, std::memory_order_relaxed);
  }
  uint64_t blocks() const { return blocks_.load(std::memory_order_relaxed); }
  uint64_t bytes() const { return bytes_.load(std::memory_order_relaxed); }

 private:
  std::atomic<uint64_t> blocks_ = 0;
  std::atomic<uint64_t> bytes_ = 0;
};

// On a cache line of its own, so that owners do not slow one another down.
struct alignas(64) OwnerAccount {
  std::atomic<uint64_t> key = 0;  // the owner plus one; 0 while the account is free
  Balance out;
  std::atomic<uint64_t> peakBytes = 0;
  std::atomic<uint64_t> totalBlocks = 0;
  std::atomic<uint64_t> totalBytes = 0;
  std::atomic<uint64_t> refusals = 0;

  // Books the bytes as out. False, and a refusal counted instead, when more than `limit` would be.
  // Where threads meet at the limit, one that would have fitted may be refused too.
  [[nodiscard]] bool reserve(uint64_t bytes, uint64_t limit);

  // The bytes that were reserved are a block now.
  void noteTaken(uint64_t bytes);
};

struct CallerAccount {
  enum State : uint32_t {
    Free,
    BeingMade,
    Ready,  // the fields below are constant from now on
  };

  std::atomic<uint32_t> state = Free;
  uint32_t owner = 0;
  const char* caller = nullptr;
  char text[72] = {};  // a copy, since the caller's library may be unloaded; cut when longer
  Balance out;
};

inline constexpr size_t ownerCapacity = 64;
inline constexpr size_t callerCapacity = 2048;

// The first entry of each table is shared by all that found no entry of their own.
inline constexpr uint32_t sharedAccount = 0;

extern std::array<OwnerAccount, ownerCapacity> ownerAccounts;
extern std::array<CallerAccount, callerCapacity> callerAccounts;

inline uint32_t indexOf(const OwnerAccount& account) {
  return static_cast<uint32_t>(&account - ownerAccounts.data());
}

// The index of the account, which is made when there is none.
uint32_t ownerAccountFor(uint32_t owner);
uint32_t callerAccountFor(uint32_t owner, const char* caller);

// As ownerAccountFor, but makes none: null when the owner never took memory.
const OwnerAccount* findOwnerAccount(uint32_t owner);

}  // namespace ddm
