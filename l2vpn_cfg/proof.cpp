// The service's numbers, written out: what peers have been built against. Nothing here is derived
// from the schemas, and nothing is compiled into the library. A number that no longer holds stops
// the compiler in its record's row, with a call named after what differs.

#include <initializer_list>

#include "l2vpn_cfg/schema.hpp"
#include "wire/compact_size.hpp"

namespace mesh::l2vpn_cfg::proof {

// Declared only: a call of one is not a constant expression.
void theIdentifierDiffers();
void theArrangementDiffers();
void theRootIsDecodedOtherwise();
void theLargestSizeDiffers();
void theRecordSizeDiffers();
void aFieldStandsElsewhere();
void theVtableLengthDiffers();
void theSmallestMessageDiffers();
void theLargestMessageDiffers();
void theFixedTableLengthDiffers();
void theFixedVtableStandsElsewhere();
void theFixedLengthDiffers();
void aFixedEntryDiffers();

consteval void require(bool holds, void (*complaint)()) {
  if (!holds) {
    complaint();
  }
}

struct Numbers {
  uint32_t id;
  uint32_t size;
  // Where each slot's value stands in the record; for byte strings and vectors the pointer, with
  // the length or count 4 or 8 bytes before it.
  std::initializer_list<uint32_t> offsets;
  uint32_t vtable;
  uint32_t smallest;
  uint64_t largestSize = 0xFFFFFFFF;
  msg::RootDecoding root = msg::RootDecoding::ByMessage;
};

// Of a record without out-of-line parts.
struct FixedNumbers {
  uint32_t largest;
  uint32_t tableLength;
  uint32_t vtableAt;
  uint32_t length;
  std::initializer_list<uint32_t> entries;
};

// A table with every scalar zero, every pointer null.
constexpr uint64_t smallestTable(const wire::Record& record) {
  uint64_t size = wire::detail::constantSize(record);
  for (const wire::Slot& slot : record.slots) {
    size += slot.kind == wire::Kind::Table ? smallestTable(*slot.nested) : 0;
  }
  return size;
}

constexpr uint64_t scalars(const wire::Record& record) {
  uint64_t size = 0;
  for (const wire::Slot& slot : record.slots) {
    size += wire::isScalar(slot.kind) ? slot.size : 0;
  }
  return size;
}

consteval void prove(const msg::Message& message, const Numbers& expected) {
  const wire::Record& record = *message.record;
  require(message.id == expected.id, theIdentifierDiffers);
  require(message.policy.rootDecoding == expected.root, theRootIsDecodedOtherwise);
  require(message.policy.largestSize == expected.largestSize, theLargestSizeDiffers);
  require(record.size == expected.size, theRecordSizeDiffers);
  require(record.slots.size() == expected.offsets.size(), aFieldStandsElsewhere);
  for (size_t index = 0; index < record.slots.size(); ++index) {
    require(record.slots[index].recordOffset == expected.offsets.begin()[index],
            aFieldStandsElsewhere);
  }
  require(wire::vtableLength(record) == expected.vtable, theVtableLengthDiffers);
  require(4 + smallestTable(record) == expected.smallest, theSmallestMessageDiffers);
}

template <typename Record>
consteval bool compactMessage(const Numbers& expected) {
  const msg::Message& message = msg::messageOf<Record>;
  prove(message, expected);
  require(message.policy.arrangement == msg::Arrangement::Compact, theArrangementDiffers);
  return true;
}

template <typename Record>
consteval bool fixedMessage(const Numbers& expected, const FixedNumbers& fixed) {
  const msg::Message& message = msg::messageOf<Record>;
  const wire::Record& record = *message.record;
  prove(message, expected);
  require(message.policy.arrangement == msg::Arrangement::Fixed, theArrangementDiffers);
  require(4 + smallestTable(record) + scalars(record) == fixed.largest, theLargestMessageDiffers);
  require(wire::fixedTableLength(record) == fixed.tableLength, theFixedTableLengthDiffers);
  require(wire::fixedVtable(record) == fixed.vtableAt, theFixedVtableStandsElsewhere);
  require(wire::fixedLength(record) == fixed.length, theFixedLengthDiffers);
  require(record.slots.size() == fixed.entries.size(), aFixedEntryDiffers);
  for (size_t index = 0; index < record.slots.size(); ++index) {
    require(wire::fixedEntry(record, index) == fixed.entries.begin()[index], aFixedEntryDiffers);
  }
  return true;
}

constexpr auto byTableReader = msg::RootDecoding::ByTableReader;

// Each record: identifier, record size, field offsets, vtable length, smallest compact message;
// what is not the usual. Then, where there is a fixed arrangement: largest compact message, the
// image's table length, its vtable's place, its length, the slot entries.
constexpr bool records[] = {
    compactMessage<dbginfo_key_l2vpn>({0xFEB5D38D, 24, {0, 2, 4, 16}, 12, 20}),
    compactMessage<dbginfo_para_l2vpn>(
        {0xF5550D12, 40, {0, 4, 8, 12, 16, 20, 24, 32}, 20, 28, 0xFFFFFFFF, byTableReader}),
    fixedMessage<l2vpn_cfg_query_dfx_cond>({0xE11ADDEF, 136, {0, 4, 8}, 10, 154},
                                           {162, 148, 152, 168, {4, 8, 12}}),
    compactMessage<l2vpn_cfg_query_comm_param>({0xDC5527DE, 24, {0, 4, 16}, 10, 18}),
    compactMessage<l2vpn_cfg_query_comm_rec>({0x345542C5, 32, {0, 4, 8, 16, 24}, 14, 22}),
    compactMessage<dbginfo_cmd_key_l2vpn>({0x8B614502, 80, {0, 4, 8, 16, 56}, 14, 70, 0xFFFFFFF7}),
    fixedMessage<dbginfo_cmd_ipc_l2vpn>(
        {0x110045FB, 44, {0, 4, 8, 10, 12, 16, 20, 24, 28, 32, 36, 38, 40}, 30, 38},
        {80, 46, 52, 88, {4, 8, 12, 14, 16, 20, 24, 28, 32, 34, 38, 40, 42}}),
    compactMessage<dbginfo_endata_l2vpn>(
        {0x494B03FB, 64, {0, 4, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 40, 48, 56}, 34, 42}),
    fixedMessage<dbginfo_dedata_l2vpn>(
        {0x3CF15A13, 40, {0, 4, 8, 10, 12, 14, 16, 18, 20, 24, 28, 32, 36}, 30, 38},
        {76, 42, 48, 80, {4, 8, 12, 14, 16, 18, 20, 22, 24, 28, 32, 34, 38}}),
    fixedMessage<l2vpn_cfg_query_dfx_item>({0x77B787DC, 16572, {0, 32, 36, 60, 188}, 14, 16622},
                                           {16626, 16608, 16612, 16632, {4, 44, 48, 80, 216}}),
    compactMessage<l2vpn_cfg_query_dfx_key>({0xD5542082, 160, {0, 24}, 8, 188, 0xFFFFFFFE}),
    compactMessage<l2vpn_cfg_query_dfx_rec>(
        {0xC900380B, 48, {0, 40}, 8, 38, 0xFFFFFFFF, byTableReader}),
};

template <typename Record>
constexpr uint32_t countOffset(size_t index) {
  return wire::schemaOf<Record>.slots[index].countOffset;
}

static_assert(countOffset<dbginfo_key_l2vpn>(3) == 8);
static_assert(countOffset<dbginfo_para_l2vpn>(7) == 28);
static_assert(countOffset<l2vpn_cfg_query_comm_param>(2) == 8);
static_assert(countOffset<l2vpn_cfg_query_comm_rec>(3) == 12);
static_assert(countOffset<dbginfo_endata_l2vpn>(12) == 36);
static_assert(countOffset<dbginfo_endata_l2vpn>(14) == 52);
static_assert(countOffset<l2vpn_cfg_query_dfx_rec>(1) == 32);

#define ONE(...) +1

static_assert(0 L2VPN_CFG_MESSAGES(ONE) == 12 && std::size(records) == 12);

}  // namespace mesh::l2vpn_cfg::proof
