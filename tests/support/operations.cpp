#include "support/operations.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "oracle/messages/description.hpp"

namespace harness {

const Operations& operationsOf(std::string_view name) {
  if (const Operations* const found = exported::operationsOf(name)) {
    return *found;
  }
  std::fprintf(stderr, "no message %s\n", std::string(name).c_str());
  std::abort();
}

std::vector<Operations> compactMessages() {
  std::vector<Operations> compact;
  for (const Operations& operations : allOperations()) {
    if (!oracle::descriptionOf(operations.name).sentFixed) {
      compact.push_back(operations);
    }
  }
  return compact;
}

Modules modulesOf(const Operations& operations) {
  if (operations.service == "l2vpn_cfg") {
    return {&mesh::l2vpn_cfg::receiveModule, &mesh::l2vpn_cfg::sendModule};
  }
  if (operations.service == "l2vpn_stat") {
    return {&mesh::l2vpn_stat::receiveModule, &mesh::l2vpn_stat::sendModule};
  }
  return {&mesh::l2vpn_sync::receiveModule, &mesh::l2vpn_sync::sendModule};
}

}  // namespace harness
