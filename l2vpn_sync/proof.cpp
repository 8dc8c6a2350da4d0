#include "msg/proof.hpp"

#include "l2vpn_sync/schema.hpp"

namespace mesh::msg::proof {
namespace {

struct Range {
  uint32_t from;
  uint32_t to;
};

struct SyncNumbers {
  uint32_t id;
  uint32_t size;
  uint32_t vtable;
  Range compact;
  uint32_t tableLength;
  uint32_t vtableAt;
  uint32_t length;
  std::initializer_list<uint32_t> entries;
};

// Of a record's two wrappers, which differ in their identifiers alone.
struct WrapperNumbers {
  uint32_t updateId;
  uint32_t deleteId;
  uint32_t size;
  Range compact;
  uint32_t length;
};

consteval bool proved(const Message& message, RootDecoding root, const SyncNumbers& expected) {
  return fixedMessage(message,
                      {.id = expected.id,
                       .size = expected.size,
                       .offsets = {},
                       .vtable = expected.vtable,
                       .smallest = expected.compact.from,
                       .root = root},
                      {.largest = expected.compact.to,
                       .tableLength = expected.tableLength,
                       .vtableAt = expected.vtableAt,
                       .length = expected.length,
                       .entries = expected.entries});
}

// A wrapper's image is the record's with 24 bytes around it: 10 before, and behind it 2 of padding,
// a vtable of 8 and 4 of padding.
consteval bool proved(const Message& message, uint32_t id, const WrapperNumbers& expected) {
  return proved(message, RootDecoding::ByMessage,
                {.id = id,
                 .size = expected.size,
                 .vtable = 8,
                 .compact = expected.compact,
                 .tableLength = expected.length - 18,
                 .vtableAt = expected.length - 12,
                 .length = expected.length,
                 .entries = {4, 6}});
}

template <typename Record, typename Update, typename Delete>
consteval bool proved(const SyncNumbers& ofRecord, const WrapperNumbers& ofWrapper) {
  return proved(messageOf<Record>, byTableReader, ofRecord) &&
         proved(messageOf<Update>, ofWrapper.updateId, ofWrapper) &&
         proved(messageOf<Delete>, ofWrapper.deleteId, ofWrapper);
}

#define ROW(record) \
  proved<l2vpn_sync_##record, l2vpn_sync_##record##_update, l2vpn_sync_##record##_delete>

// Each record: identifier, record size, vtable length, smallest and largest compact message; of the
// fixed arrangement the table length, the vtable's place, the message length and the slot entries.
// Its wrappers: identifiers, record size, smallest and largest compact message, fixed length.
// clang-format off
constexpr bool records[] = {
    ROW(vpls_ac)({0xC0E63FBB, 48, 24, {72, 93}, 65, 72, 96, {4, 8, 12, 16, 20, 21, 22, 24, 25, 45}},
        {0x5EED5F0D, 0x37A63707, 52, {88, 111}, 120}),
    ROW(vpls_ac_sub)({0xCC9B977E, 72, 52, {100, 148}, 92, 96, 152,
        {4, 8, 12, 14, 16, 20, 24, 25, 26, 28, 30, 32, 33, 34, 35, 36, 40, 42, 44, 46, 47,
         48, 52, 72}},
        {0x284D7DF2, 0x8B1FC170, 76, {116, 166}, 176}),
    ROW(vpls_ac_share)({0xBCE882C7, 56, 36, {84, 116}, 76, 80, 120,
        {4, 8, 12, 16, 20, 22, 24, 25, 26, 28, 30, 32, 33, 34, 36, 56}},
        {0xD0C2DEC9, 0xEF2FE093, 60, {100, 134}, 144}),
    ROW(vpls_inst)({0xAAAD3DB3, 72, 30, {102, 126}, 92, 96, 128,
        {4, 8, 12, 16, 17, 18, 20, 21, 22, 23, 24, 28, 60}},
        {0x2DFC6305, 0x8E52846F, 76, {118, 144}, 152}),
    ROW(vpls_inst_info)({0x1DA460D8, 72, 30, {102, 126}, 92, 96, 128,
        {4, 8, 12, 16, 17, 18, 20, 21, 22, 23, 24, 28, 60}},
        {0x10E8B734, 0xE10F4B0A, 76, {118, 144}, 152}),
    ROW(vpls_pw)({0xB4C15BFE, 120, 54, {134, 198}, 140, 144, 200,
        {4, 8, 12, 16, 20, 21, 22, 24, 28, 32, 33, 34, 36, 40, 44, 48, 50, 52, 56, 60, 64,
         66, 67, 68, 104}},
        {0x96732772, 0xF9456AF0, 124, {150, 216}, 224}),
    ROW(vpls_pwred_pg)({0x690AF357, 60, 26, {82, 110}, 80, 84, 112,
        {4, 8, 12, 16, 20, 24, 25, 26, 28, 32, 56}},
        {0x29C3D5B9, 0x9C625083, 64, {98, 128}, 136}),
    ROW(vpls_exp)({0xB12EEF36, 16, 18, {26, 42}, 20, 24, 48, {4, 8, 12, 16, 17, 18, 19}},
        {0xB28C784A, 0x5BB1E878, 20, {42, 60}, 72}),
    ROW(vpls_ac_macdraw)({0x31B1FDED, 20, 18, {26, 46}, 24, 28, 48, {4, 8, 12, 16, 20, 21, 22}},
        {0x5254D0FF, 0x7C070DD1, 24, {42, 64}, 72}),
    ROW(vpls_pw_macdraw)({0x0DCBD750, 24, 22, {30, 54}, 28, 32, 56,
        {4, 8, 12, 13, 14, 15, 16, 20, 24}},
        {0xA35CCE8C, 0x55208772, 28, {46, 72}, 80}),
    ROW(vpls_inst_macdraw)({0x63243AC5, 20, 18, {26, 46}, 24, 28, 48, {4, 8, 12, 16, 17, 18, 20}},
        {0x03EC5657, 0x70655AB9, 24, {42, 64}, 72}),
    ROW(vll_ac)({0x193041B6, 52, 32, {80, 107}, 71, 76, 112,
        {4, 8, 12, 16, 20, 21, 22, 24, 26, 27, 28, 30, 31, 51}},
        {0x89FE5BCA, 0x3323CBF8, 56, {96, 125}, 136}),
    ROW(extnhp)({0x51561DCE, 24, 16, {24, 45}, 25, 32, 48, {4, 8, 12, 16, 20, 21}},
        {0x8C8A1C62, 0xFD78BD60, 28, {40, 63}, 72}),
    ROW(vll_pw)({0x1D5518DB, 120, 54, {134, 195}, 137, 144, 200,
        {4, 8, 12, 16, 17, 18, 20, 24, 28, 32, 34, 36, 37, 39, 40, 41, 45, 49, 53, 54, 55,
         57, 61, 65, 101}},
        {0x8740C8ED, 0xB8B1DDE7, 124, {150, 213}, 224}),
    ROW(vll_inst)({0x700AB272, 80, 22, {110, 126}, 100, 104, 128,
        {4, 8, 12, 16, 17, 18, 19, 20, 60}},
        {0xDAF52346, 0x0D007DA4, 84, {126, 144}, 152}),
    ROW(glb_en)({0x273F1BFE, 68, 14, {94, 106}, 88, 92, 112, {4, 8, 12, 16, 52}},
        {0xC8BE6772, 0x2B90AAF0, 72, {110, 124}, 136}),
    ROW(ifvlan)({0x11459A9B, 16, 16, {24, 40}, 20, 24, 40, {4, 8, 12, 16, 17, 18}},
        {0x313AD5AD, 0x077944A7, 20, {40, 58}, 64}),
    ROW(subpw)({0x56D12CA0, 76, 18, {98, 112}, 90, 96, 120, {4, 8, 12, 13, 17, 18, 54}},
        {0x229FAFFC, 0xA2667B62, 80, {114, 130}, 144}),
    ROW(vllexp)({0x0E842F74, 16, 18, {26, 42}, 20, 24, 48, {4, 8, 12, 16, 17, 18, 19}},
        {0xC582AF50, 0x354F61E6, 20, {42, 60}, 72}),
    ROW(vpls_vsimac)({0x3A8BDEE6, 72, 38, {100, 142}, 100, 104, 144,
        {4, 8, 22, 24, 28, 29, 30, 32, 36, 38, 40, 44, 48, 52, 56, 60, 80}},
        {0x7BE87F9A, 0x44F1C708, 76, {116, 160}, 168}),
    ROW(oam_staticmac)({0xF359BAFE, 76, 24, {110, 132}, 104, 108, 136,
        {4, 8, 12, 26, 27, 28, 32, 36, 40, 72}},
        {0x42FC4C72, 0xA5CE8FF0, 80, {126, 150}, 160}),
    ROW(pw_pmo)({0x6841D5E3, 20, 18, {26, 46}, 24, 28, 48, {4, 8, 12, 16, 17, 18, 20}},
        {0x330693D5, 0xE61AB2BF, 24, {42, 64}, 72}),
    ROW(vpls_macping)({0x3F72633A, 40, 30, {52, 86}, 52, 56, 88,
        {4, 12, 16, 20, 22, 24, 38, 39, 40, 44, 48, 50, 51}},
        {0x62B2992E, 0x3EBF1F5C, 48, {68, 104}, 112}),
    ROW(stp)({0x408A311E, 16, 12, {20, 36}, 20, 24, 40, {4, 8, 12, 16}},
        {0x81733752, 0x000C98D0, 20, {36, 54}, 64}),
};
// clang-format on

static_assert(0 L2VPN_SYNC_MESSAGES(MESH_COUNT_MESSAGE) == 72 && std::size(records) == 24);

}  // namespace
}  // namespace mesh::msg::proof
