// The allocator's accounts: one per owner, and one per owner and caller. The tables have a fixed
// size and no locks. An entry is never removed.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ddm {

// Blocks that are allocated and not freed.
class Balance {
 public:
  // Returns the new number of bytes.
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

// On its own cache line: owners do not slow each other down.
struct alignas(64) OwnerAccount {
  std::atomic<uint64_t> key = 0;  // the owner plus one; 0 while the account is free
  Balance out;
  std::atomic<uint64_t> peakBytes = 0;
  std::atomic<uint64_t> totalBlocks = 0;
  std::atomic<uint64_t> totalBytes = 0;
  std::atomic<uint64_t> refusals = 0;

  // Adds the bytes to the balance. Above `limit` it counts a refusal and returns false. When
  // threads race at the limit, a request that fits may be refused too.
  [[nodiscard]] bool reserve(uint64_t bytes, uint64_t limit);

  // Counts the reserved bytes as an allocated block.
  void noteTaken(uint64_t bytes);
};

struct CallerAccount {
  enum State : uint32_t {
    Free,
    BeingMade,
    Ready,  // owner, caller and text no longer change
  };

  std::atomic<uint32_t> state = Free;
  uint32_t owner = 0;
  const char* caller = nullptr;
  char text[72] = {};  // a copy, cut if too long: the caller's library may be unloaded
  Balance out;
};

inline constexpr size_t ownerCapacity = 64;
inline constexpr size_t callerCapacity = 2048;

// The first entry of each table is shared by all that found no free entry.
inline constexpr uint32_t sharedAccount = 0;

extern std::array<OwnerAccount, ownerCapacity> ownerAccounts;
extern std::array<CallerAccount, callerCapacity> callerAccounts;

inline uint32_t indexOf(const OwnerAccount& account) {
  return static_cast<uint32_t>(&account - ownerAccounts.data());
}

// The index of the account. Creates the account if there is none.
uint32_t ownerAccountFor(uint32_t owner);
uint32_t callerAccountFor(uint32_t owner, const char* caller);

// As ownerAccountFor, but creates none: null when the owner never allocated.
const OwnerAccount* findOwnerAccount(uint32_t owner);

}  // namespace ddm
