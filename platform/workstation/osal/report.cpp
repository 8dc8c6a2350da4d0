// Reports of the allocator's accounts.
#include <map>
#include <string>
#include <utility>

#include "ddm/osal_workstation.h"
#include "osal/accounts.hpp"
#include "osal/export.hpp"
#include "osal/faults.hpp"

namespace ddm {
namespace {

struct Left {
  uint64_t blocks = 0;
  uint64_t bytes = 0;
};

unsigned long long number(uint64_t value) {
  return value;
}

ddm_osal_memory_usage usageOf(const OwnerAccount& account) {
  return {.blocks_out = account.out.blocks(),
          .bytes_out = account.out.bytes(),
          .peak_bytes_out = account.peakBytes.load(std::memory_order_relaxed),
          .total_blocks = account.totalBlocks.load(std::memory_order_relaxed),
          .total_bytes = account.totalBytes.load(std::memory_order_relaxed),
          .refusals = account.refusals.load(std::memory_order_relaxed)};
}

std::string ownerName(uint64_t key) {
  if (key == 0) {
    return "other owners";
  }
  char name[32];
  std::snprintf(name, sizeof name, "owner 0x%llX", number(key - 1));
  return name;
}

uint64_t reportOwners(FILE* to) {
  uint64_t blocksOut = 0;
  for (const OwnerAccount& account : ownerAccounts) {
    const ddm_osal_memory_usage usage = usageOf(account);
    if (usage.total_blocks == 0 && usage.refusals == 0) {
      continue;
    }
    blocksOut += usage.blocks_out;
    const std::string name = ownerName(account.key.load(std::memory_order_relaxed));
    std::fprintf(
        to,
        "%s: %llu blocks (%llu bytes) in use, peak %llu bytes, total %llu blocks (%llu bytes)\n",
        name.c_str(), number(usage.blocks_out), number(usage.bytes_out),
        number(usage.peak_bytes_out), number(usage.total_blocks), number(usage.total_bytes));
    if (usage.refusals != 0) {
      std::fprintf(to, "%s: %llu requests refused at the limit\n", name.c_str(),
                   number(usage.refusals));
    }
  }
  return blocksOut;
}

void reportCallers(FILE* to) {
  // Several accounts may have the same text, at different addresses.
  std::map<std::pair<uint32_t, std::string>, Left> byCaller;
  for (const CallerAccount& account : callerAccounts) {
    if (account.state.load(std::memory_order_acquire) == CallerAccount::Ready) {
      Left& left = byCaller[{account.owner, account.text}];
      left.blocks += account.out.blocks();
      left.bytes += account.out.bytes();
    }
  }
  for (const auto& [caller, left] : byCaller) {
    if (left.blocks != 0) {
      std::fprintf(to, "not freed: %llu blocks (%llu bytes), owner 0x%X, caller %s\n",
                   number(left.blocks), number(left.bytes), caller.first, caller.second.c_str());
    }
  }
  const Balance& others = callerAccounts[sharedAccount].out;
  if (others.blocks() != 0) {
    std::fprintf(to, "not freed: %llu blocks (%llu bytes), other callers\n",
                 number(others.blocks()), number(others.bytes()));
  }
}

}  // namespace
}  // namespace ddm

DDM_OSAL_EXPORT uint32_t ddm_osal_memory_usage_get(uint32_t owner, ddm_osal_memory_usage* out) {
  if (out == nullptr) {
    return 1;
  }
  const ddm::OwnerAccount* account = ddm::findOwnerAccount(owner);
  *out = account != nullptr ? ddm::usageOf(*account) : ddm_osal_memory_usage{};
  return 0;
}

DDM_OSAL_EXPORT uint32_t ddm_osal_memory_faults_get(ddm_osal_memory_faults* out) {
  if (out == nullptr) {
    return 1;
  }
  *out = {.wrong_owner = ddm::faults.wrongOwner.load(std::memory_order_relaxed),
          .double_free = ddm::faults.doubleFree.load(std::memory_order_relaxed),
          .foreign_free = ddm::faults.foreignFree.load(std::memory_order_relaxed)};
  return 0;
}

DDM_OSAL_EXPORT uint64_t ddm_osal_memory_report(FILE* to) {
  const uint64_t blocksOut = ddm::reportOwners(to);
  ddm::reportCallers(to);
  return blocksOut;
}
