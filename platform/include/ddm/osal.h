/* The host's services: its log writer and its accounting allocator.
 *
 * Users look these functions up by name at run time. Each may be missing. All are thread-safe. An
 * owner is a number that the host assigns to a part of the system. A caller is the name of the
 * calling function. */
#ifndef DDM_OSAL_H
#define DDM_OSAL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes one line to the host's log. The first word of the record at `env` points at the name of
 * the reporting framework. The host defines `level` and `code`. `file` may be empty. `format` and
 * the arguments after it are as for printf. The writer keeps no pointer. */
void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...);

/* Allocates `size` bytes for `owner`, aligned for any type, with undefined contents. Returns null
 * on failure. Freed with DDM_OsalMemFree. */
void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller);

/* Frees a block of DDM_OsalMemAlloc or DDM_OsalMemCacheAlloc. `owner` must be the one that
 * allocated it. Ignores null. */
void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller);

/* As DDM_OsalMemAlloc, from the host's cache of blocks. */
void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller);

/* Returns 1 when `owner` should allocate from the cache, otherwise another value. */
uint32_t DDM_OsalMemUseFlagGet(uint32_t owner);

#ifdef __cplusplus
}
#endif

#endif
