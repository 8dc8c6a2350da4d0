#include "exercise/messages.hpp"

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"

#define OPERATIONS(X, identifier) EXPORTED_OPERATIONS(X),

namespace exercise {

const std::vector<Operations>& messages() {
  static const std::vector<Operations> all{L2VPN_CFG_MESSAGES(OPERATIONS) L2VPN_STAT_MESSAGES(
      OPERATIONS) L2VPN_SYNC_MESSAGES(OPERATIONS)};
  return all;
}

}  // namespace exercise
