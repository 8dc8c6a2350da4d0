#include "msg/proof.hpp"

#include "l2vpn_stat/schema.hpp"

namespace mesh::msg::proof {
namespace {

// Identifier, record size, field offsets, vtable length, smallest compact message; largest compact
// message, the image's table length, its vtable's place, its length, the slot entries.
static_assert(fixedMessage<l2vpn_stat_pw_stat>(
    {0x98DB4DAE,
     80,
     {0, 4, 8, 9, 12, 16, 24, 32, 40, 48, 56, 64, 72},
     30,
     49,
     0xFFFFFFFF,
     byTableReader},
    {126, 92, 96, 128, {4, 8, 12, 13, 24, 28, 36, 44, 52, 60, 68, 76, 84}}));

static_assert(wire::schemaOf<l2vpn_stat_pw_stat>.slots[3].size == 3);

static_assert(0 L2VPN_STAT_MESSAGES(MESH_COUNT_MESSAGE) == 1);

}  // namespace
}  // namespace mesh::msg::proof
