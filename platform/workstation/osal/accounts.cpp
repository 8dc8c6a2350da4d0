#include "osal/accounts.hpp"

#include <cstdio>
#include <cstring>

namespace ddm {

constinit std::array<OwnerAccount, ownerCapacity> ownerAccounts{};
constinit std::array<CallerAccount, callerCapacity> callerAccounts{};

namespace {

// How many entries are tried for a key.
constexpr size_t callerReach = 32;

constexpr uint64_t spread(uint64_t value) {
  return (value * 0x9E3779B97F4A7C15u) >> 32;
}

// The index to try at `step`. Skips the shared account.
uint32_t placeOfOwner(uint32_t owner, size_t step) {
  return static_cast<uint32_t>(1 + (spread(owner) + step) % (ownerCapacity - 1));
}

bool isOf(const CallerAccount& account, uint32_t owner, const char* caller) {
  // Compare the text too: a new library may be loaded at the address of an unloaded one.
  return account.owner == owner && account.caller == caller &&
         std::strncmp(account.text, caller, sizeof account.text - 1) == 0;
}

}  // namespace

bool OwnerAccount::reserve(uint64_t bytes, uint64_t limit) {
  if (out.take(bytes) <= limit) {
    return true;
  }
  out.giveBack(bytes);
  refusals.fetch_add(1, std::memory_order_relaxed);
  return false;
}

void OwnerAccount::noteTaken(uint64_t bytes) {
  const uint64_t now = out.bytes();
  uint64_t peak = peakBytes.load(std::memory_order_relaxed);
  while (now > peak && !peakBytes.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
  }
  totalBlocks.fetch_add(1, std::memory_order_relaxed);
  totalBytes.fetch_add(bytes, std::memory_order_relaxed);
}

uint32_t ownerAccountFor(uint32_t owner) {
  const uint64_t wanted = uint64_t{owner} + 1;
  for (size_t step = 0; step < ownerCapacity - 1; ++step) {
    const uint32_t index = placeOfOwner(owner, step);
    std::atomic<uint64_t>& key = ownerAccounts[index].key;
    uint64_t found = key.load(std::memory_order_relaxed);
    if (found == 0 && key.compare_exchange_strong(found, wanted, std::memory_order_relaxed)) {
      return index;
    }
    if (found == wanted) {
      return index;
    }
  }
  return sharedAccount;
}

const OwnerAccount* findOwnerAccount(uint32_t owner) {
  for (size_t step = 0; step < ownerCapacity - 1; ++step) {
    const OwnerAccount& account = ownerAccounts[placeOfOwner(owner, step)];
    const uint64_t key = account.key.load(std::memory_order_relaxed);
    if (key == uint64_t{owner} + 1) {
      return &account;
    }
    if (key == 0) {
      return nullptr;
    }
  }
  return &ownerAccounts[sharedAccount];
}

uint32_t callerAccountFor(uint32_t owner, const char* caller) {
  if (caller == nullptr) {
    caller = "(no caller)";
  }
  const uint64_t place = spread(reinterpret_cast<uintptr_t>(caller) ^ (uint64_t{owner} << 48));
  for (size_t step = 0; step < callerReach; ++step) {
    const auto index = static_cast<uint32_t>(1 + (place + step) % (callerCapacity - 1));
    CallerAccount& account = callerAccounts[index];
    uint32_t state = account.state.load(std::memory_order_acquire);
    if (state == CallerAccount::Ready && isOf(account, owner, caller)) {
      return index;
    }
    // Skip an entry that another thread is creating. If it has the same key, there will be two
    // entries; the report adds them up.
    if (state == CallerAccount::Free &&
        account.state.compare_exchange_strong(state, CallerAccount::BeingMade,
                                              std::memory_order_relaxed)) {
      account.owner = owner;
      account.caller = caller;
      static_cast<void>(std::snprintf(account.text, sizeof account.text, "%s", caller));
      account.state.store(CallerAccount::Ready, std::memory_order_release);
      return index;
    }
  }
  return sharedAccount;
}

}  // namespace ddm
