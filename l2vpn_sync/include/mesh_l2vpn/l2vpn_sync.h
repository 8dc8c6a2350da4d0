/* The synchronisation service: the state of VPLS and VLL services and of what belongs to them.
 *
 * Every record R travels in three messages: R itself, R_update and R_delete, which carry the whole
 * record and a 16-bit value. The message's name alone says which. All of them are sent in the fixed
 * arrangement, and none owns memory: the release of an unpacked record does nothing.
 *
 * The operations and the conventions are those of mesh_l2vpn/operations.h.
 */
#ifndef MESH_L2VPN_L2VPN_SYNC_H
#define MESH_L2VPN_L2VPN_SYNC_H

#include "mesh_l2vpn/operations.h"

MESH_L2VPN_BEGIN

/* The two messages that carry record R: f0 is the announcing process's own, f1 the record. */
#define L2VPN_SYNC_DEFINE_WRAPPERS(R) \
  typedef struct R##_update {         \
    uint16_t f0;                      \
    R f1;                             \
  } R##_update;                       \
  typedef struct R##_delete {         \
    uint16_t f0;                      \
    R f1;                             \
  } R##_delete;

/* VPLS attachment circuit. */
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

/* Sub-record of a VPLS attachment circuit. */
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

/* Shared record of VPLS attachment circuits. */
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

/* VPLS instance. */
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

/* VPLS instance information. Its fields are those of l2vpn_sync_vpls_inst. */
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

/* VPLS pseudowire. */
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

/* VPLS pwred_pg record. */
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

/* VPLS exp record. */
typedef struct l2vpn_sync_vpls_exp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint8_t f5;
  uint8_t f6;
} l2vpn_sync_vpls_exp;

/* MAC withdrawal of a VPLS attachment circuit. */
typedef struct l2vpn_sync_vpls_ac_macdraw {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5;
  uint16_t f6;
} l2vpn_sync_vpls_ac_macdraw;

/* MAC withdrawal of a VPLS pseudowire. */
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

/* MAC withdrawal of a VPLS instance. */
typedef struct l2vpn_sync_vpls_inst_macdraw {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint32_t f6;
} l2vpn_sync_vpls_inst_macdraw;

/* VLL attachment circuit. */
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

/* VLL extnhp record. */
typedef struct l2vpn_sync_extnhp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
  uint8_t f4;
  uint32_t f5;
} l2vpn_sync_extnhp;

/* VLL pseudowire. */
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

/* VLL instance. */
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

/* Global glb_en record. */
typedef struct l2vpn_sync_glb_en {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3[28];
  uint8_t f4[28];
} l2vpn_sync_glb_en;

/* Interface VLAN record. */
typedef struct l2vpn_sync_ifvlan {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
} l2vpn_sync_ifvlan;

/* Pseudowire sub-record. */
typedef struct l2vpn_sync_subpw {
  uint32_t f0;
  uint32_t f1;
  uint8_t f2;
  uint32_t f3;
  uint8_t f4;
  uint8_t f5[28];
  uint8_t f6[28];
} l2vpn_sync_subpw;

/* VLL exp record. */
typedef struct l2vpn_sync_vllexp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint8_t f5;
  uint8_t f6;
} l2vpn_sync_vllexp;

/* VPLS vsimac record. */
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

/* OAM static MAC record. */
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

/* Pseudowire pmo record. */
typedef struct l2vpn_sync_pw_pmo {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint8_t f3;
  uint8_t f4;
  uint16_t f5;
  uint32_t f6;
} l2vpn_sync_pw_pmo;

/* VPLS MAC ping record. */
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

/* STP record. */
typedef struct l2vpn_sync_stp {
  uint32_t f0;
  uint32_t f1;
  uint32_t f2;
  uint32_t f3;
} l2vpn_sync_stp;

/* The service's records in registration order, each given to F with X. */
#define L2VPN_SYNC_RECORDS(F, X)     \
  F(X, l2vpn_sync_vpls_ac)           \
  F(X, l2vpn_sync_vpls_ac_sub)       \
  F(X, l2vpn_sync_vpls_ac_share)     \
  F(X, l2vpn_sync_vpls_inst)         \
  F(X, l2vpn_sync_vpls_inst_info)    \
  F(X, l2vpn_sync_vpls_pw)           \
  F(X, l2vpn_sync_vpls_pwred_pg)     \
  F(X, l2vpn_sync_vpls_exp)          \
  F(X, l2vpn_sync_vpls_ac_macdraw)   \
  F(X, l2vpn_sync_vpls_pw_macdraw)   \
  F(X, l2vpn_sync_vpls_inst_macdraw) \
  F(X, l2vpn_sync_vll_ac)            \
  F(X, l2vpn_sync_extnhp)            \
  F(X, l2vpn_sync_vll_pw)            \
  F(X, l2vpn_sync_vll_inst)          \
  F(X, l2vpn_sync_glb_en)            \
  F(X, l2vpn_sync_ifvlan)            \
  F(X, l2vpn_sync_subpw)             \
  F(X, l2vpn_sync_vllexp)            \
  F(X, l2vpn_sync_vpls_vsimac)       \
  F(X, l2vpn_sync_oam_staticmac)     \
  F(X, l2vpn_sync_pw_pmo)            \
  F(X, l2vpn_sync_vpls_macping)      \
  F(X, l2vpn_sync_stp)

/* The service's messages in registration order: every record, then each record's two wrappers. */
#define L2VPN_SYNC_MESSAGES(X)             \
  L2VPN_SYNC_RECORDS(L2VPN_SYNC_ITSELF, X) \
  L2VPN_SYNC_RECORDS(L2VPN_SYNC_ITS_WRAPPERS, X)
#define L2VPN_SYNC_ITSELF(X, R) X(R)
#define L2VPN_SYNC_ITS_WRAPPERS(X, R) X(R##_update) X(R##_delete)

#define L2VPN_SYNC_DEFINE_ITS_WRAPPERS(X, R) L2VPN_SYNC_DEFINE_WRAPPERS(R)
L2VPN_SYNC_RECORDS(L2VPN_SYNC_DEFINE_ITS_WRAPPERS, )

L2VPN_SYNC_MESSAGES(MESH_L2VPN_DECLARE)
MESH_L2VPN_DECLARE_SERVICE(l2vpn_sync)

MESH_L2VPN_END

#endif
