/* The workstation's host services beyond ddm/osal.h: memory statistics, and the limits of memory
 * and log. All functions are thread-safe. */
#ifndef DDM_OSAL_WORKSTATION_H
#define DDM_OSAL_WORKSTATION_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Blocks and bytes as requested, without the allocator's overhead. */
typedef struct ddm_osal_memory_usage {
  uint64_t blocks_out; /* allocated and not freed */
  uint64_t bytes_out;
  uint64_t peak_bytes_out;
  uint64_t total_blocks; /* allocated since the process started */
  uint64_t total_bytes;
  uint64_t refusals; /* requests above the owner's limit */
} ddm_osal_memory_usage;

/* Errors of callers so far. Each is also logged. */
typedef struct ddm_osal_memory_faults {
  uint64_t wrong_owner;  /* freed under another owner: freed, and subtracted from the true owner */
  uint64_t double_free;  /* ignored */
  uint64_t foreign_free; /* not a block of this allocator: ignored */
} ddm_osal_memory_faults;

/* Writes the owner's usage to `*out`: zeros when the owner never allocated. Returns 0, or 1 when
 * `out` is null. The figures are not one snapshot: other threads may change them meanwhile. The
 * first 63 owners have an account each. All later owners share one, and each of them gets its
 * figures. */
uint32_t ddm_osal_memory_usage_get(uint32_t owner, ddm_osal_memory_usage* out);

/* Writes the counts to `*out`. Returns 0, or 1 when `out` is null. */
uint32_t ddm_osal_memory_faults_get(ddm_osal_memory_faults* out);

/* Writes each owner's usage to `to`, then the blocks that are not freed, by owner and caller.
 * Returns the number of those blocks. */
uint64_t ddm_osal_memory_report(FILE* to);

/* Limits the bytes that each owner may hold at once (at least 1). A request above the limit returns
 * null. The default is $DDM_OSAL_OWNER_LIMIT_MIB, read at the first request, where 0 means no
 * limit; without that variable it is 256 MiB. */
void ddm_osal_owner_limit(uint64_t bytes);

/* Limits the log to `burst` lines at once (at least 1) and `per_second` lines on average. Further
 * lines are only counted. The count is written when lines pass again, or at exit. The defaults are
 * 100 per second and a burst of 200. */
void ddm_osal_log_limit(uint32_t per_second, uint32_t burst);

#ifdef __cplusplus
}
#endif

#endif
