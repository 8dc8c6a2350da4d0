/** @file
 * The functions and identifiers of the service l2vpn_cfg, each under its full name. Included by
 * mesh_l2vpn/l2vpn_cfg.h; what all have in common stands in mesh_l2vpn/operations.h.
 *
 * Written by mesh-l2vpn-catalogue from the schemas; do not edit. */
/* clang-format off */
#ifndef MESH_L2VPN_L2VPN_CFG_FUNCTIONS_H
#define MESH_L2VPN_L2VPN_CFG_FUNCTIONS_H

#include "mesh_l2vpn/l2vpn_cfg.h"

MESH_L2VPN_BEGIN

/** Registers the service's messages with the middleware, for receiving. Returns 0, or the
 *  middleware's first result that is not 0; what was registered before it stays. */
MESH_L2VPN_API uint32_t l2vpn_cfg_recv_init(void);

/** Registers l2vpn_cfg__send_resource_clean with the middleware, for sending. Returns the
 *  middleware's result. */
MESH_L2VPN_API uint32_t l2vpn_cfg_send_init(void);

/** Called by the middleware. Sending keeps nothing between calls, so it does nothing. */
MESH_L2VPN_API void l2vpn_cfg__send_resource_clean(void);

/** Identifier of the message dbginfo_key_l2vpn. Its fingerprint is 0x663EA50DE795B6B7. */
static const uint32_t dbginfo_key_l2vpn__msg_id = 0xFEB5D38D;

/** Verifies `length` bytes at `data` as a message dbginfo_key_l2vpn and fills *record, which the
 *  caller hands in zeroed. What it allocates goes back through dbginfo_key_l2vpn_free__unpacked.
 *  Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t dbginfo_key_l2vpn__unpack(const uint8_t* data, uint32_t length,
                                                  dbginfo_key_l2vpn* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void dbginfo_key_l2vpn_free__unpacked(dbginfo_key_l2vpn* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 20 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t dbginfo_key_l2vpn__pack(const dbginfo_key_l2vpn* record, uint8_t* buffer,
                                                uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t dbginfo_key_l2vpn__sendsingle(uint32_t destination,
                                                      const dbginfo_key_l2vpn* record,
                                                      uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t dbginfo_key_l2vpn__sendbatch(uint32_t destination,
                                                     const dbginfo_key_l2vpn* records,
                                                     uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t dbginfo_key_l2vpn__sendmsg(uint32_t destination,
                                                   const dbginfo_key_l2vpn* records,
                                                   uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t dbginfo_key_l2vpn__sendtomsg(uint32_t destination,
                                                     const dbginfo_key_l2vpn* records,
                                                     uint32_t count, uint64_t extra);

/** Identifier of the message dbginfo_para_l2vpn. Its fingerprint is 0xCB80A6ED08D9FD5F. */
static const uint32_t dbginfo_para_l2vpn__msg_id = 0xF5550D12;

/** Verifies `length` bytes at `data` as a message dbginfo_para_l2vpn and fills *record, which
 *  the caller hands in zeroed. What it allocates goes back through
 *  dbginfo_para_l2vpn_free__unpacked. Returns 40, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t dbginfo_para_l2vpn__unpack(const uint8_t* data, uint32_t length,
                                                   dbginfo_para_l2vpn* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void dbginfo_para_l2vpn_free__unpacked(dbginfo_para_l2vpn* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 28 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t dbginfo_para_l2vpn__pack(const dbginfo_para_l2vpn* record, uint8_t* buffer,
                                                 uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t dbginfo_para_l2vpn__sendsingle(uint32_t destination,
                                                       const dbginfo_para_l2vpn* record,
                                                       uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t dbginfo_para_l2vpn__sendbatch(uint32_t destination,
                                                      const dbginfo_para_l2vpn* records,
                                                      uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t dbginfo_para_l2vpn__sendmsg(uint32_t destination,
                                                    const dbginfo_para_l2vpn* records,
                                                    uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t dbginfo_para_l2vpn__sendtomsg(uint32_t destination,
                                                      const dbginfo_para_l2vpn* records,
                                                      uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_cfg_query_dfx_cond. Its fingerprint is 0xF6BD4FF62BC42C6F. */
static const uint32_t l2vpn_cfg_query_dfx_cond__msg_id = 0xE11ADDEF;

/** Verifies `length` bytes at `data` as a message l2vpn_cfg_query_dfx_cond and fills *record,
 *  which the caller hands in zeroed. Returns 136, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_cond__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_cfg_query_dfx_cond* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_cfg_query_dfx_cond_free__unpacked(l2vpn_cfg_query_dfx_cond* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 154 to 162 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_cond__pack(const l2vpn_cfg_query_dfx_cond* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 168 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_cond__sendsingle(uint32_t destination,
                                                             const l2vpn_cfg_query_dfx_cond* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_cond__sendbatch(uint32_t destination,
                                                            const l2vpn_cfg_query_dfx_cond* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_cond__sendmsg(uint32_t destination,
                                                          const l2vpn_cfg_query_dfx_cond* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_cond__sendtomsg(uint32_t destination,
                                                            const l2vpn_cfg_query_dfx_cond* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_cfg_query_comm_param. Its fingerprint is 0x72E708E446A5E69D. */
static const uint32_t l2vpn_cfg_query_comm_param__msg_id = 0xDC5527DE;

/** Verifies `length` bytes at `data` as a message l2vpn_cfg_query_comm_param and fills *record,
 *  which the caller hands in zeroed. What it allocates goes back through
 *  l2vpn_cfg_query_comm_param_free__unpacked. Returns 24, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_param__unpack(const uint8_t* data, uint32_t length,
                                                           l2vpn_cfg_query_comm_param* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void l2vpn_cfg_query_comm_param_free__unpacked(l2vpn_cfg_query_comm_param* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 18 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_param__pack(const l2vpn_cfg_query_comm_param* record,
                                                         uint8_t* buffer, uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_param__sendsingle(uint32_t destination,
                                                               const l2vpn_cfg_query_comm_param* record,
                                                               uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_param__sendbatch(uint32_t destination,
                                                              const l2vpn_cfg_query_comm_param* records,
                                                              uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_param__sendmsg(uint32_t destination,
                                                            const l2vpn_cfg_query_comm_param* records,
                                                            uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_param__sendtomsg(uint32_t destination,
                                                              const l2vpn_cfg_query_comm_param* records,
                                                              uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_cfg_query_comm_rec. Its fingerprint is 0xB7C47331396A34A9. */
static const uint32_t l2vpn_cfg_query_comm_rec__msg_id = 0x345542C5;

/** Verifies `length` bytes at `data` as a message l2vpn_cfg_query_comm_rec and fills *record,
 *  which the caller hands in zeroed. What it allocates goes back through
 *  l2vpn_cfg_query_comm_rec_free__unpacked. Returns 32, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_rec__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_cfg_query_comm_rec* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void l2vpn_cfg_query_comm_rec_free__unpacked(l2vpn_cfg_query_comm_rec* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 22 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_rec__pack(const l2vpn_cfg_query_comm_rec* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_rec__sendsingle(uint32_t destination,
                                                             const l2vpn_cfg_query_comm_rec* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_rec__sendbatch(uint32_t destination,
                                                            const l2vpn_cfg_query_comm_rec* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_rec__sendmsg(uint32_t destination,
                                                          const l2vpn_cfg_query_comm_rec* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_comm_rec__sendtomsg(uint32_t destination,
                                                            const l2vpn_cfg_query_comm_rec* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message dbginfo_cmd_key_l2vpn. Its fingerprint is 0x36631625C80DFC7E. */
static const uint32_t dbginfo_cmd_key_l2vpn__msg_id = 0x8B614502;

/** Verifies `length` bytes at `data` as a message dbginfo_cmd_key_l2vpn and fills *record, which
 *  the caller hands in zeroed. What it allocates goes back through
 *  dbginfo_cmd_key_l2vpn_free__unpacked. Returns 80, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t dbginfo_cmd_key_l2vpn__unpack(const uint8_t* data, uint32_t length,
                                                      dbginfo_cmd_key_l2vpn* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void dbginfo_cmd_key_l2vpn_free__unpacked(dbginfo_cmd_key_l2vpn* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 70 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t dbginfo_cmd_key_l2vpn__pack(const dbginfo_cmd_key_l2vpn* record,
                                                    uint8_t* buffer, uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t dbginfo_cmd_key_l2vpn__sendsingle(uint32_t destination,
                                                          const dbginfo_cmd_key_l2vpn* record,
                                                          uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t dbginfo_cmd_key_l2vpn__sendbatch(uint32_t destination,
                                                         const dbginfo_cmd_key_l2vpn* records,
                                                         uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t dbginfo_cmd_key_l2vpn__sendmsg(uint32_t destination,
                                                       const dbginfo_cmd_key_l2vpn* records,
                                                       uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t dbginfo_cmd_key_l2vpn__sendtomsg(uint32_t destination,
                                                         const dbginfo_cmd_key_l2vpn* records,
                                                         uint32_t count, uint64_t extra);

/** Identifier of the message dbginfo_cmd_ipc_l2vpn. Its fingerprint is 0xBAAF1307A74909C3. */
static const uint32_t dbginfo_cmd_ipc_l2vpn__msg_id = 0x110045FB;

/** Verifies `length` bytes at `data` as a message dbginfo_cmd_ipc_l2vpn and fills *record, which
 *  the caller hands in zeroed. Returns 44, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t dbginfo_cmd_ipc_l2vpn__unpack(const uint8_t* data, uint32_t length,
                                                      dbginfo_cmd_ipc_l2vpn* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void dbginfo_cmd_ipc_l2vpn_free__unpacked(dbginfo_cmd_ipc_l2vpn* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 38 to 80 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t dbginfo_cmd_ipc_l2vpn__pack(const dbginfo_cmd_ipc_l2vpn* record,
                                                    uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 88 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t dbginfo_cmd_ipc_l2vpn__sendsingle(uint32_t destination,
                                                          const dbginfo_cmd_ipc_l2vpn* record,
                                                          uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t dbginfo_cmd_ipc_l2vpn__sendbatch(uint32_t destination,
                                                         const dbginfo_cmd_ipc_l2vpn* records,
                                                         uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t dbginfo_cmd_ipc_l2vpn__sendmsg(uint32_t destination,
                                                       const dbginfo_cmd_ipc_l2vpn* records,
                                                       uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t dbginfo_cmd_ipc_l2vpn__sendtomsg(uint32_t destination,
                                                         const dbginfo_cmd_ipc_l2vpn* records,
                                                         uint32_t count, uint64_t extra);

/** Identifier of the message dbginfo_endata_l2vpn. Its fingerprint is 0x8B7255CA4D025E54. */
static const uint32_t dbginfo_endata_l2vpn__msg_id = 0x494B03FB;

/** Verifies `length` bytes at `data` as a message dbginfo_endata_l2vpn and fills *record, which
 *  the caller hands in zeroed. What it allocates goes back through
 *  dbginfo_endata_l2vpn_free__unpacked. Returns 64, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t dbginfo_endata_l2vpn__unpack(const uint8_t* data, uint32_t length,
                                                     dbginfo_endata_l2vpn* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void dbginfo_endata_l2vpn_free__unpacked(dbginfo_endata_l2vpn* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 42 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t dbginfo_endata_l2vpn__pack(const dbginfo_endata_l2vpn* record,
                                                   uint8_t* buffer, uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t dbginfo_endata_l2vpn__sendsingle(uint32_t destination,
                                                         const dbginfo_endata_l2vpn* record,
                                                         uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t dbginfo_endata_l2vpn__sendbatch(uint32_t destination,
                                                        const dbginfo_endata_l2vpn* records,
                                                        uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t dbginfo_endata_l2vpn__sendmsg(uint32_t destination,
                                                      const dbginfo_endata_l2vpn* records,
                                                      uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t dbginfo_endata_l2vpn__sendtomsg(uint32_t destination,
                                                        const dbginfo_endata_l2vpn* records,
                                                        uint32_t count, uint64_t extra);

/** Identifier of the message dbginfo_dedata_l2vpn. Its fingerprint is 0xB8038ED47EACAEBF. */
static const uint32_t dbginfo_dedata_l2vpn__msg_id = 0x3CF15A13;

/** Verifies `length` bytes at `data` as a message dbginfo_dedata_l2vpn and fills *record, which
 *  the caller hands in zeroed. Returns 40, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t dbginfo_dedata_l2vpn__unpack(const uint8_t* data, uint32_t length,
                                                     dbginfo_dedata_l2vpn* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void dbginfo_dedata_l2vpn_free__unpacked(dbginfo_dedata_l2vpn* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 38 to 76 bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t dbginfo_dedata_l2vpn__pack(const dbginfo_dedata_l2vpn* record,
                                                   uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 80 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t dbginfo_dedata_l2vpn__sendsingle(uint32_t destination,
                                                         const dbginfo_dedata_l2vpn* record,
                                                         uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t dbginfo_dedata_l2vpn__sendbatch(uint32_t destination,
                                                        const dbginfo_dedata_l2vpn* records,
                                                        uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t dbginfo_dedata_l2vpn__sendmsg(uint32_t destination,
                                                      const dbginfo_dedata_l2vpn* records,
                                                      uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t dbginfo_dedata_l2vpn__sendtomsg(uint32_t destination,
                                                        const dbginfo_dedata_l2vpn* records,
                                                        uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_cfg_query_dfx_item. Its fingerprint is 0xDD6B48E1F5480945. */
static const uint32_t l2vpn_cfg_query_dfx_item__msg_id = 0x77B787DC;

/** Verifies `length` bytes at `data` as a message l2vpn_cfg_query_dfx_item and fills *record,
 *  which the caller hands in zeroed. Returns 16572, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_item__unpack(const uint8_t* data, uint32_t length,
                                                         l2vpn_cfg_query_dfx_item* record);

/** Does nothing: this record owns no memory. It is what the middleware calls. */
MESH_L2VPN_API void l2vpn_cfg_query_dfx_item_free__unpacked(l2vpn_cfg_query_dfx_item* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 16622 to 16626 bytes. Returns 0, or 0xFFFFFFFF with nothing
 *  changed. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_item__pack(const l2vpn_cfg_query_dfx_item* record,
                                                       uint8_t* buffer, uint32_t* length);

/** Sends *record in the fixed arrangement, 16632 bytes. `extra` travels along where it is not 0;
 *  `unused` is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_item__sendsingle(uint32_t destination,
                                                             const l2vpn_cfg_query_dfx_item* record,
                                                             uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_item__sendbatch(uint32_t destination,
                                                            const l2vpn_cfg_query_dfx_item* records,
                                                            uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_item__sendmsg(uint32_t destination,
                                                          const l2vpn_cfg_query_dfx_item* records,
                                                          uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_item__sendtomsg(uint32_t destination,
                                                            const l2vpn_cfg_query_dfx_item* records,
                                                            uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_cfg_query_dfx_key. Its fingerprint is 0xFAD5B35C33CFD167. */
static const uint32_t l2vpn_cfg_query_dfx_key__msg_id = 0xD5542082;

/** Verifies `length` bytes at `data` as a message l2vpn_cfg_query_dfx_key and fills *record,
 *  which the caller hands in zeroed. What it allocates goes back through
 *  l2vpn_cfg_query_dfx_key_free__unpacked. Returns 160, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_key__unpack(const uint8_t* data, uint32_t length,
                                                        l2vpn_cfg_query_dfx_key* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void l2vpn_cfg_query_dfx_key_free__unpacked(l2vpn_cfg_query_dfx_key* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 188 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_key__pack(const l2vpn_cfg_query_dfx_key* record,
                                                      uint8_t* buffer, uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_key__sendsingle(uint32_t destination,
                                                            const l2vpn_cfg_query_dfx_key* record,
                                                            uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_key__sendbatch(uint32_t destination,
                                                           const l2vpn_cfg_query_dfx_key* records,
                                                           uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_key__sendmsg(uint32_t destination,
                                                         const l2vpn_cfg_query_dfx_key* records,
                                                         uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_key__sendtomsg(uint32_t destination,
                                                           const l2vpn_cfg_query_dfx_key* records,
                                                           uint32_t count, uint64_t extra);

/** Identifier of the message l2vpn_cfg_query_dfx_rec. Its fingerprint is 0x7C9CFC495983AA10. */
static const uint32_t l2vpn_cfg_query_dfx_rec__msg_id = 0xC900380B;

/** Verifies `length` bytes at `data` as a message l2vpn_cfg_query_dfx_rec and fills *record,
 *  which the caller hands in zeroed. What it allocates goes back through
 *  l2vpn_cfg_query_dfx_rec_free__unpacked. Returns 48, the record's size, accepted or not. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_rec__unpack(const uint8_t* data, uint32_t length,
                                                        l2vpn_cfg_query_dfx_rec* record);

/** Gives back what unpacking allocated inside *record, never *record itself, and sets those
 *  pointers to null. */
MESH_L2VPN_API void l2vpn_cfg_query_dfx_rec_free__unpacked(l2vpn_cfg_query_dfx_rec* record);

/** Encodes *record in the compact arrangement. *length is the room at `buffer` on entry and the
 *  message's size on success: 38 and more bytes. Returns 0, or 0xFFFFFFFF with nothing changed. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_rec__pack(const l2vpn_cfg_query_dfx_rec* record,
                                                      uint8_t* buffer, uint32_t* length);

/** Sends *record in the compact arrangement. `extra` travels along where it is not 0; `unused`
 *  is not read. Returns the middleware's result, or 0xFFFFFFFF. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_rec__sendsingle(uint32_t destination,
                                                            const l2vpn_cfg_query_dfx_rec* record,
                                                            uint64_t unused, uint64_t extra);

/** Sends `count` contiguous records in one call of the middleware: all or none. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_rec__sendbatch(uint32_t destination,
                                                           const l2vpn_cfg_query_dfx_rec* records,
                                                           uint32_t count, uint64_t extra);

/** Sends `count` contiguous records, at least one, without `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_rec__sendmsg(uint32_t destination,
                                                         const l2vpn_cfg_query_dfx_rec* records,
                                                         uint32_t count);

/** Sends `count` contiguous records, at least one, with `extra`. */
MESH_L2VPN_API uint32_t l2vpn_cfg_query_dfx_rec__sendtomsg(uint32_t destination,
                                                           const l2vpn_cfg_query_dfx_rec* records,
                                                           uint32_t count, uint64_t extra);

MESH_L2VPN_END

#endif
