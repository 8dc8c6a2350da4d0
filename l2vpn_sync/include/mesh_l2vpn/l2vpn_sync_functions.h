/** @file
 * The functions and identifiers of the service l2vpn_sync, each under its full name. Included by
 * mesh_l2vpn/l2vpn_sync.h; what all have in common stands in mesh_l2vpn/operations.h.
 *
 * Written by mesh-l2vpn-catalogue from the schemas; do not edit. */
/* clang-format off */
#ifndef MESH_L2VPN_L2VPN_SYNC_FUNCTIONS_H
#define MESH_L2VPN_L2VPN_SYNC_FUNCTIONS_H

#include "mesh_l2vpn/l2vpn_sync.h"

MESH_L2VPN_BEGIN

/** Registers the service's messages with the middleware, for receiving. Returns 0, or the
 *  middleware's first result that is not 0; what was registered before it stays. */
MESH_L2VPN_API uint32_t l2vpn_sync_recv_init(void);

/** Registers l2vpn_sync__send_resource_clean with the middleware, for sending. Returns the
 *  middleware's result. */
MESH_L2VPN_API uint32_t l2vpn_sync_send_init(void);

/** Called by the middleware. Sending keeps nothing between calls, so it does nothing. */
MESH_L2VPN_API void l2vpn_sync__send_resource_clean(void);

/** Identifier of the message l2vpn_sync_vpls_ac. Its fingerprint is 0x2152BD8BB0BFB550. */
static const uint32_t l2vpn_sync_vpls_ac__msg_id = 0xC0E63FBB;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac and fills *record, which
 *  the caller hands in zeroed. Returns 48, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac__unpack(const uint8_t* data, uint32_t length,
                                                   l2vpn_sync_vpls_ac* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_free__unpacked(l2vpn_sync_vpls_ac* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 72 to 93 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac__pack(const l2vpn_sync_vpls_ac* record, uint8_t* buffer,
                                                 uint32_t* length);

/** Sends *record in the fixed arrangement, 96 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac__sendsingle(uint32_t destination,
                                                       const l2vpn_sync_vpls_ac* record,
                                                       uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac__sendbatch(uint32_t destination,
                                                      const l2vpn_sync_vpls_ac* records,
                                                      uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac__sendmsg(uint32_t destination,
                                                    const l2vpn_sync_vpls_ac* records,
                                                    uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac__sendtomsg(uint32_t destination,
                                                      const l2vpn_sync_vpls_ac* records,
                                                      uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_sub. Its fingerprint is 0x6C847F914FC9CACD. */
static const uint32_t l2vpn_sync_vpls_ac_sub__msg_id = 0xCC9B977E;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_sub and fills *record,
 *  which the caller hands in zeroed. Returns 72, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub__unpack(const uint8_t* data, uint32_t length,
                                                       l2vpn_sync_vpls_ac_sub* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_sub_free__unpacked(l2vpn_sync_vpls_ac_sub* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 100 to 148 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub__pack(const l2vpn_sync_vpls_ac_sub* record,
                                                     uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub__sendsingle(uint32_t destination,
                                                           const l2vpn_sync_vpls_ac_sub* record,
                                                           uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub__sendbatch(uint32_t destination,
                                                          const l2vpn_sync_vpls_ac_sub* records,
                                                          uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub__sendmsg(uint32_t destination,
                                                        const l2vpn_sync_vpls_ac_sub* records,
                                                        uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub__sendtomsg(uint32_t destination,
                                                          const l2vpn_sync_vpls_ac_sub* records,
                                                          uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_share. Its fingerprint is 0x62610DD79510414D. */
static const uint32_t l2vpn_sync_vpls_ac_share__msg_id = 0xBCE882C7;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_share and fills *record,
 *  which the caller hands in zeroed. Returns 56, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vpls_ac_share* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_share_free__unpacked(l2vpn_sync_vpls_ac_share* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 84 to 116 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share__pack(const l2vpn_sync_vpls_ac_share* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 120 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vpls_ac_share* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vpls_ac_share* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vpls_ac_share* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vpls_ac_share* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst. Its fingerprint is 0x02C41DB03A0B17E7. */
static const uint32_t l2vpn_sync_vpls_inst__msg_id = 0xAAAD3DB3;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst and fills *record, which
 *  the caller hands in zeroed. Returns 72, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst__unpack(const uint8_t* data, uint32_t length,
                                                     l2vpn_sync_vpls_inst* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_free__unpacked(l2vpn_sync_vpls_inst* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 102 to 126 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst__pack(const l2vpn_sync_vpls_inst* record,
                                                   uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 128 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst__sendsingle(uint32_t destination,
                                                         const l2vpn_sync_vpls_inst* record,
                                                         uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst__sendbatch(uint32_t destination,
                                                        const l2vpn_sync_vpls_inst* records,
                                                        uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst__sendmsg(uint32_t destination,
                                                      const l2vpn_sync_vpls_inst* records,
                                                      uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst__sendtomsg(uint32_t destination,
                                                        const l2vpn_sync_vpls_inst* records,
                                                        uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_info. Its fingerprint is 0x02C41DB03A0B17E7. */
static const uint32_t l2vpn_sync_vpls_inst_info__msg_id = 0x1DA460D8;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_info and fills *record,
 *  which the caller hands in zeroed. Returns 72, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info__unpack(const uint8_t* data, uint32_t length,
                                                          l2vpn_sync_vpls_inst_info* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_info_free__unpacked(l2vpn_sync_vpls_inst_info* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 102 to 126 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info__pack(const l2vpn_sync_vpls_inst_info* record,
                                                        uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 128 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info__sendsingle(uint32_t destination,
                                                              const l2vpn_sync_vpls_inst_info* record,
                                                              uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info__sendbatch(uint32_t destination,
                                                             const l2vpn_sync_vpls_inst_info* records,
                                                             uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info__sendmsg(uint32_t destination,
                                                           const l2vpn_sync_vpls_inst_info* records,
                                                           uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info__sendtomsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_inst_info* records,
                                                             uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pw. Its fingerprint is 0x795063B0B65A4D2B. */
static const uint32_t l2vpn_sync_vpls_pw__msg_id = 0xB4C15BFE;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pw and fills *record, which
 *  the caller hands in zeroed. Returns 120, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw__unpack(const uint8_t* data, uint32_t length,
                                                   l2vpn_sync_vpls_pw* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pw_free__unpacked(l2vpn_sync_vpls_pw* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 134 to 198 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw__pack(const l2vpn_sync_vpls_pw* record, uint8_t* buffer,
                                                 uint32_t* length);

/** Sends *record in the fixed arrangement, 200 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw__sendsingle(uint32_t destination,
                                                       const l2vpn_sync_vpls_pw* record,
                                                       uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw__sendbatch(uint32_t destination,
                                                      const l2vpn_sync_vpls_pw* records,
                                                      uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw__sendmsg(uint32_t destination,
                                                    const l2vpn_sync_vpls_pw* records,
                                                    uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw__sendtomsg(uint32_t destination,
                                                      const l2vpn_sync_vpls_pw* records,
                                                      uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pwred_pg. Its fingerprint is 0xD68317B63AFBB657. */
static const uint32_t l2vpn_sync_vpls_pwred_pg__msg_id = 0x690AF357;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pwred_pg and fills *record,
 *  which the caller hands in zeroed. Returns 60, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vpls_pwred_pg* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pwred_pg_free__unpacked(l2vpn_sync_vpls_pwred_pg* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 82 to 110 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg__pack(const l2vpn_sync_vpls_pwred_pg* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 112 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vpls_pwred_pg* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vpls_pwred_pg* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vpls_pwred_pg* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vpls_pwred_pg* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_exp. Its fingerprint is 0x60310AF8E99425E7. */
static const uint32_t l2vpn_sync_vpls_exp__msg_id = 0xB12EEF36;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_exp and fills *record, which
 *  the caller hands in zeroed. Returns 16, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp__unpack(const uint8_t* data, uint32_t length,
                                                    l2vpn_sync_vpls_exp* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_exp_free__unpacked(l2vpn_sync_vpls_exp* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 26 to 42 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp__pack(const l2vpn_sync_vpls_exp* record,
                                                  uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 48 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp__sendsingle(uint32_t destination,
                                                        const l2vpn_sync_vpls_exp* record,
                                                        uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp__sendbatch(uint32_t destination,
                                                       const l2vpn_sync_vpls_exp* records,
                                                       uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp__sendmsg(uint32_t destination,
                                                     const l2vpn_sync_vpls_exp* records,
                                                     uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp__sendtomsg(uint32_t destination,
                                                       const l2vpn_sync_vpls_exp* records,
                                                       uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_macdraw. Its fingerprint is 0x420A5039EB4B8663. */
static const uint32_t l2vpn_sync_vpls_ac_macdraw__msg_id = 0x31B1FDED;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_macdraw and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_sync_vpls_ac_macdraw* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_macdraw_free__unpacked(l2vpn_sync_vpls_ac_macdraw* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 26 to 46 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw__pack(const l2vpn_sync_vpls_ac_macdraw* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 48 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw__sendsingle(uint32_t destination,
                                                               const l2vpn_sync_vpls_ac_macdraw* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw__sendbatch(uint32_t destination,
                                                              const l2vpn_sync_vpls_ac_macdraw* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw__sendmsg(uint32_t destination,
                                                            const l2vpn_sync_vpls_ac_macdraw* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw__sendtomsg(uint32_t destination,
                                                              const l2vpn_sync_vpls_ac_macdraw* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pw_macdraw. Its fingerprint is 0x784573CE12126BD3. */
static const uint32_t l2vpn_sync_vpls_pw_macdraw__msg_id = 0x0DCBD750;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pw_macdraw and fills *record,
 *  which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_sync_vpls_pw_macdraw* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pw_macdraw_free__unpacked(l2vpn_sync_vpls_pw_macdraw* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 30 to 54 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw__pack(const l2vpn_sync_vpls_pw_macdraw* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 56 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw__sendsingle(uint32_t destination,
                                                               const l2vpn_sync_vpls_pw_macdraw* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw__sendbatch(uint32_t destination,
                                                              const l2vpn_sync_vpls_pw_macdraw* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw__sendmsg(uint32_t destination,
                                                            const l2vpn_sync_vpls_pw_macdraw* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw__sendtomsg(uint32_t destination,
                                                              const l2vpn_sync_vpls_pw_macdraw* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_macdraw. Its fingerprint is
 *  0x4776132DDB841757. */
static const uint32_t l2vpn_sync_vpls_inst_macdraw__msg_id = 0x63243AC5;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_macdraw and fills
 *  *record, which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw__unpack(const uint8_t* data, uint32_t length,
                                                             l2vpn_sync_vpls_inst_macdraw* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_macdraw_free__unpacked(l2vpn_sync_vpls_inst_macdraw* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 26 to 46 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw__pack(const l2vpn_sync_vpls_inst_macdraw* record,
                                                           uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 48 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw__sendsingle(uint32_t destination,
                                                                 const l2vpn_sync_vpls_inst_macdraw* record,
                                                                 uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw__sendbatch(uint32_t destination,
                                                                const l2vpn_sync_vpls_inst_macdraw* records,
                                                                uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw__sendmsg(uint32_t destination,
                                                              const l2vpn_sync_vpls_inst_macdraw* records,
                                                              uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw__sendtomsg(uint32_t destination,
                                                                const l2vpn_sync_vpls_inst_macdraw* records,
                                                                uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_ac. Its fingerprint is 0x9AEAC4791E496A46. */
static const uint32_t l2vpn_sync_vll_ac__msg_id = 0x193041B6;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_ac and fills *record, which the
 *  caller hands in zeroed. Returns 52, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_vll_ac* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_ac_free__unpacked(l2vpn_sync_vll_ac* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 80 to 107 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac__pack(const l2vpn_sync_vll_ac* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 112 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_vll_ac* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_vll_ac* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_vll_ac* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_vll_ac* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_extnhp. Its fingerprint is 0x1250A13D33E6BD34. */
static const uint32_t l2vpn_sync_extnhp__msg_id = 0x51561DCE;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_extnhp and fills *record, which the
 *  caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_extnhp* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_extnhp_free__unpacked(l2vpn_sync_extnhp* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 24 to 45 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp__pack(const l2vpn_sync_extnhp* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 48 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_extnhp* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_extnhp* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_extnhp* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_extnhp* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_pw. Its fingerprint is 0xDBBC9916021BB70E. */
static const uint32_t l2vpn_sync_vll_pw__msg_id = 0x1D5518DB;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_pw and fills *record, which the
 *  caller hands in zeroed. Returns 120, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_vll_pw* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_pw_free__unpacked(l2vpn_sync_vll_pw* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 134 to 195 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw__pack(const l2vpn_sync_vll_pw* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 200 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_vll_pw* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_vll_pw* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_vll_pw* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_vll_pw* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_inst. Its fingerprint is 0xE932FC4010531DE7. */
static const uint32_t l2vpn_sync_vll_inst__msg_id = 0x700AB272;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_inst and fills *record, which
 *  the caller hands in zeroed. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst__unpack(const uint8_t* data, uint32_t length,
                                                    l2vpn_sync_vll_inst* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_inst_free__unpacked(l2vpn_sync_vll_inst* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 110 to 126 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst__pack(const l2vpn_sync_vll_inst* record,
                                                  uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 128 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst__sendsingle(uint32_t destination,
                                                        const l2vpn_sync_vll_inst* record,
                                                        uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst__sendbatch(uint32_t destination,
                                                       const l2vpn_sync_vll_inst* records,
                                                       uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst__sendmsg(uint32_t destination,
                                                     const l2vpn_sync_vll_inst* records,
                                                     uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst__sendtomsg(uint32_t destination,
                                                       const l2vpn_sync_vll_inst* records,
                                                       uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_glb_en. Its fingerprint is 0x24CD764169D5DF07. */
static const uint32_t l2vpn_sync_glb_en__msg_id = 0x273F1BFE;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_glb_en and fills *record, which the
 *  caller hands in zeroed. Returns 68, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_glb_en* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_glb_en_free__unpacked(l2vpn_sync_glb_en* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 94 to 106 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en__pack(const l2vpn_sync_glb_en* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 112 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_glb_en* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_glb_en* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_glb_en* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_glb_en* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_ifvlan. Its fingerprint is 0x826852949F3AAA61. */
static const uint32_t l2vpn_sync_ifvlan__msg_id = 0x11459A9B;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_ifvlan and fills *record, which the
 *  caller hands in zeroed. Returns 16, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_ifvlan* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_ifvlan_free__unpacked(l2vpn_sync_ifvlan* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 24 to 40 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan__pack(const l2vpn_sync_ifvlan* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 40 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_ifvlan* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_ifvlan* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_ifvlan* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_ifvlan* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_subpw. Its fingerprint is 0xDCD8507C7EA95941. */
static const uint32_t l2vpn_sync_subpw__msg_id = 0x56D12CA0;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_subpw and fills *record, which the
 *  caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw__unpack(const uint8_t* data, uint32_t length,
                                                 l2vpn_sync_subpw* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_subpw_free__unpacked(l2vpn_sync_subpw* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 98 to 112 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw__pack(const l2vpn_sync_subpw* record, uint8_t* buffer,
                                               uint32_t* length);

/** Sends *record in the fixed arrangement, 120 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw__sendsingle(uint32_t destination,
                                                     const l2vpn_sync_subpw* record,
                                                     uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw__sendbatch(uint32_t destination,
                                                    const l2vpn_sync_subpw* records, uint32_t count,
                                                    uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw__sendmsg(uint32_t destination,
                                                  const l2vpn_sync_subpw* records, uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw__sendtomsg(uint32_t destination,
                                                    const l2vpn_sync_subpw* records, uint32_t count,
                                                    uint64_t extra);

/** Identifier of the message l2vpn_sync_vllexp. Its fingerprint is 0x60310AF8E99425E7. */
static const uint32_t l2vpn_sync_vllexp__msg_id = 0x0E842F74;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vllexp and fills *record, which the
 *  caller hands in zeroed. Returns 16, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_vllexp* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vllexp_free__unpacked(l2vpn_sync_vllexp* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 26 to 42 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp__pack(const l2vpn_sync_vllexp* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 48 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_vllexp* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_vllexp* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_vllexp* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_vllexp* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_vsimac. Its fingerprint is 0x8B67DAB44171C690. */
static const uint32_t l2vpn_sync_vpls_vsimac__msg_id = 0x3A8BDEE6;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_vsimac and fills *record,
 *  which the caller hands in zeroed. Returns 72, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac__unpack(const uint8_t* data, uint32_t length,
                                                       l2vpn_sync_vpls_vsimac* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_vsimac_free__unpacked(l2vpn_sync_vpls_vsimac* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 100 to 142 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac__pack(const l2vpn_sync_vpls_vsimac* record,
                                                     uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 144 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac__sendsingle(uint32_t destination,
                                                           const l2vpn_sync_vpls_vsimac* record,
                                                           uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac__sendbatch(uint32_t destination,
                                                          const l2vpn_sync_vpls_vsimac* records,
                                                          uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac__sendmsg(uint32_t destination,
                                                        const l2vpn_sync_vpls_vsimac* records,
                                                        uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac__sendtomsg(uint32_t destination,
                                                          const l2vpn_sync_vpls_vsimac* records,
                                                          uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_oam_staticmac. Its fingerprint is 0x3AE82C5A24502652. */
static const uint32_t l2vpn_sync_oam_staticmac__msg_id = 0xF359BAFE;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_oam_staticmac and fills *record,
 *  which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_oam_staticmac* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_oam_staticmac_free__unpacked(l2vpn_sync_oam_staticmac* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 110 to 132 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac__pack(const l2vpn_sync_oam_staticmac* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_oam_staticmac* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_oam_staticmac* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_oam_staticmac* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_oam_staticmac* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_pw_pmo. Its fingerprint is 0x4776132DDB841757. */
static const uint32_t l2vpn_sync_pw_pmo__msg_id = 0x6841D5E3;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_pw_pmo and fills *record, which the
 *  caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo__unpack(const uint8_t* data, uint32_t length,
                                                  l2vpn_sync_pw_pmo* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_pw_pmo_free__unpacked(l2vpn_sync_pw_pmo* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 26 to 46 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo__pack(const l2vpn_sync_pw_pmo* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the fixed arrangement, 48 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo__sendsingle(uint32_t destination,
                                                      const l2vpn_sync_pw_pmo* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo__sendbatch(uint32_t destination,
                                                     const l2vpn_sync_pw_pmo* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo__sendmsg(uint32_t destination,
                                                   const l2vpn_sync_pw_pmo* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo__sendtomsg(uint32_t destination,
                                                     const l2vpn_sync_pw_pmo* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_macping. Its fingerprint is 0x2D9E1C8AB1AF219F. */
static const uint32_t l2vpn_sync_vpls_macping__msg_id = 0x3F72633A;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_macping and fills *record,
 *  which the caller hands in zeroed. Returns 40, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping__unpack(const uint8_t* data, uint32_t length,
                                                        l2vpn_sync_vpls_macping* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_macping_free__unpacked(l2vpn_sync_vpls_macping* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 52 to 86 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping__pack(const l2vpn_sync_vpls_macping* record,
                                                      uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 88 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping__sendsingle(uint32_t destination,
                                                            const l2vpn_sync_vpls_macping* record,
                                                            uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping__sendbatch(uint32_t destination,
                                                           const l2vpn_sync_vpls_macping* records,
                                                           uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping__sendmsg(uint32_t destination,
                                                         const l2vpn_sync_vpls_macping* records,
                                                         uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping__sendtomsg(uint32_t destination,
                                                           const l2vpn_sync_vpls_macping* records,
                                                           uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_stp. Its fingerprint is 0x3293E0034BDC77B1. */
static const uint32_t l2vpn_sync_stp__msg_id = 0x408A311E;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_stp and fills *record, which the
 *  caller hands in zeroed. Returns 16, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp__unpack(const uint8_t* data, uint32_t length,
                                               l2vpn_sync_stp* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_stp_free__unpacked(l2vpn_sync_stp* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 20 to 36 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp__pack(const l2vpn_sync_stp* record, uint8_t* buffer,
                                             uint32_t* length);

/** Sends *record in the fixed arrangement, 40 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp__sendsingle(uint32_t destination,
                                                   const l2vpn_sync_stp* record, uint64_t unused,
                                                   uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp__sendbatch(uint32_t destination,
                                                  const l2vpn_sync_stp* records, uint32_t count,
                                                  uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp__sendmsg(uint32_t destination, const l2vpn_sync_stp* records,
                                                uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp__sendtomsg(uint32_t destination,
                                                  const l2vpn_sync_stp* records, uint32_t count,
                                                  uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_update. Its fingerprint is 0x2456F4B2E5930424. */
static const uint32_t l2vpn_sync_vpls_ac_update__msg_id = 0x5EED5F0D;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_update and fills *record,
 *  which the caller hands in zeroed. Returns 52, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_update__unpack(const uint8_t* data, uint32_t length,
                                                          l2vpn_sync_vpls_ac_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_update_free__unpacked(l2vpn_sync_vpls_ac_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 88 to 111 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_update__pack(const l2vpn_sync_vpls_ac_update* record,
                                                        uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 120 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_update__sendsingle(uint32_t destination,
                                                              const l2vpn_sync_vpls_ac_update* record,
                                                              uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_update__sendbatch(uint32_t destination,
                                                             const l2vpn_sync_vpls_ac_update* records,
                                                             uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_update__sendmsg(uint32_t destination,
                                                           const l2vpn_sync_vpls_ac_update* records,
                                                           uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_update__sendtomsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_ac_update* records,
                                                             uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_delete. Its fingerprint is 0x2456F4B2E5930424. */
static const uint32_t l2vpn_sync_vpls_ac_delete__msg_id = 0x37A63707;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_delete and fills *record,
 *  which the caller hands in zeroed. Returns 52, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_delete__unpack(const uint8_t* data, uint32_t length,
                                                          l2vpn_sync_vpls_ac_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_delete_free__unpacked(l2vpn_sync_vpls_ac_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 88 to 111 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_delete__pack(const l2vpn_sync_vpls_ac_delete* record,
                                                        uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 120 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_delete__sendsingle(uint32_t destination,
                                                              const l2vpn_sync_vpls_ac_delete* record,
                                                              uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_delete__sendbatch(uint32_t destination,
                                                             const l2vpn_sync_vpls_ac_delete* records,
                                                             uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_delete__sendmsg(uint32_t destination,
                                                           const l2vpn_sync_vpls_ac_delete* records,
                                                           uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_delete__sendtomsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_ac_delete* records,
                                                             uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_sub_update. Its fingerprint is
 *  0x78EC92472B6F84F9. */
static const uint32_t l2vpn_sync_vpls_ac_sub_update__msg_id = 0x284D7DF2;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_sub_update and fills
 *  *record, which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_update__unpack(const uint8_t* data, uint32_t length,
                                                              l2vpn_sync_vpls_ac_sub_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_sub_update_free__unpacked(l2vpn_sync_vpls_ac_sub_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 116 to 166 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_update__pack(const l2vpn_sync_vpls_ac_sub_update* record,
                                                            uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 176 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_update__sendsingle(uint32_t destination,
                                                                  const l2vpn_sync_vpls_ac_sub_update* record,
                                                                  uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_update__sendbatch(uint32_t destination,
                                                                 const l2vpn_sync_vpls_ac_sub_update* records,
                                                                 uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_update__sendmsg(uint32_t destination,
                                                               const l2vpn_sync_vpls_ac_sub_update* records,
                                                               uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_update__sendtomsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_ac_sub_update* records,
                                                                 uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_sub_delete. Its fingerprint is
 *  0x78EC92472B6F84F9. */
static const uint32_t l2vpn_sync_vpls_ac_sub_delete__msg_id = 0x8B1FC170;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_sub_delete and fills
 *  *record, which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_delete__unpack(const uint8_t* data, uint32_t length,
                                                              l2vpn_sync_vpls_ac_sub_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_sub_delete_free__unpacked(l2vpn_sync_vpls_ac_sub_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 116 to 166 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_delete__pack(const l2vpn_sync_vpls_ac_sub_delete* record,
                                                            uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 176 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_delete__sendsingle(uint32_t destination,
                                                                  const l2vpn_sync_vpls_ac_sub_delete* record,
                                                                  uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_delete__sendbatch(uint32_t destination,
                                                                 const l2vpn_sync_vpls_ac_sub_delete* records,
                                                                 uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_delete__sendmsg(uint32_t destination,
                                                               const l2vpn_sync_vpls_ac_sub_delete* records,
                                                               uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_sub_delete__sendtomsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_ac_sub_delete* records,
                                                                 uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_share_update. Its fingerprint is
 *  0xA4CB9AE031B579D9. */
static const uint32_t l2vpn_sync_vpls_ac_share_update__msg_id = 0xD0C2DEC9;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_share_update and fills
 *  *record, which the caller hands in zeroed. Returns 60, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_update__unpack(const uint8_t* data,
                                                                uint32_t length,
                                                                l2vpn_sync_vpls_ac_share_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_share_update_free__unpacked(l2vpn_sync_vpls_ac_share_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 100 to 134 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_update__pack(const l2vpn_sync_vpls_ac_share_update* record,
                                                              uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 144 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_update__sendsingle(uint32_t destination,
                                                                    const l2vpn_sync_vpls_ac_share_update* record,
                                                                    uint64_t unused,
                                                                    uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_update__sendbatch(uint32_t destination,
                                                                   const l2vpn_sync_vpls_ac_share_update* records,
                                                                   uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_update__sendmsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_ac_share_update* records,
                                                                 uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_update__sendtomsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_ac_share_update* records,
                                                                   uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_share_delete. Its fingerprint is
 *  0xA4CB9AE031B579D9. */
static const uint32_t l2vpn_sync_vpls_ac_share_delete__msg_id = 0xEF2FE093;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_share_delete and fills
 *  *record, which the caller hands in zeroed. Returns 60, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_delete__unpack(const uint8_t* data,
                                                                uint32_t length,
                                                                l2vpn_sync_vpls_ac_share_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_share_delete_free__unpacked(l2vpn_sync_vpls_ac_share_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 100 to 134 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_delete__pack(const l2vpn_sync_vpls_ac_share_delete* record,
                                                              uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 144 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_delete__sendsingle(uint32_t destination,
                                                                    const l2vpn_sync_vpls_ac_share_delete* record,
                                                                    uint64_t unused,
                                                                    uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_delete__sendbatch(uint32_t destination,
                                                                   const l2vpn_sync_vpls_ac_share_delete* records,
                                                                   uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_delete__sendmsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_ac_share_delete* records,
                                                                 uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_share_delete__sendtomsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_ac_share_delete* records,
                                                                   uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_update. Its fingerprint is 0x323671AA30DB6B8B. */
static const uint32_t l2vpn_sync_vpls_inst_update__msg_id = 0x2DFC6305;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_update and fills *record,
 *  which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_update__unpack(const uint8_t* data, uint32_t length,
                                                            l2vpn_sync_vpls_inst_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_update_free__unpacked(l2vpn_sync_vpls_inst_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 118 to 144 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_update__pack(const l2vpn_sync_vpls_inst_update* record,
                                                          uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_update__sendsingle(uint32_t destination,
                                                                const l2vpn_sync_vpls_inst_update* record,
                                                                uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_update__sendbatch(uint32_t destination,
                                                               const l2vpn_sync_vpls_inst_update* records,
                                                               uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_update__sendmsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_inst_update* records,
                                                             uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_update__sendtomsg(uint32_t destination,
                                                               const l2vpn_sync_vpls_inst_update* records,
                                                               uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_delete. Its fingerprint is 0x323671AA30DB6B8B. */
static const uint32_t l2vpn_sync_vpls_inst_delete__msg_id = 0x8E52846F;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_delete and fills *record,
 *  which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_delete__unpack(const uint8_t* data, uint32_t length,
                                                            l2vpn_sync_vpls_inst_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_delete_free__unpacked(l2vpn_sync_vpls_inst_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 118 to 144 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_delete__pack(const l2vpn_sync_vpls_inst_delete* record,
                                                          uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_delete__sendsingle(uint32_t destination,
                                                                const l2vpn_sync_vpls_inst_delete* record,
                                                                uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_delete__sendbatch(uint32_t destination,
                                                               const l2vpn_sync_vpls_inst_delete* records,
                                                               uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_delete__sendmsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_inst_delete* records,
                                                             uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_delete__sendtomsg(uint32_t destination,
                                                               const l2vpn_sync_vpls_inst_delete* records,
                                                               uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_info_update. Its fingerprint is
 *  0x323671AA30DB6B8B. */
static const uint32_t l2vpn_sync_vpls_inst_info_update__msg_id = 0x10E8B734;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_info_update and fills
 *  *record, which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_update__unpack(const uint8_t* data,
                                                                 uint32_t length,
                                                                 l2vpn_sync_vpls_inst_info_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_info_update_free__unpacked(l2vpn_sync_vpls_inst_info_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 118 to 144 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_update__pack(const l2vpn_sync_vpls_inst_info_update* record,
                                                               uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_update__sendsingle(uint32_t destination,
                                                                     const l2vpn_sync_vpls_inst_info_update* record,
                                                                     uint64_t unused,
                                                                     uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_update__sendbatch(uint32_t destination,
                                                                    const l2vpn_sync_vpls_inst_info_update* records,
                                                                    uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_update__sendmsg(uint32_t destination,
                                                                  const l2vpn_sync_vpls_inst_info_update* records,
                                                                  uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_update__sendtomsg(uint32_t destination,
                                                                    const l2vpn_sync_vpls_inst_info_update* records,
                                                                    uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_info_delete. Its fingerprint is
 *  0x323671AA30DB6B8B. */
static const uint32_t l2vpn_sync_vpls_inst_info_delete__msg_id = 0xE10F4B0A;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_info_delete and fills
 *  *record, which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_delete__unpack(const uint8_t* data,
                                                                 uint32_t length,
                                                                 l2vpn_sync_vpls_inst_info_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_info_delete_free__unpacked(l2vpn_sync_vpls_inst_info_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 118 to 144 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_delete__pack(const l2vpn_sync_vpls_inst_info_delete* record,
                                                               uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_delete__sendsingle(uint32_t destination,
                                                                     const l2vpn_sync_vpls_inst_info_delete* record,
                                                                     uint64_t unused,
                                                                     uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_delete__sendbatch(uint32_t destination,
                                                                    const l2vpn_sync_vpls_inst_info_delete* records,
                                                                    uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_delete__sendmsg(uint32_t destination,
                                                                  const l2vpn_sync_vpls_inst_info_delete* records,
                                                                  uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_info_delete__sendtomsg(uint32_t destination,
                                                                    const l2vpn_sync_vpls_inst_info_delete* records,
                                                                    uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pw_update. Its fingerprint is 0xD05763B00A4D2F0F. */
static const uint32_t l2vpn_sync_vpls_pw_update__msg_id = 0x96732772;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pw_update and fills *record,
 *  which the caller hands in zeroed. Returns 124, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_update__unpack(const uint8_t* data, uint32_t length,
                                                          l2vpn_sync_vpls_pw_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pw_update_free__unpacked(l2vpn_sync_vpls_pw_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 150 to 216 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_update__pack(const l2vpn_sync_vpls_pw_update* record,
                                                        uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 224 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_update__sendsingle(uint32_t destination,
                                                              const l2vpn_sync_vpls_pw_update* record,
                                                              uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_update__sendbatch(uint32_t destination,
                                                             const l2vpn_sync_vpls_pw_update* records,
                                                             uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_update__sendmsg(uint32_t destination,
                                                           const l2vpn_sync_vpls_pw_update* records,
                                                           uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_update__sendtomsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_pw_update* records,
                                                             uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pw_delete. Its fingerprint is 0xD05763B00A4D2F0F. */
static const uint32_t l2vpn_sync_vpls_pw_delete__msg_id = 0xF9456AF0;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pw_delete and fills *record,
 *  which the caller hands in zeroed. Returns 124, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_delete__unpack(const uint8_t* data, uint32_t length,
                                                          l2vpn_sync_vpls_pw_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pw_delete_free__unpacked(l2vpn_sync_vpls_pw_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 150 to 216 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_delete__pack(const l2vpn_sync_vpls_pw_delete* record,
                                                        uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 224 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_delete__sendsingle(uint32_t destination,
                                                              const l2vpn_sync_vpls_pw_delete* record,
                                                              uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_delete__sendbatch(uint32_t destination,
                                                             const l2vpn_sync_vpls_pw_delete* records,
                                                             uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_delete__sendmsg(uint32_t destination,
                                                           const l2vpn_sync_vpls_pw_delete* records,
                                                           uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_delete__sendtomsg(uint32_t destination,
                                                             const l2vpn_sync_vpls_pw_delete* records,
                                                             uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pwred_pg_update. Its fingerprint is
 *  0x8600329D2A5FA283. */
static const uint32_t l2vpn_sync_vpls_pwred_pg_update__msg_id = 0x29C3D5B9;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pwred_pg_update and fills
 *  *record, which the caller hands in zeroed. Returns 64, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_update__unpack(const uint8_t* data,
                                                                uint32_t length,
                                                                l2vpn_sync_vpls_pwred_pg_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pwred_pg_update_free__unpacked(l2vpn_sync_vpls_pwred_pg_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 98 to 128 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_update__pack(const l2vpn_sync_vpls_pwred_pg_update* record,
                                                              uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_update__sendsingle(uint32_t destination,
                                                                    const l2vpn_sync_vpls_pwred_pg_update* record,
                                                                    uint64_t unused,
                                                                    uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_update__sendbatch(uint32_t destination,
                                                                   const l2vpn_sync_vpls_pwred_pg_update* records,
                                                                   uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_update__sendmsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_pwred_pg_update* records,
                                                                 uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_update__sendtomsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_pwred_pg_update* records,
                                                                   uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pwred_pg_delete. Its fingerprint is
 *  0x8600329D2A5FA283. */
static const uint32_t l2vpn_sync_vpls_pwred_pg_delete__msg_id = 0x9C625083;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pwred_pg_delete and fills
 *  *record, which the caller hands in zeroed. Returns 64, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_delete__unpack(const uint8_t* data,
                                                                uint32_t length,
                                                                l2vpn_sync_vpls_pwred_pg_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pwred_pg_delete_free__unpacked(l2vpn_sync_vpls_pwred_pg_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 98 to 128 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_delete__pack(const l2vpn_sync_vpls_pwred_pg_delete* record,
                                                              uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_delete__sendsingle(uint32_t destination,
                                                                    const l2vpn_sync_vpls_pwred_pg_delete* record,
                                                                    uint64_t unused,
                                                                    uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_delete__sendbatch(uint32_t destination,
                                                                   const l2vpn_sync_vpls_pwred_pg_delete* records,
                                                                   uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_delete__sendmsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_pwred_pg_delete* records,
                                                                 uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pwred_pg_delete__sendtomsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_pwred_pg_delete* records,
                                                                   uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_exp_update. Its fingerprint is 0xCAE9001BD77F2FAF. */
static const uint32_t l2vpn_sync_vpls_exp_update__msg_id = 0xB28C784A;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_exp_update and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_update__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_sync_vpls_exp_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_exp_update_free__unpacked(l2vpn_sync_vpls_exp_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 60 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_update__pack(const l2vpn_sync_vpls_exp_update* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_update__sendsingle(uint32_t destination,
                                                               const l2vpn_sync_vpls_exp_update* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_update__sendbatch(uint32_t destination,
                                                              const l2vpn_sync_vpls_exp_update* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_update__sendmsg(uint32_t destination,
                                                            const l2vpn_sync_vpls_exp_update* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_update__sendtomsg(uint32_t destination,
                                                              const l2vpn_sync_vpls_exp_update* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_exp_delete. Its fingerprint is 0xCAE9001BD77F2FAF. */
static const uint32_t l2vpn_sync_vpls_exp_delete__msg_id = 0x5BB1E878;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_exp_delete and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_delete__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_sync_vpls_exp_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_exp_delete_free__unpacked(l2vpn_sync_vpls_exp_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 60 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_delete__pack(const l2vpn_sync_vpls_exp_delete* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_delete__sendsingle(uint32_t destination,
                                                               const l2vpn_sync_vpls_exp_delete* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_delete__sendbatch(uint32_t destination,
                                                              const l2vpn_sync_vpls_exp_delete* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_delete__sendmsg(uint32_t destination,
                                                            const l2vpn_sync_vpls_exp_delete* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_exp_delete__sendtomsg(uint32_t destination,
                                                              const l2vpn_sync_vpls_exp_delete* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_macdraw_update. Its fingerprint is
 *  0xC05D71F44390549F. */
static const uint32_t l2vpn_sync_vpls_ac_macdraw_update__msg_id = 0x5254D0FF;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_macdraw_update and fills
 *  *record, which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_update__unpack(const uint8_t* data,
                                                                  uint32_t length,
                                                                  l2vpn_sync_vpls_ac_macdraw_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_macdraw_update_free__unpacked(l2vpn_sync_vpls_ac_macdraw_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 64 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_update__pack(const l2vpn_sync_vpls_ac_macdraw_update* record,
                                                                uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_update__sendsingle(uint32_t destination,
                                                                      const l2vpn_sync_vpls_ac_macdraw_update* record,
                                                                      uint64_t unused,
                                                                      uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_update__sendbatch(uint32_t destination,
                                                                     const l2vpn_sync_vpls_ac_macdraw_update* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_update__sendmsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_ac_macdraw_update* records,
                                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_update__sendtomsg(uint32_t destination,
                                                                     const l2vpn_sync_vpls_ac_macdraw_update* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_ac_macdraw_delete. Its fingerprint is
 *  0xC05D71F44390549F. */
static const uint32_t l2vpn_sync_vpls_ac_macdraw_delete__msg_id = 0x7C070DD1;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_ac_macdraw_delete and fills
 *  *record, which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_delete__unpack(const uint8_t* data,
                                                                  uint32_t length,
                                                                  l2vpn_sync_vpls_ac_macdraw_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_ac_macdraw_delete_free__unpacked(l2vpn_sync_vpls_ac_macdraw_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 64 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_delete__pack(const l2vpn_sync_vpls_ac_macdraw_delete* record,
                                                                uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_delete__sendsingle(uint32_t destination,
                                                                      const l2vpn_sync_vpls_ac_macdraw_delete* record,
                                                                      uint64_t unused,
                                                                      uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_delete__sendbatch(uint32_t destination,
                                                                     const l2vpn_sync_vpls_ac_macdraw_delete* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_delete__sendmsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_ac_macdraw_delete* records,
                                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_ac_macdraw_delete__sendtomsg(uint32_t destination,
                                                                     const l2vpn_sync_vpls_ac_macdraw_delete* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pw_macdraw_update. Its fingerprint is
 *  0xCDD09666CD3D963B. */
static const uint32_t l2vpn_sync_vpls_pw_macdraw_update__msg_id = 0xA35CCE8C;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pw_macdraw_update and fills
 *  *record, which the caller hands in zeroed. Returns 28, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_update__unpack(const uint8_t* data,
                                                                  uint32_t length,
                                                                  l2vpn_sync_vpls_pw_macdraw_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pw_macdraw_update_free__unpacked(l2vpn_sync_vpls_pw_macdraw_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 46 to 72 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_update__pack(const l2vpn_sync_vpls_pw_macdraw_update* record,
                                                                uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 80 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_update__sendsingle(uint32_t destination,
                                                                      const l2vpn_sync_vpls_pw_macdraw_update* record,
                                                                      uint64_t unused,
                                                                      uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_update__sendbatch(uint32_t destination,
                                                                     const l2vpn_sync_vpls_pw_macdraw_update* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_update__sendmsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_pw_macdraw_update* records,
                                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_update__sendtomsg(uint32_t destination,
                                                                     const l2vpn_sync_vpls_pw_macdraw_update* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_pw_macdraw_delete. Its fingerprint is
 *  0xCDD09666CD3D963B. */
static const uint32_t l2vpn_sync_vpls_pw_macdraw_delete__msg_id = 0x55208772;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_pw_macdraw_delete and fills
 *  *record, which the caller hands in zeroed. Returns 28, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_delete__unpack(const uint8_t* data,
                                                                  uint32_t length,
                                                                  l2vpn_sync_vpls_pw_macdraw_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_pw_macdraw_delete_free__unpacked(l2vpn_sync_vpls_pw_macdraw_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 46 to 72 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_delete__pack(const l2vpn_sync_vpls_pw_macdraw_delete* record,
                                                                uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 80 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_delete__sendsingle(uint32_t destination,
                                                                      const l2vpn_sync_vpls_pw_macdraw_delete* record,
                                                                      uint64_t unused,
                                                                      uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_delete__sendbatch(uint32_t destination,
                                                                     const l2vpn_sync_vpls_pw_macdraw_delete* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_delete__sendmsg(uint32_t destination,
                                                                   const l2vpn_sync_vpls_pw_macdraw_delete* records,
                                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_pw_macdraw_delete__sendtomsg(uint32_t destination,
                                                                     const l2vpn_sync_vpls_pw_macdraw_delete* records,
                                                                     uint32_t count,
                                                                     uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_macdraw_update. Its fingerprint is
 *  0x9A6C023261E9EECB. */
static const uint32_t l2vpn_sync_vpls_inst_macdraw_update__msg_id = 0x03EC5657;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_macdraw_update and fills
 *  *record, which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_update__unpack(const uint8_t* data,
                                                                    uint32_t length,
                                                                    l2vpn_sync_vpls_inst_macdraw_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_macdraw_update_free__unpacked(l2vpn_sync_vpls_inst_macdraw_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 64 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_update__pack(const l2vpn_sync_vpls_inst_macdraw_update* record,
                                                                  uint8_t* buffer,
                                                                  uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_update__sendsingle(uint32_t destination,
                                                                        const l2vpn_sync_vpls_inst_macdraw_update* record,
                                                                        uint64_t unused,
                                                                        uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_update__sendbatch(uint32_t destination,
                                                                       const l2vpn_sync_vpls_inst_macdraw_update* records,
                                                                       uint32_t count,
                                                                       uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_update__sendmsg(uint32_t destination,
                                                                     const l2vpn_sync_vpls_inst_macdraw_update* records,
                                                                     uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_update__sendtomsg(uint32_t destination,
                                                                       const l2vpn_sync_vpls_inst_macdraw_update* records,
                                                                       uint32_t count,
                                                                       uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_inst_macdraw_delete. Its fingerprint is
 *  0x9A6C023261E9EECB. */
static const uint32_t l2vpn_sync_vpls_inst_macdraw_delete__msg_id = 0x70655AB9;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_inst_macdraw_delete and fills
 *  *record, which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_delete__unpack(const uint8_t* data,
                                                                    uint32_t length,
                                                                    l2vpn_sync_vpls_inst_macdraw_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_inst_macdraw_delete_free__unpacked(l2vpn_sync_vpls_inst_macdraw_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 64 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_delete__pack(const l2vpn_sync_vpls_inst_macdraw_delete* record,
                                                                  uint8_t* buffer,
                                                                  uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_delete__sendsingle(uint32_t destination,
                                                                        const l2vpn_sync_vpls_inst_macdraw_delete* record,
                                                                        uint64_t unused,
                                                                        uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_delete__sendbatch(uint32_t destination,
                                                                       const l2vpn_sync_vpls_inst_macdraw_delete* records,
                                                                       uint32_t count,
                                                                       uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_delete__sendmsg(uint32_t destination,
                                                                     const l2vpn_sync_vpls_inst_macdraw_delete* records,
                                                                     uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_inst_macdraw_delete__sendtomsg(uint32_t destination,
                                                                       const l2vpn_sync_vpls_inst_macdraw_delete* records,
                                                                       uint32_t count,
                                                                       uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_ac_update. Its fingerprint is 0x51797C984EA34A62. */
static const uint32_t l2vpn_sync_vll_ac_update__msg_id = 0x89FE5BCA;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_ac_update and fills *record,
 *  which the caller hands in zeroed. Returns 56, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vll_ac_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_ac_update_free__unpacked(l2vpn_sync_vll_ac_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 96 to 125 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_update__pack(const l2vpn_sync_vll_ac_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vll_ac_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vll_ac_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vll_ac_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vll_ac_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_ac_delete. Its fingerprint is 0x51797C984EA34A62. */
static const uint32_t l2vpn_sync_vll_ac_delete__msg_id = 0x3323CBF8;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_ac_delete and fills *record,
 *  which the caller hands in zeroed. Returns 56, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vll_ac_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_ac_delete_free__unpacked(l2vpn_sync_vll_ac_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 96 to 125 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_delete__pack(const l2vpn_sync_vll_ac_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vll_ac_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vll_ac_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vll_ac_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_ac_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vll_ac_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_extnhp_update. Its fingerprint is 0xD1A522130CF6FBEC. */
static const uint32_t l2vpn_sync_extnhp_update__msg_id = 0x8C8A1C62;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_extnhp_update and fills *record,
 *  which the caller hands in zeroed. Returns 28, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_extnhp_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_extnhp_update_free__unpacked(l2vpn_sync_extnhp_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 40 to 63 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_update__pack(const l2vpn_sync_extnhp_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_extnhp_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_extnhp_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_extnhp_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_extnhp_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_extnhp_delete. Its fingerprint is 0xD1A522130CF6FBEC. */
static const uint32_t l2vpn_sync_extnhp_delete__msg_id = 0xFD78BD60;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_extnhp_delete and fills *record,
 *  which the caller hands in zeroed. Returns 28, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_extnhp_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_extnhp_delete_free__unpacked(l2vpn_sync_extnhp_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 40 to 63 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_delete__pack(const l2vpn_sync_extnhp_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_extnhp_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_extnhp_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_extnhp_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_extnhp_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_extnhp_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_pw_update. Its fingerprint is 0xDD4B1C52FF369E86. */
static const uint32_t l2vpn_sync_vll_pw_update__msg_id = 0x8740C8ED;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_pw_update and fills *record,
 *  which the caller hands in zeroed. Returns 124, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vll_pw_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_pw_update_free__unpacked(l2vpn_sync_vll_pw_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 150 to 213 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_update__pack(const l2vpn_sync_vll_pw_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 224 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vll_pw_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vll_pw_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vll_pw_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vll_pw_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_pw_delete. Its fingerprint is 0xDD4B1C52FF369E86. */
static const uint32_t l2vpn_sync_vll_pw_delete__msg_id = 0xB8B1DDE7;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_pw_delete and fills *record,
 *  which the caller hands in zeroed. Returns 124, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vll_pw_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_pw_delete_free__unpacked(l2vpn_sync_vll_pw_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 150 to 213 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_delete__pack(const l2vpn_sync_vll_pw_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 224 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vll_pw_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vll_pw_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vll_pw_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_pw_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vll_pw_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_inst_update. Its fingerprint is 0x94985D10D29ED3FF. */
static const uint32_t l2vpn_sync_vll_inst_update__msg_id = 0xDAF52346;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_inst_update and fills *record,
 *  which the caller hands in zeroed. Returns 84, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_update__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_sync_vll_inst_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_inst_update_free__unpacked(l2vpn_sync_vll_inst_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 126 to 144 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_update__pack(const l2vpn_sync_vll_inst_update* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_update__sendsingle(uint32_t destination,
                                                               const l2vpn_sync_vll_inst_update* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_update__sendbatch(uint32_t destination,
                                                              const l2vpn_sync_vll_inst_update* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_update__sendmsg(uint32_t destination,
                                                            const l2vpn_sync_vll_inst_update* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_update__sendtomsg(uint32_t destination,
                                                              const l2vpn_sync_vll_inst_update* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vll_inst_delete. Its fingerprint is 0x94985D10D29ED3FF. */
static const uint32_t l2vpn_sync_vll_inst_delete__msg_id = 0x0D007DA4;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vll_inst_delete and fills *record,
 *  which the caller hands in zeroed. Returns 84, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_delete__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_sync_vll_inst_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vll_inst_delete_free__unpacked(l2vpn_sync_vll_inst_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 126 to 144 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_delete__pack(const l2vpn_sync_vll_inst_delete* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 152 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_delete__sendsingle(uint32_t destination,
                                                               const l2vpn_sync_vll_inst_delete* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_delete__sendbatch(uint32_t destination,
                                                              const l2vpn_sync_vll_inst_delete* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_delete__sendmsg(uint32_t destination,
                                                            const l2vpn_sync_vll_inst_delete* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vll_inst_delete__sendtomsg(uint32_t destination,
                                                              const l2vpn_sync_vll_inst_delete* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_glb_en_update. Its fingerprint is 0x715C3C8F322D9DC7. */
static const uint32_t l2vpn_sync_glb_en_update__msg_id = 0xC8BE6772;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_glb_en_update and fills *record,
 *  which the caller hands in zeroed. Returns 72, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_glb_en_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_glb_en_update_free__unpacked(l2vpn_sync_glb_en_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 110 to 124 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_update__pack(const l2vpn_sync_glb_en_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_glb_en_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_glb_en_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_glb_en_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_glb_en_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_glb_en_delete. Its fingerprint is 0x715C3C8F322D9DC7. */
static const uint32_t l2vpn_sync_glb_en_delete__msg_id = 0x2B90AAF0;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_glb_en_delete and fills *record,
 *  which the caller hands in zeroed. Returns 72, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_glb_en_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_glb_en_delete_free__unpacked(l2vpn_sync_glb_en_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 110 to 124 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_delete__pack(const l2vpn_sync_glb_en_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 136 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_glb_en_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_glb_en_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_glb_en_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_glb_en_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_glb_en_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_ifvlan_update. Its fingerprint is 0x242ED5CD75F52A19. */
static const uint32_t l2vpn_sync_ifvlan_update__msg_id = 0x313AD5AD;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_ifvlan_update and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_ifvlan_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_ifvlan_update_free__unpacked(l2vpn_sync_ifvlan_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 40 to 58 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_update__pack(const l2vpn_sync_ifvlan_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 64 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_ifvlan_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_ifvlan_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_ifvlan_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_ifvlan_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_ifvlan_delete. Its fingerprint is 0x242ED5CD75F52A19. */
static const uint32_t l2vpn_sync_ifvlan_delete__msg_id = 0x077944A7;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_ifvlan_delete and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_ifvlan_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_ifvlan_delete_free__unpacked(l2vpn_sync_ifvlan_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 40 to 58 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_delete__pack(const l2vpn_sync_ifvlan_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 64 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_ifvlan_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_ifvlan_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_ifvlan_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_ifvlan_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_ifvlan_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_subpw_update. Its fingerprint is 0x38D7DAC38CA09341. */
static const uint32_t l2vpn_sync_subpw_update__msg_id = 0x229FAFFC;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_subpw_update and fills *record,
 *  which the caller hands in zeroed. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_update__unpack(const uint8_t* data, uint32_t length,
                                                        l2vpn_sync_subpw_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_subpw_update_free__unpacked(l2vpn_sync_subpw_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 114 to 130 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_update__pack(const l2vpn_sync_subpw_update* record,
                                                      uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 144 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_update__sendsingle(uint32_t destination,
                                                            const l2vpn_sync_subpw_update* record,
                                                            uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_update__sendbatch(uint32_t destination,
                                                           const l2vpn_sync_subpw_update* records,
                                                           uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_update__sendmsg(uint32_t destination,
                                                         const l2vpn_sync_subpw_update* records,
                                                         uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_update__sendtomsg(uint32_t destination,
                                                           const l2vpn_sync_subpw_update* records,
                                                           uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_subpw_delete. Its fingerprint is 0x38D7DAC38CA09341. */
static const uint32_t l2vpn_sync_subpw_delete__msg_id = 0xA2667B62;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_subpw_delete and fills *record,
 *  which the caller hands in zeroed. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_delete__unpack(const uint8_t* data, uint32_t length,
                                                        l2vpn_sync_subpw_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_subpw_delete_free__unpacked(l2vpn_sync_subpw_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 114 to 130 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_delete__pack(const l2vpn_sync_subpw_delete* record,
                                                      uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 144 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_delete__sendsingle(uint32_t destination,
                                                            const l2vpn_sync_subpw_delete* record,
                                                            uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_delete__sendbatch(uint32_t destination,
                                                           const l2vpn_sync_subpw_delete* records,
                                                           uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_delete__sendmsg(uint32_t destination,
                                                         const l2vpn_sync_subpw_delete* records,
                                                         uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_subpw_delete__sendtomsg(uint32_t destination,
                                                           const l2vpn_sync_subpw_delete* records,
                                                           uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vllexp_update. Its fingerprint is 0xCAE9001BD77F2FAF. */
static const uint32_t l2vpn_sync_vllexp_update__msg_id = 0xC582AF50;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vllexp_update and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vllexp_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vllexp_update_free__unpacked(l2vpn_sync_vllexp_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 60 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_update__pack(const l2vpn_sync_vllexp_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vllexp_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vllexp_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vllexp_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vllexp_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vllexp_delete. Its fingerprint is 0xCAE9001BD77F2FAF. */
static const uint32_t l2vpn_sync_vllexp_delete__msg_id = 0x354F61E6;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vllexp_delete and fills *record,
 *  which the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_vllexp_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vllexp_delete_free__unpacked(l2vpn_sync_vllexp_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 60 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_delete__pack(const l2vpn_sync_vllexp_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_vllexp_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_vllexp_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_vllexp_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vllexp_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_vllexp_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_vsimac_update. Its fingerprint is
 *  0x61CBC107E3464368. */
static const uint32_t l2vpn_sync_vpls_vsimac_update__msg_id = 0x7BE87F9A;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_vsimac_update and fills
 *  *record, which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_update__unpack(const uint8_t* data, uint32_t length,
                                                              l2vpn_sync_vpls_vsimac_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_vsimac_update_free__unpacked(l2vpn_sync_vpls_vsimac_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 116 to 160 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_update__pack(const l2vpn_sync_vpls_vsimac_update* record,
                                                            uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 168 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_update__sendsingle(uint32_t destination,
                                                                  const l2vpn_sync_vpls_vsimac_update* record,
                                                                  uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_update__sendbatch(uint32_t destination,
                                                                 const l2vpn_sync_vpls_vsimac_update* records,
                                                                 uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_update__sendmsg(uint32_t destination,
                                                               const l2vpn_sync_vpls_vsimac_update* records,
                                                               uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_update__sendtomsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_vsimac_update* records,
                                                                 uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_vsimac_delete. Its fingerprint is
 *  0x61CBC107E3464368. */
static const uint32_t l2vpn_sync_vpls_vsimac_delete__msg_id = 0x44F1C708;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_vsimac_delete and fills
 *  *record, which the caller hands in zeroed. Returns 76, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_delete__unpack(const uint8_t* data, uint32_t length,
                                                              l2vpn_sync_vpls_vsimac_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_vsimac_delete_free__unpacked(l2vpn_sync_vpls_vsimac_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 116 to 160 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_delete__pack(const l2vpn_sync_vpls_vsimac_delete* record,
                                                            uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 168 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_delete__sendsingle(uint32_t destination,
                                                                  const l2vpn_sync_vpls_vsimac_delete* record,
                                                                  uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_delete__sendbatch(uint32_t destination,
                                                                 const l2vpn_sync_vpls_vsimac_delete* records,
                                                                 uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_delete__sendmsg(uint32_t destination,
                                                               const l2vpn_sync_vpls_vsimac_delete* records,
                                                               uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_vsimac_delete__sendtomsg(uint32_t destination,
                                                                 const l2vpn_sync_vpls_vsimac_delete* records,
                                                                 uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_oam_staticmac_update. Its fingerprint is
 *  0xED54A00AC88AF2E6. */
static const uint32_t l2vpn_sync_oam_staticmac_update__msg_id = 0x42FC4C72;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_oam_staticmac_update and fills
 *  *record, which the caller hands in zeroed. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_update__unpack(const uint8_t* data,
                                                                uint32_t length,
                                                                l2vpn_sync_oam_staticmac_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_oam_staticmac_update_free__unpacked(l2vpn_sync_oam_staticmac_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 126 to 150 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_update__pack(const l2vpn_sync_oam_staticmac_update* record,
                                                              uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 160 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_update__sendsingle(uint32_t destination,
                                                                    const l2vpn_sync_oam_staticmac_update* record,
                                                                    uint64_t unused,
                                                                    uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_update__sendbatch(uint32_t destination,
                                                                   const l2vpn_sync_oam_staticmac_update* records,
                                                                   uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_update__sendmsg(uint32_t destination,
                                                                 const l2vpn_sync_oam_staticmac_update* records,
                                                                 uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_update__sendtomsg(uint32_t destination,
                                                                   const l2vpn_sync_oam_staticmac_update* records,
                                                                   uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_oam_staticmac_delete. Its fingerprint is
 *  0xED54A00AC88AF2E6. */
static const uint32_t l2vpn_sync_oam_staticmac_delete__msg_id = 0xA5CE8FF0;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_oam_staticmac_delete and fills
 *  *record, which the caller hands in zeroed. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_delete__unpack(const uint8_t* data,
                                                                uint32_t length,
                                                                l2vpn_sync_oam_staticmac_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_oam_staticmac_delete_free__unpacked(l2vpn_sync_oam_staticmac_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 126 to 150 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_delete__pack(const l2vpn_sync_oam_staticmac_delete* record,
                                                              uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 160 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_delete__sendsingle(uint32_t destination,
                                                                    const l2vpn_sync_oam_staticmac_delete* record,
                                                                    uint64_t unused,
                                                                    uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_delete__sendbatch(uint32_t destination,
                                                                   const l2vpn_sync_oam_staticmac_delete* records,
                                                                   uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_delete__sendmsg(uint32_t destination,
                                                                 const l2vpn_sync_oam_staticmac_delete* records,
                                                                 uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_oam_staticmac_delete__sendtomsg(uint32_t destination,
                                                                   const l2vpn_sync_oam_staticmac_delete* records,
                                                                   uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_pw_pmo_update. Its fingerprint is 0x9A6C023261E9EECB. */
static const uint32_t l2vpn_sync_pw_pmo_update__msg_id = 0x330693D5;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_pw_pmo_update and fills *record,
 *  which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_update__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_pw_pmo_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_pw_pmo_update_free__unpacked(l2vpn_sync_pw_pmo_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 64 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_update__pack(const l2vpn_sync_pw_pmo_update* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_update__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_pw_pmo_update* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_update__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_pw_pmo_update* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_update__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_pw_pmo_update* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_update__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_pw_pmo_update* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_pw_pmo_delete. Its fingerprint is 0x9A6C023261E9EECB. */
static const uint32_t l2vpn_sync_pw_pmo_delete__msg_id = 0xE61AB2BF;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_pw_pmo_delete and fills *record,
 *  which the caller hands in zeroed. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_delete__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_sync_pw_pmo_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_pw_pmo_delete_free__unpacked(l2vpn_sync_pw_pmo_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 to 64 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_delete__pack(const l2vpn_sync_pw_pmo_delete* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 72 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_delete__sendsingle(uint32_t destination,
                                                             const l2vpn_sync_pw_pmo_delete* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_delete__sendbatch(uint32_t destination,
                                                            const l2vpn_sync_pw_pmo_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_delete__sendmsg(uint32_t destination,
                                                          const l2vpn_sync_pw_pmo_delete* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_pw_pmo_delete__sendtomsg(uint32_t destination,
                                                            const l2vpn_sync_pw_pmo_delete* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_macping_update. Its fingerprint is
 *  0x41CCAC7265182601. */
static const uint32_t l2vpn_sync_vpls_macping_update__msg_id = 0x62B2992E;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_macping_update and fills
 *  *record, which the caller hands in zeroed. Returns 48, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_update__unpack(const uint8_t* data, uint32_t length,
                                                               l2vpn_sync_vpls_macping_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_macping_update_free__unpacked(l2vpn_sync_vpls_macping_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 68 to 104 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_update__pack(const l2vpn_sync_vpls_macping_update* record,
                                                             uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 112 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_update__sendsingle(uint32_t destination,
                                                                   const l2vpn_sync_vpls_macping_update* record,
                                                                   uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_update__sendbatch(uint32_t destination,
                                                                  const l2vpn_sync_vpls_macping_update* records,
                                                                  uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_update__sendmsg(uint32_t destination,
                                                                const l2vpn_sync_vpls_macping_update* records,
                                                                uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_update__sendtomsg(uint32_t destination,
                                                                  const l2vpn_sync_vpls_macping_update* records,
                                                                  uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_vpls_macping_delete. Its fingerprint is
 *  0x41CCAC7265182601. */
static const uint32_t l2vpn_sync_vpls_macping_delete__msg_id = 0x3EBF1F5C;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_vpls_macping_delete and fills
 *  *record, which the caller hands in zeroed. Returns 48, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_delete__unpack(const uint8_t* data, uint32_t length,
                                                               l2vpn_sync_vpls_macping_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_vpls_macping_delete_free__unpacked(l2vpn_sync_vpls_macping_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 68 to 104 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_delete__pack(const l2vpn_sync_vpls_macping_delete* record,
                                                             uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 112 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_delete__sendsingle(uint32_t destination,
                                                                   const l2vpn_sync_vpls_macping_delete* record,
                                                                   uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_delete__sendbatch(uint32_t destination,
                                                                  const l2vpn_sync_vpls_macping_delete* records,
                                                                  uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_delete__sendmsg(uint32_t destination,
                                                                const l2vpn_sync_vpls_macping_delete* records,
                                                                uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_vpls_macping_delete__sendtomsg(uint32_t destination,
                                                                  const l2vpn_sync_vpls_macping_delete* records,
                                                                  uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_stp_update. Its fingerprint is 0xBB336424E0A41635. */
static const uint32_t l2vpn_sync_stp_update__msg_id = 0x81733752;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_stp_update and fills *record, which
 *  the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_update__unpack(const uint8_t* data, uint32_t length,
                                                      l2vpn_sync_stp_update* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_stp_update_free__unpacked(l2vpn_sync_stp_update* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 36 to 54 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_update__pack(const l2vpn_sync_stp_update* record,
                                                    uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 64 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_update__sendsingle(uint32_t destination,
                                                          const l2vpn_sync_stp_update* record,
                                                          uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_update__sendbatch(uint32_t destination,
                                                         const l2vpn_sync_stp_update* records,
                                                         uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_update__sendmsg(uint32_t destination,
                                                       const l2vpn_sync_stp_update* records,
                                                       uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_update__sendtomsg(uint32_t destination,
                                                         const l2vpn_sync_stp_update* records,
                                                         uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_sync_stp_delete. Its fingerprint is 0xBB336424E0A41635. */
static const uint32_t l2vpn_sync_stp_delete__msg_id = 0x000C98D0;

/** Verifies `length` bytes at `data` as a message l2vpn_sync_stp_delete and fills *record, which
 *  the caller hands in zeroed. Returns 20, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_delete__unpack(const uint8_t* data, uint32_t length,
                                                      l2vpn_sync_stp_delete* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_sync_stp_delete_free__unpacked(l2vpn_sync_stp_delete* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 36 to 54 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_delete__pack(const l2vpn_sync_stp_delete* record,
                                                    uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 64 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_delete__sendsingle(uint32_t destination,
                                                          const l2vpn_sync_stp_delete* record,
                                                          uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_delete__sendbatch(uint32_t destination,
                                                         const l2vpn_sync_stp_delete* records,
                                                         uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_delete__sendmsg(uint32_t destination,
                                                       const l2vpn_sync_stp_delete* records,
                                                       uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_sync_stp_delete__sendtomsg(uint32_t destination,
                                                         const l2vpn_sync_stp_delete* records,
                                                         uint32_t count, uint64_t extra);

MESH_L2VPN_END

#endif
