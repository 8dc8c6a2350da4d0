/* What the workstation's host services offer beyond ddm/osal.h: questions about memory, and the log
 * writer's limit. All functions may be called from any thread. */
#ifndef DDM_OSAL_WORKSTATION_H
#define DDM_OSAL_WORKSTATION_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Blocks and bytes as they were asked for, without the allocator's own overhead. */
typedef struct ddm_osal_memory_usage {
  uint64_t blocks_out; /* taken and not given back */
  uint64_t bytes_out;
  uint64_t peak_bytes_out;
  uint64_t total_blocks; /* taken since the process started */
  uint64_t total_bytes;
  uint64_t refusals; /* requests that would have passed the owner's limit */
} ddm_osal_memory_usage;

/* Misuse seen so far; each case is also reported to the log. */
typedef struct ddm_osal_memory_faults {
  uint64_t wrong_owner;  /* given back under another owner: freed, booked to the true one */
  uint64_t double_free;  /* ignored */
  uint64_t foreign_free; /* a pointer that is no block of ours: ignored */
} ddm_osal_memory_faults;

/* The owner's usage; all zero when it never took memory. Returns 0, or 1 when `out` is null. The
 * figures are read one by one while other threads may take and give back. The first 63 owners are
 * told apart, later ones share one account, which any of them is answered with. */
uint32_t ddm_osal_memory_usage_get(uint32_t owner, ddm_osal_memory_usage* out);

/* Returns 0, or 1 when `out` is null. */
uint32_t ddm_osal_memory_faults_get(ddm_osal_memory_faults* out);

/* Writes to `to` what each owner used and, by owner and caller text, what was not given back.
 * Returns the number of blocks not given back. */
uint64_t ddm_osal_memory_report(FILE* to);

/* Sets how many bytes (at least 1) each owner may have out at once; a request that would pass that
 * is answered with null. The default is 256 MiB, or as many MiB as $DDM_OSAL_OWNER_LIMIT_MIB says
 * at the first request, where 0 stands for no limit. */
void ddm_osal_owner_limit(uint64_t bytes);

/* Lets `per_second` log lines through in the long run and `burst` at once; burst at least 1. Lines
 * beyond that are counted, and the count is written when there is room again or at exit. The
 * default is 100 and 200. */
void ddm_osal_log_limit(uint32_t per_second, uint32_t burst);

#ifdef __cplusplus
}
#endif

#endif
