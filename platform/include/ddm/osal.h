/* The host's services: its log writer and its accounting allocator.
 *
 * Users look these up by name at run time, and each may be missing. All may be called from any
 * thread. An owner is a number that the host assigns to a part of the system; a caller is the text
 * that names the calling function. */
#ifndef DDM_OSAL_H
#define DDM_OSAL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes one line to the host's log. `env` points at a record whose first word points at a text
 * that names the reporting framework; `level` and `code` are the host's; `file` may be empty;
 * `format` and what follows are as for printf. Nothing passed is kept. */
void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...);

/* `size` bytes for `owner`, aligned for any type, contents undefined; null when there are none.
 * Given back with DDM_OsalMemFree. */
void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller);

/* Gives back what DDM_OsalMemAlloc or DDM_OsalMemCacheAlloc returned, under the owner that took it.
 * A null block does nothing. */
void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller);

/* As DDM_OsalMemAlloc, from the host's cache of blocks. */
void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller);

/* 1 when `owner` is to take its memory from the cache, another value when not. */
uint32_t DDM_OsalMemUseFlagGet(uint32_t owner);

#ifdef __cplusplus
}
#endif

#endif
