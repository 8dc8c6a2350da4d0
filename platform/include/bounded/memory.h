/* Bounds-checked memory functions, after Annex K of C11 but without a constraint handler.
 *
 * `room` is the size in bytes of the destination, `count` the bytes to move or set. The result is 0
 * on success. A violation is a null pointer, a count above the room, or areas that overlap; the
 * result is then nonzero, nothing is copied, and the destination, where it is not null, is cleared
 * (a copy) or filled with the value (a fill) over its whole room. Safe from any thread, as far as
 * the areas are. */
#ifndef BOUNDED_MEMORY_H
#define BOUNDED_MEMORY_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Copies `count` bytes. */
int memcpy_s(void* to, size_t room, const void* from, size_t count);

/* Sets `count` bytes to `value`, converted to unsigned char. */
int memset_s(void* to, size_t room, int value, size_t count);

/* A faster memcpy_s for callers that have checked the sizes themselves: it may leave the checks
 * out, so that a violation is undefined. */
int memcpy_sOptAsm(void* to, size_t room, const void* from, size_t count);

#ifdef __cplusplus
}
#endif

#endif
