// The service's numbers, written out: what peers have been built against. Nothing here is derived
// from the schema, and nothing is compiled into the library.

#include "l2vpn_stat/schema.hpp"
#include "wire/compact_size.hpp"

namespace mesh::l2vpn_stat {
namespace {

constexpr const msg::Message& message = msg::messageOf<l2vpn_stat_pw_stat>;
constexpr const wire::Record& record = *message.record;

static_assert(message.id == 0x98DB4DAE);
static_assert(message.policy.arrangement == msg::Arrangement::Fixed);
static_assert(message.policy.rootDecoding == msg::RootDecoding::ByTableReader);
static_assert(!wire::ownsMemory(record));

struct Place {
  wire::Kind kind;
  uint32_t inRecord;
  uint32_t fixedEntry;
};

constexpr Place places[] = {
    {wire::Kind::U32, 0, 4},    {wire::Kind::U32, 4, 8},   {wire::Kind::U8, 8, 12},
    {wire::Kind::Array, 9, 13}, {wire::Kind::U32, 12, 24}, {wire::Kind::U64, 16, 28},
    {wire::Kind::U64, 24, 36},  {wire::Kind::U64, 32, 44}, {wire::Kind::U64, 40, 52},
    {wire::Kind::U64, 48, 60},  {wire::Kind::U64, 56, 68}, {wire::Kind::U64, 64, 76},
    {wire::Kind::U64, 72, 84},
};

constexpr bool standsThere(size_t index) {
  const wire::Slot& slot = record.slots[index];
  return slot.kind == places[index].kind && slot.recordOffset == places[index].inRecord &&
         wire::fixedEntry(record, index) == places[index].fixedEntry;
}

static_assert(record.slots.size() == 13 && std::size(places) == 13);
static_assert(standsThere(0));
static_assert(standsThere(1));
static_assert(standsThere(2));
static_assert(standsThere(3));
static_assert(standsThere(4));
static_assert(standsThere(5));
static_assert(standsThere(6));
static_assert(standsThere(7));
static_assert(standsThere(8));
static_assert(standsThere(9));
static_assert(standsThere(10));
static_assert(standsThere(11));
static_assert(standsThere(12));
static_assert(record.slots[3].size == 3);

constexpr uint64_t scalars() {
  uint64_t size = 0;
  for (const wire::Slot& slot : record.slots) {
    size += wire::isScalar(slot.kind) ? slot.size : 0;
  }
  return size;
}

static_assert(record.size == 80);
static_assert(wire::vtableLength(record) == 30);
static_assert(4 + wire::detail::constantSize(record) == 49);
static_assert(4 + wire::detail::constantSize(record) + scalars() == 126);
static_assert(wire::fixedTableLength(record) == 92);
static_assert(wire::fixedVtable(record) == 96);
static_assert(wire::fixedLength(record) == 128);

#define ONE(...) +1

static_assert(0 L2VPN_STAT_MESSAGES(ONE) == 1);

}  // namespace
}  // namespace mesh::l2vpn_stat
