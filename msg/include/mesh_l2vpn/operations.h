/** @file
 * The seven operations that every message X of libmesh_l2vpn has.
 *
 * Conventions:
 *
 * 1. Records. X is a plain C struct of unsigned integers, byte arrays, inline sub-records, counted
 *    byte strings (fN_len, fN) and counted runs of records (fN_count, fN). Its fields bear the
 *    number of their slot. Arrays of records are contiguous.
 * 2. Ownership. The caller owns every record and every buffer. Only X__unpack allocates: one block
 *    for each byte string or run, owned by the record until X_free__unpacked. It never releases
 *    what a record already holds: release first, then unpack into it again. Records given to
 *    X__pack and the send operations are read and nothing else.
 * 3. Results. X__pack and the send operations return 0 on success and 0xFFFFFFFF on every failure
 *    of their own; a send that reaches the middleware returns the middleware's result. X__unpack
 *    always returns sizeof(X).
 * 4. Threads. Every operation runs on its caller's thread and may be called from several at once,
 *    on different records. What it is given must not change while it runs. Nothing needs to be
 *    called first.
 * 5. Byte order. The wire has the host's, which is little-endian on the devices.
 * 6. Host services. Failures are logged through DDM_OsalLogWrite, memory comes from DDM_OsalMem*,
 *    where the process has functions by these names at a module's first use; otherwise nothing is
 *    logged, and malloc and free serve.
 */
#ifndef MESH_L2VPN_OPERATIONS_H
#define MESH_L2VPN_OPERATIONS_H

#include <stdint.h>

#if defined(__GNUC__)
#define MESH_L2VPN_API __attribute__((visibility("default")))
#else
#define MESH_L2VPN_API
#endif

#ifdef __cplusplus
#define MESH_L2VPN_BEGIN extern "C" {
#define MESH_L2VPN_END }
#else
#define MESH_L2VPN_BEGIN
#define MESH_L2VPN_END
#endif

/** @page operations The operations of a message and of a service
 *
 * A service's header declares them for each of its messages X, by full name, in
 * mesh_l2vpn/l2vpn_cfg_functions.h and its two counterparts.
 *
 * @verbatim
 *
 * X__msg_id, a constant uint32_t object
 *   By which the middleware tells X from other messages: 32-bit FNV-1a of X's name. C does not take
 *   it for a case label; the service's list of messages has the number itself.
 *
 * uint32_t X__unpack(const uint8_t* data, uint32_t length, X* record)
 *   Verifies `length` bytes at `data` as a message X, in either arrangement, and fills *record;
 *   fields that the message does not carry are 0. Reads nothing outside the buffer, whatever it
 *   holds, and needs no alignment. Returns sizeof(X) whether the buffer was accepted or not.
 *   Hand in a record of zeros, since a rejection leaves one of three things:
 *   - a null `data` or `record`, or a `length` below 4 as a signed number: logged, *record as
 *     it was;
 *   - a bad root or vtable: logged, *record cleared or, in most records of l2vpn_cfg and in every
 *     _update and _delete, as it was;
 *   - a field that does not fit, or memory refused (the latter is logged): fields before it keep
 *     their values, later ones are 0, every out-of-line part is given back and its pointer null,
 *     while its length or count may not be 0. Test the pointer, not the count.
 *
 * void X_free__unpacked(X* record)
 *   Gives back what X__unpack allocated inside *record and sets those pointers to null; lengths
 *   and counts stay. Never frees *record. Harmless for null, for a record of zeros and when called
 *   twice; not for a record that was never filled.
 *
 * uint32_t X__pack(const X* record, uint8_t* buffer, uint32_t* length)
 *   Encodes *record in the compact arrangement, which leaves out what is zero. *length is the room
 *   at `buffer` in bytes on entry, and the message's exact size on success. 0xFFFFFFFF, with
 *   *length and the buffer unchanged, when `record` or `length` is null, when the room is too
 *   small, when the record's size passes 32 bits (0xFFFFFFF7 in dbginfo_cmd_key_l2vpn,
 *   0xFFFFFFFE in l2vpn_cfg_query_dfx_key), or when a run has a count and a null pointer. A
 *   null `buffer` with room enough claimed, UINT32_MAX say, stores the size, logs, and returns 0:
 *   so one asks for the size. A byte string whose pointer is not null and whose length is 0
 *   counts 8 bytes at the end that are not written.
 *
 * uint32_t X__sendsingle(uint32_t destination, const X* record, uint64_t unused, uint64_t extra)
 *   Encodes *record in the message's own arrangement and hands it to the middleware as one
 *   descriptor. `extra` travels with it where it is not 0. A message that is sent in the fixed
 *   arrangement does not test `record`: it must not be null.
 *
 * uint32_t X__sendbatch(uint32_t destination, const X* records, uint32_t count, uint64_t extra)
 *   The same for `count` contiguous records: one allocation, one middleware call, `count`
 *   descriptors. All are sent or none. In the compact arrangement the encoded records may take
 *   65,536 bytes together; the block for a batch must not pass 32 bits. A count of 0 reaches the
 *   middleware.
 *
 * uint32_t X__sendmsg(uint32_t destination, const X* records, uint32_t count)
 *   X__sendsingle for one record, X__sendbatch for more, without `extra`; 0xFFFFFFFF for none.
 *
 * uint32_t X__sendtomsg(uint32_t destination, const X* records, uint32_t count, uint64_t extra)
 *   The same with `extra`.
 *
 * The three functions of service S:
 *
 * uint32_t S_recv_init(void)
 *   Registers every message of the service with the middleware (MESH_RegIDLFuncHook), for
 *   receiving. Returns 0, or the middleware's first result that is not 0; what was registered
 *   before it stays.
 *
 * uint32_t S_send_init(void)
 *   Registers S__send_resource_clean with the middleware (MESH_RegIDLResorceCleanFuncHook), for
 *   sending. Returns the middleware's result.
 *
 * void S__send_resource_clean(void)
 *   Called by the middleware. Sending keeps nothing between calls, so it does nothing.
 * @endverbatim */

#endif
