/* Bounds-checked memory functions, after Annex K of C11 but without a constraint handler.
 *
 * `room` is the size of the destination in bytes; `count` is the number of bytes to copy or set.
 * The result is 0 on success. A violation is a null pointer, a count above the room, or overlapping
 * areas. It returns a nonzero result and copies nothing. A destination that is not null is then
 * cleared (copy) or filled with the value (fill) over its whole room. Thread-safe if no other
 * thread uses the same areas. */
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

/* A faster memcpy_s for callers that have checked the sizes. It may omit the checks: a violation is
 * then undefined behaviour. */
int memcpy_sOptAsm(void* to, size_t room, const void* from, size_t count);

#ifdef __cplusplus
}
#endif

#endif
