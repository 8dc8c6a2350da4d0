// The accounting allocator.
#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ddm/osal.h"
#include "ddm/osal_workstation.h"
#include "osal/accounts.hpp"
#include "osal/block.hpp"
#include "osal/export.hpp"
#include "osal/faults.hpp"

namespace ddm {

constinit Faults faults;

namespace {

// The owner that decodes messages. Only this owner uses the cache.
constexpr uint32_t decodingOwner = 12;

constexpr uint64_t mebibyte = uint64_t{1} << 20;
constexpr uint64_t usualLimit = 256 * mebibyte;

// $DDM_OSAL_OWNER_LIMIT_MIB, or the usual limit if it is not a number.
uint64_t limitByEnvironment() {
  const char* wish = std::getenv("DDM_OSAL_OWNER_LIMIT_MIB");
  uint32_t number = 0;
  if (wish == nullptr) {
    return usualLimit;
  }
  const char* const last = wish + std::strlen(wish);
  const auto [end, error] = std::from_chars(wish, last, number);
  if (error != std::errc{} || end != last) {
    return usualLimit;
  }
  return number == 0 ? UINT64_MAX : number * mebibyte;
}

// The limit of each owner. Read at the first request: other libraries may allocate while they are
// loaded.
constexpr uint64_t notRead = 0;
constinit std::atomic<uint64_t> ownerLimit = notRead;

uint64_t currentLimit() {
  uint64_t limit = ownerLimit.load(std::memory_order_relaxed);
  if (limit == notRead) {
    const uint64_t read = limitByEnvironment();
    // Unless another thread has just set it.
    if (ownerLimit.compare_exchange_strong(limit, read, std::memory_order_relaxed)) {
      return read;
    }
  }
  return limit;
}

void* take(uint32_t size, uint32_t owner, const char* caller) {
  OwnerAccount& account = ownerAccounts[ownerAccountFor(owner)];
  // Check the limit before calling malloc.
  if (!account.reserve(size, currentLimit())) {
    return nullptr;
  }
  void* const memory = std::malloc(sizeof(BlockHeader) + size);
  if (memory == nullptr) {
    account.out.giveBack(size);
    return nullptr;
  }
  account.noteTaken(size);
  auto* const header = new (memory) BlockHeader{.size = size,
                                                .owner = owner,
                                                .ownerAccount = indexOf(account),
                                                .callerAccount = callerAccountFor(owner, caller),
                                                .unused = 0,
                                                .mark = 0};
  callerAccounts[header->callerAccount].out.take(size);
  markInUse(header);
  return bytesOf(header);
}

[[gnu::cold]] void report(const void* block, uint32_t owner, const char* caller, const char* what) {
  static const char* const env[] = {"OSAL"};
  DDM_OsalLogWrite(env, 2, 0, "", 0, "DDM_OsalMemFree", "%s: block %p, owner 0x%X, caller %s", what,
                   block, owner, caller != nullptr ? caller : "(no caller)");
}

void giveBack(void* block, uint32_t owner, const char* caller) {
  switch (takeBack(block)) {
    case BlockState::Freed:
      faults.doubleFree.fetch_add(1, std::memory_order_relaxed);
      return report(block, owner, caller, "freed twice");
    case BlockState::Foreign:
      faults.foreignFree.fetch_add(1, std::memory_order_relaxed);
      return report(block, owner, caller, "not a block of this allocator");
    case BlockState::InUse:
      break;
  }
  BlockHeader* const header = headerOf(block);
  if (header->owner != owner) {
    faults.wrongOwner.fetch_add(1, std::memory_order_relaxed);
    report(block, owner, caller, "freed under another owner");
  }
  ownerAccounts[header->ownerAccount].out.giveBack(header->size);
  callerAccounts[header->callerAccount].out.giveBack(header->size);
  std::free(header);
}

}  // namespace
}  // namespace ddm

DDM_OSAL_EXPORT void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return ddm::take(size, owner, caller);
}

DDM_OSAL_EXPORT void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller) {
  // malloc already caches small blocks.
  return ddm::take(size, owner, caller);
}

DDM_OSAL_EXPORT void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller) {
  if (block != nullptr) {
    ddm::giveBack(block, owner, caller);
  }
}

DDM_OSAL_EXPORT void ddm_osal_owner_limit(uint64_t bytes) {
  ddm::ownerLimit.store(std::max<uint64_t>(bytes, 1), std::memory_order_relaxed);
}

DDM_OSAL_EXPORT uint32_t DDM_OsalMemUseFlagGet(uint32_t owner) {
  const char* wish = std::getenv("DDM_OSAL_CACHE");
  const bool refused = wish != nullptr && std::strcmp(wish, "0") == 0;
  return owner == ddm::decodingOwner && !refused ? 1 : 0;
}
