/** @file
 * The synchronisation service: the state of VPLS and VLL services and of what belongs to them.
 *
 * Every record R travels in three messages: R itself, R_update and R_delete. The latter two carry
 * the whole record and a 16-bit value, and differ only in name and identifier.
 *
 * 1. Ownership. The caller owns buffers and records. No record owns memory: the release of an
 *    unpacked record does nothing.
 * 2. Results. X__unpack returns sizeof(X) for every buffer. A rejected R leaves zeros, or the
 *    fields before the fault. A rejected R_update or R_delete leaves the record as it was or, if
 *    the record inside is at fault, f0 and what could be read of f1. X__pack returns 0 or
 *    0xFFFFFFFF. Sending returns the middleware's result, or 0xFFFFFFFF if it never reached the
 *    middleware.
 * 3. Threads. Any thread may call any function, on records that no other thread writes. No setup is
 *    needed.
 * 4. Byte order. Records and messages have the host's byte order. The devices are little-endian.
 * 5. Null. Records contain no pointers. X__unpack refuses and logs a null record or buffer. X__pack
 *    refuses a null record or length; with a null buffer it reports the size. The send functions
 *    must not get a null record.
 * 6. Sending. Every message is sent in the fixed arrangement, whatever its values. docs/messages.md
 *    has its length.
 *
 * See mesh_l2vpn/operations.h for each operation, mesh_l2vpn/l2vpn_sync_functions.h for every
 * function by its full name, docs/messages.md for every message.
 */
#ifndef MESH_L2VPN_L2VPN_SYNC_H
#define MESH_L2VPN_L2VPN_SYNC_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/** VPLS attachment circuit. */
typedef struct l2vpn_sync_vpls_ac {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
  uint8_t f7;
  uint8_t f8[12];
  uint8_t f9[12];
} l2vpn_sync_vpls_ac;

/** Sub-record of a VPLS attachment circuit. */
typedef struct l2vpn_sync_vpls_ac_sub {
  uint32_t f0;
  uint32_t f1;
  uint16_t f2;
  uint16_t f3;
  uint32_t f4;
  uint32_t f5;
  uint8_t f6;
  uint8_t f7;
  uint16_t f8;
  uint16_t f9;
  uint16_t f10;
  uint8_t f11;
  uint8_t f12;
  uint8_t f13;
  uint8_t f14;
  uint32_t f15;
  uint16_t f16;
  uint16_t f17;
  uint16_t f18;
  uint8_t f19;
  uint8_t f20;
  uint32_t f21;
  uint8_t f22[12];
  uint8_t f23[12];
} l2vpn_sync_vpls_ac_sub;

/** Shared record of VPLS attachment circuits. */
typedef struct l2vpn_sync_vpls_ac_share {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint16_t f4;
  uint16_t f5;
  uint8_t f6;
  uint8_t f7;
  uint16_t f8;
  uint16_t f9;
  uint16_t f10;
  uint8_t f11;
  uint8_t f12;
  uint16_t f13;
  uint8_t f14[12];
  uint8_t f15[12];
} l2vpn_sync_vpls_ac_share;

/** VPLS instance. */
typedef struct l2vpn_sync_vpls_inst {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint8_t f6;
  uint8_t f7;
  uint8_t f8;
  uint8_t f9;
  uint32_t f10;
  uint8_t f11[24];
  uint8_t f12[24];
} l2vpn_sync_vpls_inst;

/** VPLS instance information. Its fields are those of l2vpn_sync_vpls_inst. */
typedef struct l2vpn_sync_vpls_inst_info {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint8_t f6;
  uint8_t f7;
  uint8_t f8;
  uint8_t f9;
  uint32_t f10;
  uint8_t f11[24];
  uint8_t f12[24];
} l2vpn_sync_vpls_inst_info;

/** VPLS pseudowire. */
typedef struct l2vpn_sync_vpls_pw {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
  uint32_t f7;
  uint32_t f8;
  uint8_t f9;
  uint8_t f10;
  uint16_t f11;
  uint32_t f12;
  uint32_t f13;
  uint32_t f14;
  uint16_t f15;
  uint16_t f16;
  uint32_t f17;
  uint32_t f18;
  uint32_t f19;
  uint16_t f20;
  uint8_t f21;
  uint8_t f22;
  uint8_t f23[28];
  uint8_t f24[28];
} l2vpn_sync_vpls_pw;

/** VPLS pwred_pg record. */
typedef struct l2vpn_sync_vpls_pwred_pg {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint32_t f4;
  uint8_t f5;
  uint8_t f6;
  uint16_t f7;
  uint32_t f8;
  uint8_t f9[16];
  uint8_t f10[16];
} l2vpn_sync_vpls_pwred_pg;

/** VPLS exp record. */
typedef struct l2vpn_sync_vpls_exp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint8_t f5;
  uint8_t f6;
} l2vpn_sync_vpls_exp;

/** MAC withdrawal of a VPLS attachment circuit. */
typedef struct l2vpn_sync_vpls_ac_macdraw {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
} l2vpn_sync_vpls_ac_macdraw;

/** MAC withdrawal of a VPLS pseudowire. */
typedef struct l2vpn_sync_vpls_pw_macdraw {
  uint32_t f0;
  uint32_t f1;
  uint8_t f2;
  uint8_t f3;
  uint8_t f4;
  uint8_t f5;
  uint32_t f6;
  uint32_t f7;
  uint32_t f8;
} l2vpn_sync_vpls_pw_macdraw;

/** MAC withdrawal of a VPLS instance. */
typedef struct l2vpn_sync_vpls_inst_macdraw {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint32_t f6;
} l2vpn_sync_vpls_inst_macdraw;

/** VLL attachment circuit. */
typedef struct l2vpn_sync_vll_ac {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
  uint16_t f7;
  uint8_t f8;
  uint8_t f9;
  uint16_t f10;
  uint8_t f11;
  uint8_t f12[12];
  uint8_t f13[12];
} l2vpn_sync_vll_ac;

/** VLL extnhp record. */
typedef struct l2vpn_sync_extnhp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint32_t f5;
} l2vpn_sync_extnhp;

/** VLL pseudowire. */
typedef struct l2vpn_sync_vll_pw {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint32_t f6;
  uint32_t f7;
  uint32_t f8;
  uint16_t f9;
  uint16_t f10;
  uint8_t f11;
  uint16_t f12;
  uint8_t f13;
  uint8_t f14;
  uint32_t f15;
  uint32_t f16;
  uint32_t f17;
  uint8_t f18;
  uint8_t f19;
  uint16_t f20;
  uint32_t f21;
  uint32_t f22;
  uint8_t f23[28];
  uint8_t f24[28];
} l2vpn_sync_vll_pw;

/** VLL instance. */
typedef struct l2vpn_sync_vll_inst {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint8_t f5;
  uint8_t f6;
  uint8_t f7[32];
  uint8_t f8[32];
} l2vpn_sync_vll_inst;

/** Global glb_en record. */
typedef struct l2vpn_sync_glb_en {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3[28];
  uint8_t f4[28];
} l2vpn_sync_glb_en;

/** Interface VLAN record. */
typedef struct l2vpn_sync_ifvlan {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
} l2vpn_sync_ifvlan;

/** Pseudowire sub-record. */
typedef struct l2vpn_sync_subpw {
  uint32_t f0;
  uint32_t f1;
  uint8_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5[28];
  uint8_t f6[28];
} l2vpn_sync_subpw;

/** VLL exp record. */
typedef struct l2vpn_sync_vllexp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint8_t f5;
  uint8_t f6;
} l2vpn_sync_vllexp;

/** VPLS vsimac record. */
typedef struct l2vpn_sync_vpls_vsimac {
  uint32_t f0;
  uint8_t f1[6];
  uint16_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
  uint32_t f7;
  uint16_t f8;
  uint16_t f9;
  uint32_t f10;
  uint32_t f11;
  uint32_t f12;
  uint32_t f13;
  uint32_t f14;
  uint8_t f15[12];
  uint8_t f16[12];
} l2vpn_sync_vpls_vsimac;

/** OAM static MAC record. */
typedef struct l2vpn_sync_oam_staticmac {
  uint32_t f0;
  uint32_t f1;
  uint8_t f2[6];
  uint8_t f3;
  uint8_t f4;
  uint32_t f5;
  uint32_t f6;
  uint32_t f7;
  uint8_t f8[24];
  uint8_t f9[24];
} l2vpn_sync_oam_staticmac;

/** Pseudowire pmo record. */
typedef struct l2vpn_sync_pw_pmo {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint32_t f6;
} l2vpn_sync_pw_pmo;

/** VPLS MAC ping record. */
typedef struct l2vpn_sync_vpls_macping {
  uint64_t f0;
  uint32_t f1;
  uint32_t f2;
  uint16_t f3;
  uint16_t f4;
  uint8_t f5[6];
  uint8_t f6;
  uint8_t f7;
  uint32_t f8;
  uint32_t f9;
  uint16_t f10;
  uint8_t f11;
  uint8_t f12;
} l2vpn_sync_vpls_macping;

/** STP record. */
typedef struct l2vpn_sync_stp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
} l2vpn_sync_stp;

/* The service's records in registration order. Calls F for each with X and three identifiers: of
 * its own message, of its _update and of its _delete. */
#define L2VPN_SYNC_RECORDS(F, X)                                         \
  F(X, l2vpn_sync_vpls_ac, 0xC0E63FBB, 0x5EED5F0D, 0x37A63707)           \
  F(X, l2vpn_sync_vpls_ac_sub, 0xCC9B977E, 0x284D7DF2, 0x8B1FC170)       \
  F(X, l2vpn_sync_vpls_ac_share, 0xBCE882C7, 0xD0C2DEC9, 0xEF2FE093)     \
  F(X, l2vpn_sync_vpls_inst, 0xAAAD3DB3, 0x2DFC6305, 0x8E52846F)         \
  F(X, l2vpn_sync_vpls_inst_info, 0x1DA460D8, 0x10E8B734, 0xE10F4B0A)    \
  F(X, l2vpn_sync_vpls_pw, 0xB4C15BFE, 0x96732772, 0xF9456AF0)           \
  F(X, l2vpn_sync_vpls_pwred_pg, 0x690AF357, 0x29C3D5B9, 0x9C625083)     \
  F(X, l2vpn_sync_vpls_exp, 0xB12EEF36, 0xB28C784A, 0x5BB1E878)          \
  F(X, l2vpn_sync_vpls_ac_macdraw, 0x31B1FDED, 0x5254D0FF, 0x7C070DD1)   \
  F(X, l2vpn_sync_vpls_pw_macdraw, 0x0DCBD750, 0xA35CCE8C, 0x55208772)   \
  F(X, l2vpn_sync_vpls_inst_macdraw, 0x63243AC5, 0x03EC5657, 0x70655AB9) \
  F(X, l2vpn_sync_vll_ac, 0x193041B6, 0x89FE5BCA, 0x3323CBF8)            \
  F(X, l2vpn_sync_extnhp, 0x51561DCE, 0x8C8A1C62, 0xFD78BD60)            \
  F(X, l2vpn_sync_vll_pw, 0x1D5518DB, 0x8740C8ED, 0xB8B1DDE7)            \
  F(X, l2vpn_sync_vll_inst, 0x700AB272, 0xDAF52346, 0x0D007DA4)          \
  F(X, l2vpn_sync_glb_en, 0x273F1BFE, 0xC8BE6772, 0x2B90AAF0)            \
  F(X, l2vpn_sync_ifvlan, 0x11459A9B, 0x313AD5AD, 0x077944A7)            \
  F(X, l2vpn_sync_subpw, 0x56D12CA0, 0x229FAFFC, 0xA2667B62)             \
  F(X, l2vpn_sync_vllexp, 0x0E842F74, 0xC582AF50, 0x354F61E6)            \
  F(X, l2vpn_sync_vpls_vsimac, 0x3A8BDEE6, 0x7BE87F9A, 0x44F1C708)       \
  F(X, l2vpn_sync_oam_staticmac, 0xF359BAFE, 0x42FC4C72, 0xA5CE8FF0)     \
  F(X, l2vpn_sync_pw_pmo, 0x6841D5E3, 0x330693D5, 0xE61AB2BF)            \
  F(X, l2vpn_sync_vpls_macping, 0x3F72633A, 0x62B2992E, 0x3EBF1F5C)      \
  F(X, l2vpn_sync_stp, 0x408A311E, 0x81733752, 0x000C98D0)

/* The service's messages in registration order, each with its identifier: every record's own, then
 * each record's two wrappers. */
#define L2VPN_SYNC_MESSAGES(X)             \
  L2VPN_SYNC_RECORDS(L2VPN_SYNC_ITSELF, X) \
  L2VPN_SYNC_RECORDS(L2VPN_SYNC_ITS_WRAPPERS, X)
#define L2VPN_SYNC_ITSELF(X, R, id, update_id, delete_id) X(R, id)
#define L2VPN_SYNC_ITS_WRAPPERS(X, R, id, update_id, delete_id) \
  X(R##_update, update_id) X(R##_delete, delete_id)

/* The messages that carry record R: f0 is a value of the sender, f1 the record. */
#define L2VPN_SYNC_DEFINE_WRAPPERS(X, R, id, update_id, delete_id) \
  typedef struct R##_update {                                      \
    uint16_t f0;                                                   \
    R f1;                                                          \
  } R##_update;                                                    \
  typedef struct R##_delete {                                      \
    uint16_t f0;                                                   \
    R f1;                                                          \
  } R##_delete;
L2VPN_SYNC_RECORDS(L2VPN_SYNC_DEFINE_WRAPPERS, )

MESH_L2VPN_END

/* Every function and identifier of the service. */
#include "mesh_l2vpn/l2vpn_sync_functions.h"

#endif
