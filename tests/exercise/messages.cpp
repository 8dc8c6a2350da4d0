#include "exercise/messages.hpp"

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"

namespace exercise {
namespace {

#define OPERATIONS(X, identifier)    \
  Operations{EXPORTED_OPERATIONS(X), \
             mesh::msg::messageOf<X>.policy.arrangement == mesh::msg::Arrangement::Fixed},

}  // namespace

const std::vector<Operations>& messages() {
  static const std::vector<Operations> all{L2VPN_CFG_MESSAGES(OPERATIONS) L2VPN_STAT_MESSAGES(
      OPERATIONS) L2VPN_SYNC_MESSAGES(OPERATIONS)};
  return all;
}

}  // namespace exercise
