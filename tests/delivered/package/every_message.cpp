// A program in C++17 that packs and unpacks every message through the C++ headers.
#include <cstdio>
#include <cstring>

#include "mesh_l2vpn/inspect.hpp"

int main() {
  size_t good = 0;
  size_t calls = 0;
  const auto see = [&calls](const auto&) { ++calls; };
  mesh_l2vpn::handlers all(see);
  mesh_l2vpn::for_each_message([&](auto message) {
    using T = typename decltype(message)::record;
    const std::vector<uint8_t> zeros = mesh_l2vpn::pack(T{});
    const mesh_l2vpn::checked<T> received = mesh_l2vpn::checked_unpack<T>(zeros);
    uint8_t room[64 * 1024];
    mesh_l2vpn::span<uint8_t> packed(room);
    if (received && !mesh_l2vpn::pack(*received.record, packed) && packed.size() == zeros.size() &&
        std::memcmp(room, zeros.data(), zeros.size()) == 0 && all(message.id, &*received.record) &&
        !mesh_l2vpn::checked_unpack<T>({room, 7})) {
      ++good;
    } else {
      std::printf("%s came back another\n", message.name.data());
    }
  });
  std::printf("%zu messages, %zu handled\n", good, calls);
  const size_t every = mesh_l2vpn_message_count();
  return good == every && calls == every && all.unhandled() == 0 ? 0 : 1;
}
