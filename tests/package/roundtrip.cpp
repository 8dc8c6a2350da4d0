// A program that packs and unpacks, in C++17.
#include <algorithm>
#include <array>
#include <iostream>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"

int main() {
  l2vpn_sync_vpls_ac_update update{};
  update.f0 = 7;
  update.f1.f0 = 0x01020304;
  update.f1.f9[11] = 0xEE;
  std::array<uint8_t, 256> buffer{};
  auto length = static_cast<uint32_t>(buffer.size());
  l2vpn_sync_vpls_ac_update received{};
  if (l2vpn_sync_vpls_ac_update__pack(&update, buffer.data(), &length) != 0 ||
      l2vpn_sync_vpls_ac_update__unpack(buffer.data(), length, &received) != sizeof received ||
      received.f0 != 7 || received.f1.f0 != 0x01020304 ||
      !std::equal(std::begin(update.f1.f9), std::end(update.f1.f9), received.f1.f9)) {
    std::cout << "the record came back another\n";
    return 1;
  }
  std::cout << "packed and unpacked\n";
}
