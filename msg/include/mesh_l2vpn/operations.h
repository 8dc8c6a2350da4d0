/** @file
 * The seven operations that every message X of libmesh_l2vpn has.
 *
 * Conventions:
 *
 * 1. Records. X is a plain C struct of unsigned integers, byte arrays, inline sub-records, counted
 *    byte strings (fN_len, fN) and counted runs of records (fN_count, fN). Field fN is slot N.
 *    Arrays of records are contiguous.
 * 2. Ownership. The caller owns every record and every buffer. Only X__unpack allocates memory for
 *    the caller: one block for each byte string or run. The record owns it until X_free__unpacked.
 *    X__unpack never releases blocks that a record already holds: release them first. X__pack and
 *    the send operations only read records.
 * 3. Results. X__pack and the send operations return 0 on success and 0xFFFFFFFF on every failure
 *    of their own. A send that reaches the middleware returns the middleware's result. X__unpack
 *    always returns sizeof(X).
 * 4. Threads. Every operation runs on its caller's thread. Several threads may call operations at
 *    once, on different records. The arguments must not change during the call. No operation needs
 *    another call first.
 * 5. Byte order. Messages have the host's byte order, which is little-endian on the devices.
 * 6. Host services. Failures are logged through DDM_OsalLogWrite, and memory comes from
 *    DDM_OsalMem*, if the process has functions by these names at a module's first use. Otherwise
 *    nothing is logged, and memory comes from malloc and free.
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
 * A service's header declares them for each of its messages X, by full name: see
 * mesh_l2vpn/l2vpn_cfg_functions.h and its two counterparts.
 *
 * @verbatim
 *
 * X__msg_id, a constant uint32_t object
 *   Identifies X to the middleware: the 32-bit FNV-1a hash of X's name. C does not accept it as a
 *   case label; the service's list of messages has the number itself.
 *
 * uint32_t X__unpack(const uint8_t* data, uint32_t length, X* record)
 *   Verifies `length` bytes at `data` as a message X, in either arrangement, and fills *record.
 *   Fields that the message does not carry are 0. Reads nothing outside the buffer, whatever it
 *   holds. Needs no alignment. Returns sizeof(X), whether it accepts or rejects the buffer.
 *   Pass a record of zeros, since a rejection leaves one of three states:
 *   - `data` or `record` is null, or `length` is below 4 as a signed number: logged; *record stays
 *     as it was.
 *   - The root or the vtable is bad: logged; *record is cleared. In most records of l2vpn_cfg, and
 *     in every _update and _delete, it stays as it was instead.
 *   - A field does not fit, or memory was refused (only the latter is logged): fields before it
 *     keep their values, later fields are 0. Every out-of-line part is released and its pointer is
 *     null, but its length or count may not be 0. Test the pointer, not the count.
 *
 * void X_free__unpacked(X* record)
 *   Releases what X__unpack allocated inside *record, and sets those pointers to null. Lengths and
 *   counts stay. Never frees *record. Safe for null, for a record of zeros and for a second call,
 *   but not for an uninitialised record.
 *
 * uint32_t X__pack(const X* record, uint8_t* buffer, uint32_t* length)
 *   Encodes *record in the compact arrangement, which omits zero values. On entry *length is the
 *   room at `buffer` in bytes; on success it is the message's exact size. Returns 0xFFFFFFFF, with
 *   *length and the buffer unchanged, if `record` or `length` is null, if the room is too small, if
 *   the record's size exceeds 32 bits (0xFFFFFFF7 in dbginfo_cmd_key_l2vpn, 0xFFFFFFFE in
 *   l2vpn_cfg_query_dfx_key), or if a run has a count and a null pointer. To ask for the size, pass
 *   a null `buffer` and a large enough *length, for example UINT32_MAX: the call stores the size,
 *   logs, and returns 0. A byte string with a pointer and a length of 0 adds 8 bytes to the end of
 *   the message. They are not written.
 *
 * uint32_t X__sendsingle(uint32_t destination, const X* record, uint64_t unused, uint64_t extra)
 *   Encodes *record in the message's own arrangement and passes it to the middleware as one
 *   descriptor. `extra` travels with it if it is not 0. A message that is sent in the fixed
 *   arrangement does not test `record`: it must not be null.
 *
 * uint32_t X__sendbatch(uint32_t destination, const X* records, uint32_t count, uint64_t extra)
 *   The same for `count` contiguous records: one allocation, one middleware call, `count`
 *   descriptors. All records are sent or none. In the compact arrangement the encoded records may
 *   take 65,536 bytes together. The size of a batch's block must not exceed 32 bits. A count of 0
 *   reaches the middleware.
 *
 * uint32_t X__sendmsg(uint32_t destination, const X* records, uint32_t count)
 *   Calls X__sendsingle for one record, X__sendbatch for more, without `extra`. Returns 0xFFFFFFFF
 *   for a count of 0.
 *
 * uint32_t X__sendtomsg(uint32_t destination, const X* records, uint32_t count, uint64_t extra)
 *   The same with `extra`.
 *
 * The three functions of service S:
 *
 * uint32_t S_recv_init(void)
 *   Registers every message of the service with the middleware (MESH_RegIDLFuncHook), for
 *   receiving. Returns 0, or the middleware's first result that is not 0. Messages registered
 *   before it stay registered.
 *
 * uint32_t S_send_init(void)
 *   Registers S__send_resource_clean with the middleware (MESH_RegIDLResorceCleanFuncHook), for
 *   sending. Returns the middleware's result.
 *
 * void S__send_resource_clean(void)
 *   The middleware calls it. It does nothing, since sending keeps nothing between calls.
 * @endverbatim */

#endif
