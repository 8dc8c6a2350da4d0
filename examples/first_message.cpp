// Packs a record, unpacks it, and says why a damaged message is rejected. Needs no middleware.
#include <cstdio>

#include "mesh_l2vpn/inspect.hpp"

int main() {
  l2vpn_sync_vpls_ac_update update{};
  update.f0 = 7;      // a 16-bit value of the sender's
  update.f1.f0 = 42;  // the attachment circuit itself

  std::vector<uint8_t> message = mesh_l2vpn::pack(update);
  const auto received = mesh_l2vpn::unpack<l2vpn_sync_vpls_ac_update>(message);
  std::printf("%zu bytes: circuit %u, value %u\n", message.size(), received->f1.f0, received->f0);

  message.resize(10);
  const auto cut = mesh_l2vpn::checked_unpack<l2vpn_sync_vpls_ac_update>(message);
  std::printf("10 bytes: %s\n", cut ? "accepted" : cut.fault.text);
  return cut ? 1 : 0;
}
