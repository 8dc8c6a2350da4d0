#include "support/operations.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"

namespace harness {
namespace {

#define OPERATIONS(X, identifier)                         \
  Operations{EXPORTED_OPERATIONS(X),                      \
             mesh::msg::messageOf<X>.id,                  \
             &receiveModule,                              \
             &sendModule,                                 \
             reinterpret_cast<const void*>(&X##__unpack), \
             reinterpret_cast<const void*>(&X##_free__unpacked)},

void addConfiguration(std::vector<Operations>& all) {
  using namespace mesh::l2vpn_cfg;
  all.insert(all.end(), {L2VPN_CFG_MESSAGES(OPERATIONS)});
}

void addStatistics(std::vector<Operations>& all) {
  using namespace mesh::l2vpn_stat;
  all.insert(all.end(), {L2VPN_STAT_MESSAGES(OPERATIONS)});
}

void addSynchronisation(std::vector<Operations>& all) {
  using namespace mesh::l2vpn_sync;
  all.insert(all.end(), {L2VPN_SYNC_MESSAGES(OPERATIONS)});
}

}  // namespace

const std::vector<Operations>& allOperations() {
  static const std::vector<Operations> all = [] {
    std::vector<Operations> list;
    addConfiguration(list);
    addStatistics(list);
    addSynchronisation(list);
    return list;
  }();
  return all;
}

const Operations& operationsOf(const char* name) {
  for (const Operations& operations : allOperations()) {
    if (std::strcmp(operations.name, name) == 0) {
      return operations;
    }
  }
  std::fprintf(stderr, "no message %s\n", name);
  std::abort();
}

}  // namespace harness
