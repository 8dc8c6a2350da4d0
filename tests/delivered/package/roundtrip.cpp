// A program that packs and unpacks, in C++17: the bytes that docs/reading-a-buffer.md goes through.
#include <algorithm>
#include <array>
#include <iostream>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"

constexpr std::array<uint8_t, 96> documented{
    0x0c, 0, 0,    0, 0x08, 0, 0x0a, 0,    0x04, 0, 0x06, 0, 0x08, 0, 0,    0,  //
    0x07, 0, 0x1c, 0, 0,    0, 0x18, 0,    0x32, 0, 0x04, 0, 0,    0, 0,    0,  //
    0,    0, 0,    0, 0,    0, 0x08, 0,    0,    0, 0x0a, 0, 0x0e, 0, 0x18, 0,  //
    0,    0, 0x2a, 0, 0,    0, 0x12, 0x04, 0x08, 0, 0,    0, 0x14, 0, 0,    0,  //
    0x0c, 0, 0,    0, 0x01, 0, 0,    0,    0,    0, 0,    0, 0,    0, 0,    0,  //
    0x0c, 0, 0,    0, 0,    0, 0,    0,    0,    0, 0,    0, 0,    0, 0,    0};

int main() {
  l2vpn_sync_vpls_ac_update update{};
  update.f0 = 7;
  update.f1.f0 = 42;
  update.f1.f6 = 1042;
  update.f1.f8[0] = 1;
  std::array<uint8_t, 256> buffer{};
  auto length = static_cast<uint32_t>(buffer.size());
  l2vpn_sync_vpls_ac_update received{};
  if (l2vpn_sync_vpls_ac_update__pack(&update, buffer.data(), &length) != 0 ||
      length != documented.size() ||
      !std::equal(documented.begin(), documented.end(), buffer.begin())) {
    std::cout << "the packed bytes are not the documented ones\n";
    return 1;
  }
  if (l2vpn_sync_vpls_ac_update__unpack(buffer.data(), length, &received) != sizeof received ||
      received.f0 != 7 || received.f1.f0 != 42 ||
      !std::equal(std::begin(update.f1.f8), std::end(update.f1.f8), received.f1.f8)) {
    std::cout << "the record came back another\n";
    return 1;
  }
  std::cout << "packed and unpacked\n";
}
