/** @file
 * The functions and identifiers of the service l2vpn_stat, each under its full name. Included by
 * mesh_l2vpn/l2vpn_stat.h; what all have in common stands in mesh_l2vpn/operations.h.
 *
 * Written by mesh-l2vpn-catalogue from the schemas; do not edit. */
/* clang-format off */
#ifndef MESH_L2VPN_L2VPN_STAT_FUNCTIONS_H
#define MESH_L2VPN_L2VPN_STAT_FUNCTIONS_H

#include "mesh_l2vpn/l2vpn_stat.h"

MESH_L2VPN_BEGIN

/** Registers the service's messages with the middleware, for receiving. Returns 0, or the
 *  middleware's first result that is not 0; what was registered before it stays. */
MESH_L2VPN_API uint32_t l2vpn_stat_recv_init(void);

/** Registers l2vpn_stat__send_resource_clean with the middleware, for sending. Returns the
 *  middleware's result. */
MESH_L2VPN_API uint32_t l2vpn_stat_send_init(void);

/** Called by the middleware. Sending keeps nothing between calls, so it does nothing. */
MESH_L2VPN_API void l2vpn_stat__send_resource_clean(void);

/** Identifier of the message l2vpn_stat_pw_stat. Its fingerprint is 0x8F7756CDE45C9082. */
static const uint32_t l2vpn_stat_pw_stat__msg_id = 0x98DB4DAE;

/** Verifies `length` bytes at `data` as a message l2vpn_stat_pw_stat and fills *record, which
 *  the caller hands in zeroed. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_stat_pw_stat__unpack(const uint8_t* data, uint32_t length,
                                                   l2vpn_stat_pw_stat* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_stat_pw_stat_free__unpacked(l2vpn_stat_pw_stat* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 49 to 126 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_stat_pw_stat__pack(const l2vpn_stat_pw_stat* record, uint8_t* buffer,
                                                 uint32_t* length);

/** Sends *record in the fixed arrangement, 128 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_stat_pw_stat__sendsingle(uint32_t destination,
                                                       const l2vpn_stat_pw_stat* record,
                                                       uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_stat_pw_stat__sendbatch(uint32_t destination,
                                                      const l2vpn_stat_pw_stat* records,
                                                      uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_stat_pw_stat__sendmsg(uint32_t destination,
                                                    const l2vpn_stat_pw_stat* records,
                                                    uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_stat_pw_stat__sendtomsg(uint32_t destination,
                                                      const l2vpn_stat_pw_stat* records,
                                                      uint32_t count, uint64_t extra);

MESH_L2VPN_END

#endif
